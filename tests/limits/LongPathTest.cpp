// Each path of each export just below, at and just above the lengths that the system and the exports
// take. One byte more than that is the status for a file that cannot be opened, and harms nothing.

#include <gmock/gmock.h>

#include <filesystem>
#include <fstream>
#include <set>
#include <string_view>
#include <utility>

#include "faults/Scenarios.h"
#include "limits/DeepFolder.h"
#include "limits/Opened.h"
#include "support/CaptureStdout.h"

namespace {

namespace fs = std::filesystem;

constexpr std::size_t kLongestName = 255;
constexpr std::size_t kLongestPath = 4095;
constexpr std::size_t kLongestJpegPath = 511;

// A folder's path of so many bytes, as the place of a stage.
std::string placeFor(std::size_t pathBytes) {
    const std::size_t above = Stage("x").path(".").size() - 1;
    return deepFolder(pathBytes - above);
}

// A name of so many bytes whose end is `tail`.
std::string nameOf(std::size_t bytes, std::string_view tail) {
    return std::string(bytes - tail.size(), 'n').append(tail);
}

// A scenario whose files that start with `stem` start with `longer` instead.
class Renamed {
public:
    Renamed(std::string stem, std::string longer)
        : stem_(std::move(stem)), longer_(std::move(longer)) {}

    std::string operator()(const std::string& name) const {
        return name.starts_with(stem_) ? longer_ + name.substr(stem_.size()) : name;
    }
    Entries operator()(const Entries& entries) const {
        Entries renamed;
        for (const auto& [name, bytes] : entries)
            renamed[(*this)(name)] = bytes;
        return renamed;
    }
    Scenario operator()(Scenario scenario) const {
        scenario.files = (*this)(scenario.files);
        scenario.call.text = (*this)(scenario.call.text);
        scenario.call.buffer1 = (*this)(scenario.call.buffer1);
        return scenario;
    }

private:
    std::string stem_;
    std::string longer_;
};

class LongPaths : public testing::Test {
protected:
    // Makes the call with the entry under longer names in a folder; the longest that is taken has
    // `longest` bytes.
    void expectLimit(const std::string& place, const Scenario& scenario, const Opened& entry,
                     std::size_t longest) {
        Stage stage(place);
        SCOPED_TRACE(scenario.name + ' ' + entry.name);
        for (const std::size_t bytes : {longest - 1, longest, longest + 1}) {
            SCOPED_TRACE(bytes);
            const std::string tail = entry.name.substr(stemOf(entry.name).size());
            const Renamed rename(stemOf(entry.name), nameOf(bytes - tail.size(), ""));
            if (bytes <= longest)
                expectTheSame(stage, scenario, rename);
            else
                expectRefused(stage, rename(scenario), rename(entry.name), entry.refused);
        }
    }

    // Visits the entries that a call has as paths, or whose names it makes of one.
    template <typename Visit>
    void forEachPath(Visit visit) {
        std::set<std::string_view> visited;
        for (const Scenario& scenario : scenarios()) {
            const auto opened = kOpened.find(scenario.call.exportName);
            // Of an export over its own tile both paths would change.
            if (opened == kOpened.end() || scenario.name == "getUVsOverItself") continue;
            for (const Opened& entry : opened->second) {
                const Call& call = scenario.call;
                const bool isTile = entry.name == "tile1001.Vemo";
                if (!isTile && entry.name != call.text && entry.name != call.buffer1) continue;
                visited.insert(call.exportName);
                visit(scenario, entry);
            }
        }
        EXPECT_EQ(visited.size(), kOpened.size());
    }

    static bool isJpeg(const Scenario& scenario) {
        return std::string_view(scenario.call.exportName) == "saveAsJpeg";
    }

private:
    static std::string stemOf(const std::string& name) {
        return name.starts_with("tile1") ? "tile" : name.substr(0, name.find('.'));
    }

    void expectTheSame(Stage& stage, const Scenario& scenario, const Renamed& rename) {
        const Outcome usual = usual_.play(scenario);
        stage.prepare(rename(scenario));
        EXPECT_EQ(stage.make(rename(scenario).call).status, scenario.status);
        EXPECT_TRUE(stage.entries() == rename(usual.entries));
    }

    // The file with the long name cannot be there.
    static void expectRefused(Stage& stage, Scenario scenario, const std::string& name,
                              float refused) {
        scenario.files.erase(name);
        stage.prepare(scenario);
        Entries expected = stage.entries();
        // A copy removes the old target before it looks for the source.
        if (scenario.call.exportName == std::string_view("FileCopyTo")) expected.erase("b.tif");
        const CaptureStdout quiet;
        EXPECT_EQ(stage.make(scenario.call).status, refused);
        EXPECT_TRUE(stage.entries() == expected);
    }

