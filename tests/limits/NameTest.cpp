// The scenarios under other names: what a path is called must not matter.

#include <gmock/gmock.h>

#include <filesystem>
#include <set>
#include <string_view>
#include <utility>

#include "faults/Scenarios.h"
#include "limits/DeepFolder.h"

namespace {

// The status and the entries, which do not name the folder.
std::pair<float, Entries> play(Stage& stage, const Scenario& scenario) {
    const Outcome outcome = stage.play(scenario);
    return {outcome.result.status, outcome.entries};
}

void expectTheSameIn(const std::string& folder, const std::set<std::string_view>& except = {}) {
    Stage usual;
    Stage unusual(folder);
    for (const Scenario& scenario : scenarios()) {
        if (except.contains(scenario.call.exportName)) continue;
        EXPECT_TRUE(play(unusual, scenario) == play(usual, scenario)) << scenario.name;
    }
}

TEST(Names, MayHaveSpacesAndLettersOfAnyLanguage) {
    expectTheSameIn("größe und höhe/高さ マップ/ \t'\"$(&;|*?[~");
    expectTheSameIn("a folder.with a dot/and.another");
    expectTheSameIn("back\\slash");
}

TEST(Names, MayLackAnExtension) {
    const auto bare = [](const std::string& name) { return name.substr(0, name.find('.')); };
    Stage stage;
    for (Scenario scenario : scenarios()) {
        // The extension makes a map a PSD or a TIFF, EmptyFolder takes names with a dot for files, and
        // without one a mesh is not one of its own tiles.
        const std::string_view name = scenario.call.exportName;
        if (name == "convertTIFF16" || name == "EmptyFolder" || scenario.call.text == "." ||
            scenario.name == "getUVsOverItself")
            continue;
        const auto [status, entries] = play(stage, scenario);
        Entries files;
        for (const auto& [file, bytes] : scenario.files)
            files[bare(file)] = bytes;
        scenario.files = files;
        scenario.call.text = bare(scenario.call.text);
        scenario.call.buffer1 = bare(scenario.call.buffer1);
        for (Call& call : scenario.before) {
            if (call.text != ".") call.text = bare(call.text);
        }
        const auto [bareStatus, bareEntries] = play(stage, scenario);
        EXPECT_EQ(bareStatus, status) << scenario.name;
        EXPECT_EQ(bareEntries.size(), entries.size()) << scenario.name;
    }
}

// The longest that the system takes is 4095 bytes. A JPEG's paths have 511 at most, and
// EmptyFolder's entries 255.
TEST(Names, MayBeAsLongAsTheSystemTakes) {
    const std::size_t spare = std::filesystem::temp_directory_path().string().size() + 64;
    expectTheSameIn(deepFolder(4095 - spare), {"saveAsJpeg", "EmptyFolder"});
}

}  // namespace
