// Folder, file and text services, called as a script's host calls them.

#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cmath>
#include <filesystem>
#include <limits>
#include <string>
#include <utility>
#include <vector>

#include "support/CaptureStdout.h"
#include "support/Faults.h"
#include "support/Plugin.h"
#include "support/TempDir.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::UnorderedElementsAre;
using Names = std::vector<std::string>;

class Services : public testing::Test {
protected:
    float onPath(const char* exportName, const std::string& path) const {
        return plugin.call(exportName, {.text = path.c_str()});
    }

    float onPaths(const char* exportName, const std::string& text,
                  const std::string& buffer1) const {
        Block block(buffer1);
        return plugin.call(exportName, {.text = text.c_str(), .buffer1 = block});
    }

    float nextEntry(std::string& name) const {
        Block block;
        const float status = plugin.call("GetFile", {.buffer1 = block});
        name = block.text();
        return status;
    }

    // All that GetFile has not reported yet, up to the status -3.
    Names restOfListing() const {
        Names names;
        std::string name;
        float status = 0.0f;
        while ((status = nextEntry(name)) == 0.0f)
            names.push_back(name);
        EXPECT_EQ(status, -3.0f);
        EXPECT_EQ(name, "untouched");
        return names;
    }

    void expectNoListing() const {
        std::string name;
        EXPECT_EQ(nextEntry(name), -1.0f);
        EXPECT_EQ(name, "untouched");
        EXPECT_EQ(plugin.call("CloseFolder"), -1.0f);
    }

    const Plugin plugin;
    const TempDir dir;
};

TEST_F(Services, VersionIs48WhateverItIsGiven) {
    Block block;
    EXPECT_EQ(plugin.call("Version"), 48.0f);
    EXPECT_EQ(plugin.call("Version", {.text = "text", .value = -1e300, .buffer1 = block}), 48.0f);
    EXPECT_EQ(block.text(), "untouched");
}

// Listing

TEST_F(Services, ListingReportsEveryEntryAndTheFolderAndItsParent) {
    const std::string longest(255, 'n');
    dir.write("two words.tif", "");
    dir.write("größe 高さ.tif", "");
    dir.write(longest, "");
    dir.makeFolder("sub");

    ASSERT_EQ(onPath("OpenFolder", dir.path()), 0.0f);
    EXPECT_EQ(plugin.call("GetFile"), -1.0f) << "without a block it skips no entry";
    EXPECT_THAT(restOfListing(),
                UnorderedElementsAre(".", "..", "two words.tif", "größe 高さ.tif", longest, "sub"));
}

TEST_F(Services, ListingStaysExhaustedUntilItIsClosed) {
    ASSERT_EQ(onPath("OpenFolder", dir.path()), 0.0f);
    EXPECT_THAT(restOfListing(), UnorderedElementsAre(".", ".."));
    dir.write("late.tif", "");
    EXPECT_THAT(restOfListing(), IsEmpty());
    EXPECT_THAT(restOfListing(), IsEmpty());
    EXPECT_EQ(plugin.call("CloseFolder"), 0.0f);
    expectNoListing();
}

TEST_F(Services, ListingEndsWithAnOpenFolderThatFailsAndWithAnyCheckFolder) {
    const std::string file = dir.write("file.tif", "");
    expectNoListing();
    for (const char* name : {"OpenFolder", "CheckFolder"}) {
        for (const std::string& path : {dir.path("missing"), file, std::string()}) {
            ASSERT_EQ(onPath("OpenFolder", dir.path()), 0.0f);
            EXPECT_EQ(onPath(name, path), -1.0f) << name << ' ' << path;
            expectNoListing();
        }
    }
    ASSERT_EQ(onPath("OpenFolder", dir.path()), 0.0f);
    EXPECT_EQ(onPath("CheckFolder", dir.path()), 0.0f);
    expectNoListing();
}

TEST_F(Services, SecondOpenFolderStartsOver) {
    std::string name;
    ASSERT_EQ(onPath("OpenFolder", dir.makeFolder("full")), 0.0f);
    ASSERT_EQ(nextEntry(name), 0.0f);

    ASSERT_EQ(onPath("OpenFolder", dir.makeFolder("empty")), 0.0f);
    EXPECT_THAT(restOfListing(), UnorderedElementsAre(".", ".."));
    EXPECT_EQ(plugin.call("CloseFolder"), 0.0f);
    expectNoListing();
}

