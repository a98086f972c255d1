// Each file of each scenario with something else in its place. Whatever it is, the export returns, with
// the status for a file that cannot be opened, and harms nothing.

#include <gmock/gmock.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <string_view>
#include <vector>

#include "faults/Scenarios.h"
#include "limits/Opened.h"
#include "support/CaptureStdout.h"
#include "support/Faults.h"

namespace {

namespace fs = std::filesystem;

template <typename Visit>
void forEachOpened(Visit visit) {
    for (const Scenario& scenario : scenarios()) {
        const auto opened = kOpened.find(scenario.call.exportName);
        if (opened == kOpened.end()) continue;
        for (const Opened& entry : opened->second) {
            SCOPED_TRACE(scenario.name + ' ' + entry.name);
            visit(scenario, entry);
        }
    }
}

// What can be in a file's place.
struct Obstacle {
    const char* name;
    void (*put)(const std::string& path);
    bool canBeWritten = false;
    bool isFull = false;  // can be opened for writing, but takes no byte
};

using Path = std::string;

// Devices are linked to, so that nothing can remove them.
constexpr Obstacle kObstacles[] = {
    {"Folder", [](const Path& path) { fs::create_directories(path + "/inside"); }},
    {"Pipe", [](const Path& path) { ASSERT_EQ(::mkfifo(path.c_str(), 0666), 0); }},
    {"LinkToItself", [](const Path& path) { fs::create_symlink(path, path); }},
    {"UnreadableFile", [](const Path& path) { ASSERT_EQ(::mknod(path.c_str(), S_IFREG, 0), 0); }},
    {"DeadLink", [](const Path& path) { fs::create_symlink(path + ".gone", path); }, true},
    {"DeviceOfZeros", [](const Path& path) { fs::create_symlink("/dev/zero", path); }, true},
    {"DeviceOfNothing", [](const Path& path) { fs::create_symlink("/dev/null", path); }, true},
    {"DeviceWithoutRoom", [](const Path& path) { fs::create_symlink("/dev/full", path); }, false,
     true},
};

void PrintTo(const Obstacle& obstacle, std::ostream* out) {
    *out << obstacle.name;
}

class Obstacles : public testing::TestWithParam<Obstacle> {
protected:
    // A wait for a pipe's other end would last for ever.
    void SetUp() override { ::alarm(120); }
    void TearDown() override { ::alarm(0); }

    // The status of the scenario's call with the obstacle in the place of an entry.
    float statusWithObstacle(const Scenario& scenario, const std::string& name) {
        stage_.prepare(scenario);
        fs::remove_all(stage_.path(name));
        stage_.letOthersIn();
        GetParam().put(stage_.path(name));
        before_ = stage_.entries();
        const CaptureStdout quiet;
        const WithoutRoot asAnyUser;  // root may open what is not readable
        return stage_.make(scenario.call).status;
    }

    bool isCreated(const Scenario& scenario, const std::string& name) const {
        return scenario.written.contains(name) && name != "all.map" && name != "all.vws" &&
               name != "one.map";
    }