    Stage usual_;
};

TEST_F(LongPaths, ANameMayHave255Bytes) {
    forEachPath([&](const Scenario& scenario, const Opened& entry) {
        expectLimit("names", scenario, entry, kLongestName);
    });
}

TEST_F(LongPaths, APathMayHave4095Bytes) {
    const std::string place = placeFor(kLongestPath - 201);
    forEachPath([&](const Scenario& scenario, const Opened& entry) {
        if (!isJpeg(scenario)) expectLimit(place, scenario, entry, 200);
    });
}

TEST_F(LongPaths, APathOfAJpegMayHave511Bytes) {
    const std::string place = placeFor(kLongestJpegPath - 201);
    forEachPath([&](const Scenario& scenario, const Opened& entry) {
        if (isJpeg(scenario)) expectLimit(place, scenario, {entry.name, -1}, 200);
    });
}

// The services that open no file. EmptyFolder puts a slash behind its path.
TEST_F(LongPaths, OfFoldersAndFilesMayBeAsLong) {
    enum class There { kNothing, kFile, kFolder };
    const struct {
        const char* exportName;
        There there;  // under the long name
        std::size_t longestPath = kLongestPath;
    } rows[] = {
        {"CreateFolder", There::kNothing}, {"CheckFolder", There::kFolder},
        {"OpenFolder", There::kFolder},    {"EmptyFolder", There::kFolder, kLongestPath - 1},
        {"FileDelete", There::kFile},      {"FileDelete", There::kFolder},
        {"FileRename", There::kFile},
    };
    Stage stage;
    Stage deep(placeFor(kLongestPath - 201));
    for (const auto& row : rows) {
        SCOPED_TRACE(row.exportName);
        const auto expectStatus = [&](Stage& place, std::size_t bytes, bool fits) {
            SCOPED_TRACE(bytes);
            place.prepare({"", {}, 0.0f, {{"kept.tif", {1}}}});
            const std::string name = nameOf(bytes, "");
            if (fits && row.there == There::kFile) std::ofstream(place.path(name)).put('x');
            if (fits && row.there == There::kFolder) fs::create_directory(place.path(name));
            EXPECT_EQ(place.make({row.exportName, name, 0.0, "to"}).status, fits ? 0.0f : -1.0f);
            EXPECT_EQ(place.entries().at("kept.tif"), ByteList{1});
            EXPECT_LE(place.entries().size(), fits ? 2u : 1u);
        };
        for (const std::size_t bytes : {254u, 255u, 256u})
            expectStatus(stage, bytes, bytes <= kLongestName);
        for (const std::size_t bytes : {199u, 200u, 201u})
            expectStatus(deep, bytes, kLongestPath - 200 + bytes <= row.longestPath);
    }
}

TEST_F(LongPaths, ARenamedFileMayHaveThemToo) {
    Stage stage;
    Stage deep(placeFor(kLongestPath - 201));
    const auto expectStatus = [](Stage& place, std::size_t bytes, float status) {
        SCOPED_TRACE(bytes);
        place.prepare({"", {}, 0.0f, {{"a.tif", {1}}}});
        const std::string name = nameOf(bytes, ".tif");
        EXPECT_EQ(place.make({"FileRename", "a.tif", 0.0, name}).status, status);
        EXPECT_EQ(place.entries(), (Entries{{status == 0.0f ? name : "a.tif", {1}}}));
    };
    expectStatus(stage, 254, 0);
    expectStatus(stage, 255, 0);
    expectStatus(stage, 256, -1);
    expectStatus(deep, 199, 0);
    expectStatus(deep, 200, 0);
    expectStatus(deep, 201, -1);
}

// 255 bytes are counted from the start of the folder's path to the end of the entry's name.
TEST_F(LongPaths, OfEntriesThatEmptyFolderDeletesMayHave255Bytes) {
    for (const std::size_t folderBytes : {std::size_t{150}, std::size_t{250}}) {
        SCOPED_TRACE(folderBytes);
        Stage stage(placeFor(folderBytes));
        const auto name = [&](std::size_t pathBytes) {
            return nameOf(pathBytes - folderBytes - 1, ".x");
        };
        stage.prepare(
            {"", {}, 0.0f, {{name(254), {}}, {name(255), {}}, {name(256), {}}, {"plain", {}}}});
        EXPECT_EQ(stage.make({"EmptyFolder", "."}).status, 0.0f);
        EXPECT_EQ(stage.entries(), (Entries{{name(256), {}}, {"plain", {}}}));
    }
}

}  // namespace