// A script that forgets CloseFolder must not use up the host's descriptors.
TEST_F(Services, AbandonedListingsLeaveNoDescriptorOpen) {
    const auto before = openFiles();
    for (int i = 0; i < 10; ++i) {
        ASSERT_EQ(onPath("OpenFolder", dir.path()), 0.0f);
        ASSERT_EQ(onPath("OpenFolder", dir.path()), 0.0f);
        ASSERT_EQ(onPath("CheckFolder", dir.path()), 0.0f);
    }
    EXPECT_EQ(openFiles(), before);
}

// Folders

TEST_F(Services, CreateFolderMakesOneNewFolder) {
    const std::string file = dir.write("file", ByteList{1});
    EXPECT_EQ(onPath("CreateFolder", dir.path("größe 高さ.maps")), 0.0f);
    EXPECT_EQ(onPath("CreateFolder", dir.path("closed/")), 0.0f);
    EXPECT_EQ(onPath("CheckFolder", dir.path("größe 高さ.maps")), 0.0f);
    EXPECT_EQ(onPath("CheckFolder", dir.path("closed")), 0.0f);
    EXPECT_EQ(onPath("CreateFolder", dir.path("closed")), -1.0f) << "it exists";
    EXPECT_EQ(onPath("CreateFolder", file), -1.0f) << "a file has its name";
    EXPECT_EQ(onPath("CreateFolder", dir.path("missing/maps")), -1.0f);
    EXPECT_EQ(onPath("CreateFolder", ""), -1.0f);
    EXPECT_THAT(dir.names(), ElementsAre("closed", "file", "größe 高さ.maps"));
    EXPECT_EQ(readBytes(file), ByteList{1});
}

TEST_F(Services, PublicFolderHoldsTheUsersFolders) {
    Block block;
    const float status = plugin.call("GetPublicFolder", {.buffer1 = block});
    const bool exists = std::filesystem::is_directory("/home");
    EXPECT_EQ(status, exists ? 1.0f : 0.0f);
    EXPECT_EQ(block.text(), exists ? "/home" : "untouched");
}

#if defined(__linux__)

TEST_F(Services, ANewFolderIsForAllWhomTheUmaskDoesNotExclude) {
    for (const auto& [mask, mode] : {std::pair(0u, 0777u), {022u, 0755u}}) {
        const std::string path = dir.path("of mask " + std::to_string(mask));
        const mode_t before = ::umask(mask);
        EXPECT_EQ(plugin.call("CreateFolder", {.text = path.c_str()}), 0.0f);
        ::umask(before);
        struct stat status {};
        ASSERT_EQ(::stat(path.c_str(), &status), 0);
        EXPECT_EQ(status.st_mode & 07777u, mode);
    }
}

// While it lives, the process sees `folder` as the root of all paths.
class Root {
public:
    explicit Root(const std::string& folder) : isChanged_(::chroot(folder.c_str()) == 0) {}
    Root(const Root&) = delete;
    Root& operator=(const Root&) = delete;
    ~Root() {
        const bool isBack = !isChanged_ || (::fchdir(root_) == 0 && ::chroot(".") == 0);
        EXPECT_TRUE(isBack && ::fchdir(current_) == 0);
        ::close(root_);
        ::close(current_);
    }