    Stage stage_;
    Entries before_;
};

TEST_P(Obstacles, AreRefusedInPlaceOfAFileThatIsRead) {
    forEachOpened([&](const Scenario& scenario, const Opened& entry) {
        if (!scenario.files.contains(entry.name) || isCreated(scenario, entry.name)) return;
        EXPECT_EQ(statusWithObstacle(scenario, entry.name), entry.refused);
        Entries others = before_;
        if (std::string_view(scenario.call.exportName) == "FileCopyTo") others.erase("b.tif");
        EXPECT_TRUE(stage_.entries() == others);
    });
}

TEST_P(Obstacles, AreRefusedInPlaceOfATargetThatCannotBeWritten) {
    forEachOpened([&](const Scenario& scenario, const Opened& entry) {
        if (!isCreated(scenario, entry.name)) return;
        EXPECT_EQ(statusWithObstacle(scenario, entry.name),
                  GetParam().canBeWritten ? scenario.status : entry.refused);
        // A UV export leaves nothing of a tile that the disk cannot take.
        const bool isRemoved = GetParam().isFull && entry.name.starts_with("tile");
        const Entries after = stage_.entries();
        EXPECT_NE(after.contains(entry.name) || after.contains(entry.name + '/'), isRemoved);
        for (const auto& [name, bytes] : scenario.files) {
            EXPECT_TRUE(scenario.written.contains(name) || after.at(name) == bytes) << name;
        }
    });
}

INSTANTIATE_TEST_SUITE_P(Entries, Obstacles, testing::ValuesIn(kObstacles),
                         [](const auto& obstacle) { return obstacle.param.name; });

// No byte of such a path is written past the end of anything. A JPEG's paths have 511 bytes at most,
// whatever the system takes.
TEST(Obstacles, APathBeyondTheSystemsLimitIsRefused) {
    Stage stage;
    for (const std::size_t length : {4096u, 5000u, 1000000u}) {
        const std::string name = std::string(length - 4, 'n') + ".map";
        forEachOpened([&](const Scenario& scenario, const Opened& entry) {
            Call call = scenario.call;
            std::string& path = entry.name == call.text ? call.text : call.buffer1;
            if (path != entry.name) return;
            path = name;
            stage.prepare(scenario);
            Entries others = stage.entries();
            const CaptureStdout quiet;
            const bool isJpeg = std::string_view(call.exportName) == "saveAsJpeg";
            EXPECT_EQ(stage.make(call).status, isJpeg ? -1 : entry.refused);
            if (std::string_view(call.exportName) == "FileCopyTo") others.erase("b.tif");
            EXPECT_TRUE(stage.entries() == others);
        });
    }
}

// The services that work on names move and remove the obstacle itself, never what it leads to.
TEST(Obstacles, AreRemovedAndRenamedThemselves) {
    Stage stage;
    const Scenario scenario = {"links", {"FileDelete", "link"}, 0.0f, {{"file", {1, 2, 3}}}};
    for (const Obstacle& obstacle : kObstacles) {
        if (std::string_view(obstacle.name) == "Folder") continue;
        SCOPED_TRACE(obstacle.name);
        stage.prepare(scenario);
        obstacle.put(stage.path("link"));
        EXPECT_EQ(stage.make({"FileRename", "link", 0.0, "other"}).status, 0.0f);
        EXPECT_EQ(stage.make({"FileDelete", "other"}).status, 0.0f);
        obstacle.put(stage.path("link"));
        EXPECT_EQ(stage.make({"FileCopyTo", "file", 0.0, "link"}).status, 0.0f);
        EXPECT_EQ(stage.entries(), (Entries{{"file", {1, 2, 3}}, {"link", {1, 2, 3}}}));
    }
    EXPECT_TRUE(fs::exists("/dev/zero") && fs::exists("/dev/null") && fs::exists("/dev/full"));
}

TEST(Obstacles, ALinkIsAsGoodAsTheFileItLeadsTo) {
    Stage stage;
    for (const Scenario& scenario : scenarios()) {
        for (const auto& [name, bytes] : scenario.files) {
            if (!kOpened.contains(scenario.call.exportName)) continue;
            SCOPED_TRACE(scenario.name + ' ' + name);
            stage.prepare(scenario);
            stage.make(scenario.call);
            Entries expected = stage.entries();
            stage.prepare(scenario);
            fs::rename(stage.path(name), stage.path("elsewhere"));
            fs::create_symlink("elsewhere", stage.path(name));
            EXPECT_EQ(stage.make(scenario.call).status, scenario.status);

            // A copy's old target is removed: the link, not the file.
            const bool removed = std::string_view(scenario.call.exportName) == "FileCopyTo" &&
                                 scenario.written.contains(name);
            if (removed) {
                expected["elsewhere"] = bytes;
            } else {
                expected["elsewhere"] = expected[name];
                expected[name] = bytesOf("-> elsewhere");
            }
            EXPECT_TRUE(stage.entries() == expected);
        }
    }
}

}  // namespace
