// The scenarios under other names: what a path is called must not matter.

#include <gmock/gmock.h>

#include <filesystem>
#include <set>
#include <string_view>

#include "faults/Scenarios.h"
#include "support/CaptureStdout.h"

namespace {

struct Outcome {
    float status;
    Entries entries;

    bool operator==(const Outcome&) const = default;
};

Outcome play(Stage& stage, const Scenario& scenario) {
    stage.prepare(scenario);
    const float status = stage.make(scenario.call).status;
    return {status, stage.entries()};
}

// A folder whose path has this many bytes more, in names of 200.
std::string deepFolder(std::size_t bytes) {
    std::string path;
    while (path.size() + 200 < bytes)
        path += std::string(199, 'd') + '/';
    return path + std::string(bytes - path.size(), 'e');
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
        // A map is a PSD or a TIFF by its extension; what is a file tells EmptyFolder by a dot; a
        // mesh is no tile of its own without one.
        const std::string_view name = scenario.call.exportName;
        if (name == "convertTIFF16" || name == "EmptyFolder" || scenario.call.text == "." ||
            scenario.name == "getUVsOverItself")
            continue;
        const Outcome expected = play(stage, scenario);
        Entries files;
        for (const auto& [file, bytes] : scenario.files)
            files[bare(file)] = bytes;
        scenario.files = files;
        scenario.call.text = bare(scenario.call.text);
        scenario.call.buffer1 = bare(scenario.call.buffer1);
        for (Call& call : scenario.before) {
            if (call.text != ".") call.text = bare(call.text);
        }
        EXPECT_EQ(play(stage, scenario).status, expected.status) << scenario.name;
        EXPECT_EQ(stage.entries().size(), expected.entries.size()) << scenario.name;
    }
}

// The longest that the system takes is 4095 bytes. A JPEG's paths have 511 at most, and
// EmptyFolder's entries 255.
TEST(Names, MayBeAsLongAsTheSystemTakes) {
    const std::size_t spare = std::filesystem::temp_directory_path().string().size() + 64;
    expectTheSameIn(deepFolder(4095 - spare), {"saveAsJpeg", "EmptyFolder"});
}

TEST(Names, OfAJpegMayHave511Bytes) {
    Stage stage;
    const std::size_t free = 511 - stage.path("").size();
    for (const Scenario& scenario : scenarios()) {
        if (scenario.name != "saveAsJpeg") continue;
        Call call = scenario.call;
        stage.prepare(scenario);
        call.buffer1 = deepFolder(free);
        std::filesystem::create_directories(
            std::filesystem::path(stage.path(call.buffer1)).parent_path());
        EXPECT_EQ(stage.make(call).status, 0.0f);
        call.buffer1 += 'e';
        EXPECT_EQ(stage.make(call).status, -1.0f);
        call.buffer1 = scenario.call.buffer1;
        call.text = deepFolder(free + 1);
        EXPECT_EQ(stage.make(call).status, -1.0f);
    }
}

// Longer than any path can be: the answers of a file that cannot be opened, and no byte is written
// past the end of anything.
TEST(Names, BeyondTheSystemsLimitAreRefused) {
    const struct {
        const char* exportName;
        float text;
        float buffer1;
    } rows[] = {
        {"CreateFolder", -1, 0},
        {"CheckFolder", -1, 0},
        {"OpenFolder", -1, 0},
        {"EmptyFolder", -1, 0},
        {"FileDelete", -1, 0},
        {"FileCopyTo", -1, -1},
        {"FileRename", -1, -1},
        {"setUVtilesOutput", -1, 0},
        {"getUVTile", -17, 0},
        {"getUVGroups", -17, 0},
        {"getUVs", -1760, 1501},
        {"getUVsMask", -1760, 1501},
        {"mergeCrease", -1760, -2760},
        {"mergeMapsTIF", -10, -20},
        {"mergeMapsPSD", -1, -1},
        {"mergeMapsBMP", -1770, -1760},
        {"swapRGBTIF", -10, 0},
        {"swapRGBPSD", -1, 0},
        {"swapRGBBMP", -1760, 0},
        {"convertTIFF16", -10, -201},
        {"convertTIFFSingle", -10, -201},
        {"getScale", -10, 0},
        {"saveAsTarga", -10, -5},
        {"saveAsJpeg", -1, -1},
        {"CreateThumbnailBMP", -1, 0},
        {"OpenEXR", -7, 0},
    };
    Stage stage;
    for (const std::size_t length : {4096u, 5000u, 1000000u}) {
        const std::string name = std::string(length - 4, 'n') + ".map";
        for (const auto& row : rows) {
            for (const Scenario& scenario : scenarios()) {
                if (std::string_view(scenario.call.exportName) != row.exportName) continue;
                SCOPED_TRACE(scenario.name);
                const CaptureStdout quiet;
                stage.prepare(scenario);
                const Entries before = stage.entries();
                Call call = scenario.call;
                call.text = name;
                EXPECT_EQ(stage.make(call).status, row.text);
                call = scenario.call;
                call.buffer1 = name;
                if (row.buffer1 != 0) {
                    EXPECT_EQ(stage.make(call).status, row.buffer1);
                }
                Entries after = stage.entries();
                // A copy removes its old target first.
                if (call.exportName == std::string_view("FileCopyTo"))
                    after["b.tif"] = before.at("b.tif");
                EXPECT_TRUE(after == before);
            }
        }
    }
}

}  // namespace