    bool isChanged() const { return isChanged_; }

private:
    int root_ = ::open("/", O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    int current_ = ::open(".", O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    bool isChanged_;
};

TEST_F(Services, OnlyAFolderIsThePublicFolder) {
    const auto publicFolder = [&](const TempDir& system) {
        Block block;
        const Root root(system.path());
        const float status = plugin.call("GetPublicFolder", {.buffer1 = block});
        return std::pair(status, block.text());
    };
    const TempDir empty;
    const TempDir withFile;
    const TempDir withFolder;
    withFile.write("home", "a file of that name");
    withFolder.makeFolder("home");
    if (!Root(empty.path()).isChanged()) GTEST_SKIP() << "needs the right to call chroot";

    EXPECT_EQ(publicFolder(empty), std::pair(0.0f, std::string("untouched")));
    EXPECT_EQ(publicFolder(withFile), std::pair(0.0f, std::string("untouched")));
    EXPECT_EQ(publicFolder(withFolder), std::pair(1.0f, std::string("/home")));
}

#endif

// Files

TEST_F(Services, FileDeleteRemovesOneFile) {
    const std::string file = dir.write("größe 1.tif", "1");
    dir.makeFolder("full");
    dir.write("full/kept.tif", "2");
    EXPECT_EQ(onPath("FileDelete", file), 0.0f);
    EXPECT_EQ(onPath("FileDelete", file), -1.0f) << "it is gone";
    EXPECT_EQ(onPath("FileDelete", dir.path("full")), -1.0f) << "a folder with a file in it";
    EXPECT_EQ(onPath("FileDelete", ""), -1.0f);
    EXPECT_THAT(dir.names(), ElementsAre("full"));
}

TEST_F(Services, FileRenameReplacesTheTargetOrChangesNothing) {
    const std::string source = dir.write("a.tif", ByteList{1});
    const std::string target = dir.write("b.tif", ByteList{2});
    EXPECT_EQ(onPaths("FileRename", dir.path("missing.tif"), source), -1.0f);
    EXPECT_EQ(onPaths("FileRename", source, dir.path("missing/b.tif")), -1.0f);
    EXPECT_EQ(readBytes(source), ByteList{1});
    EXPECT_EQ(onPaths("FileRename", source, target), 0.0f);
    EXPECT_THAT(dir.names(), ElementsAre("b.tif"));
    EXPECT_EQ(readBytes(target), ByteList{1});
}

// Texts

TEST_F(Services, GetStringStartsAtTheValueTruncatedOrAtByte5) {
    constexpr double kInf = std::numeric_limits<double>::infinity();
    const struct {
        const char* text;
        double value;
        const char* rest;
    } rows[] = {
        {"abcdefgh", 2.0, "cdefgh"},
        {"abcdefgh", 2.9, "cdefgh"},
        {"abcdefgh", 0.0, "abcdefgh"},
        {"abcdefgh", -0.0, "abcdefgh"},
        {"abcdefghijklm", 10.0, "klm"},
        {"abcdefghijklm", std::nextafter(10.0, 0.0), "jklm"},
        {"abcdefgh", std::nextafter(10.0, 11.0), "fgh"},
        {"abcdefgh", std::nextafter(0.0, -1.0), "fgh"},
        {"abcdefgh", 1e300, "fgh"},
        {"abcdefgh", -1e300, "fgh"},
        {"abcdefgh", kInf, "fgh"},
        {"abcdefgh", -kInf, "fgh"},
        {"abcdefgh", std::nan(""), "fgh"},
        {"abc", 3.0, ""},
        {"abc", 4.0, ""},
        {"abc", 99.0, ""},
        {"", 10.0, ""},
    };
    for (const auto& row : rows) {
        Block block;
        EXPECT_EQ(
            plugin.call("GetString", {.text = row.text, .value = row.value, .buffer1 = block}),
            0.0f);
        EXPECT_EQ(block.text(), row.rest) << row.text << ' ' << row.value;
    }
}

TEST_F(Services, GetStringMayCopyABlockOntoItself) {
    Block block("abcdefgh");
    EXPECT_EQ(plugin.call("GetString", {.text = block, .value = 3.0, .buffer1 = block}), 0.0f);
    EXPECT_EQ(block.text(), "defgh");
}

// The library object

TEST_F(Services, GetSubstrPointsIntoTheSameText) {
    const auto getSubstr =
        reinterpret_cast<char* (*)(char*, int)>(plugin.symbol("_Z10get_substrPci"));
    char text[] = "abcdef";
    EXPECT_EQ(getSubstr(text, 2), text + 2);
    EXPECT_EQ(getSubstr(text + 4, -3), text + 1);
}

TEST_F(Services, HelloWorldPrintsALineAtOnce) {
    for (const char* name :
         {"_ZN7Quillon10HelloWorldEPKc", "_ZN11QuillonPriv14HelloWorldPrivEPKc"}) {
        const auto helloWorld =
            reinterpret_cast<void (*)(void* object, const char*)>(plugin.symbol(name));
        const CaptureStdout output;
        char object = 0;  // the library object has no state
        helloWorld(&object, "Hello, 100 %d");
        EXPECT_EQ(output.text(), "Hello, 100 %d\n");
        helloWorld(&object, nullptr);
        helloWorld(&object, "");
        EXPECT_EQ(output.text(), "Hello, 100 %d\n\n");
    }
}

}  // namespace
