// Folder, file and text services, called as a script's host calls them.

#include <gmock/gmock.h>

#include <cmath>
#include <filesystem>
#include <limits>
#include <string>
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

    // All that GetFile still reports, up to the status -3.
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

    std::string textFrom(const char* text, double value) const {
        Block block;
        EXPECT_EQ(plugin.call("GetString", {.text = text, .value = value, .buffer1 = block}), 0.0f);
        return block.text();
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
    EXPECT_THAT(restOfListing(),
                UnorderedElementsAre(".", "..", "two words.tif", "größe 高さ.tif", longest, "sub"));
    EXPECT_EQ(plugin.call("CloseFolder"), 0.0f);
}

TEST_F(Services, ListingStaysExhaustedUntilItIsClosed) {
    ASSERT_EQ(onPath("OpenFolder", dir.path()), 0.0f);
    EXPECT_THAT(restOfListing(), UnorderedElementsAre(".", ".."));
    dir.write("late.tif", "");
    EXPECT_THAT(restOfListing(), IsEmpty());
    EXPECT_THAT(restOfListing(), IsEmpty());

    std::string name;
    EXPECT_EQ(plugin.call("CloseFolder"), 0.0f);
    EXPECT_EQ(nextEntry(name), -1.0f);
}

TEST_F(Services, ListingNeedsAnOpenFolder) {
    std::string name;
    EXPECT_EQ(nextEntry(name), -1.0f);
    EXPECT_EQ(name, "untouched");
    EXPECT_EQ(plugin.call("CloseFolder"), -1.0f);
}

TEST_F(Services, ListingIsClosedOnce) {
    ASSERT_EQ(onPath("OpenFolder", dir.path()), 0.0f);
    EXPECT_EQ(plugin.call("CloseFolder"), 0.0f);
    EXPECT_EQ(plugin.call("CloseFolder"), -1.0f);
}

TEST_F(Services, SecondOpenFolderStartsOver) {
    dir.makeFolder("full");
    ASSERT_EQ(onPath("OpenFolder", dir.path("full")), 0.0f);
    std::string name;
    ASSERT_EQ(nextEntry(name), 0.0f);

    ASSERT_EQ(onPath("OpenFolder", dir.makeFolder("empty")), 0.0f);
    EXPECT_THAT(restOfListing(), UnorderedElementsAre(".", ".."));
    EXPECT_EQ(plugin.call("CloseFolder"), 0.0f);
    EXPECT_EQ(plugin.call("CloseFolder"), -1.0f);
}

TEST_F(Services, OnlyAFolderThatExistsIsOpened) {
    const std::string file = dir.write("file.tif", "");
    for (const char* name : {"OpenFolder", "CheckFolder"}) {
        EXPECT_EQ(onPath(name, dir.path()), 0.0f) << name;
        EXPECT_EQ(onPath(name, dir.path("missing")), -1.0f) << name;
        EXPECT_EQ(onPath(name, file), -1.0f) << name;
        EXPECT_EQ(onPath(name, ""), -1.0f) << name;
    }
}

TEST_F(Services, FailedOpenFolderEndsAnOpenListing) {
    ASSERT_EQ(onPath("OpenFolder", dir.path()), 0.0f);
    ASSERT_EQ(onPath("OpenFolder", dir.path("missing")), -1.0f);
    EXPECT_EQ(plugin.call("CloseFolder"), -1.0f);
}

TEST_F(Services, CheckFolderEndsAnOpenListingWhetherItSucceedsOrNot) {
    std::string name;
    ASSERT_EQ(onPath("OpenFolder", dir.path()), 0.0f);
    ASSERT_EQ(onPath("CheckFolder", dir.path()), 0.0f);
    EXPECT_EQ(nextEntry(name), -1.0f);

    ASSERT_EQ(onPath("OpenFolder", dir.path()), 0.0f);
    ASSERT_EQ(onPath("CheckFolder", dir.path("missing")), -1.0f);
    EXPECT_EQ(nextEntry(name), -1.0f);
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
    EXPECT_EQ(onPath("CreateFolder", dir.path("maps")), 0.0f);
    EXPECT_EQ(onPath("CheckFolder", dir.path("maps")), 0.0f);
    EXPECT_EQ(onPath("CreateFolder", dir.path("maps")), -1.0f) << "it exists";
    EXPECT_EQ(onPath("CreateFolder", dir.path("missing/maps")), -1.0f);
    EXPECT_THAT(dir.names(), ElementsAre("maps"));
}

TEST_F(Services, EmptyFolderDeletesWhatHasADotInItsName) {
    for (const char* ending : {"", "/"}) {
        const std::string folder = dir.makeFolder("work");
        dir.write("work/a.tif", "");
        dir.write("work/b.psd", "");
        dir.write("work/noext", "");
        dir.makeFolder("work/sub");
        EXPECT_EQ(onPath("EmptyFolder", folder + ending), 0.0f);

        ASSERT_EQ(onPath("OpenFolder", folder), 0.0f);
        EXPECT_THAT(restOfListing(), UnorderedElementsAre(".", "..", "noext", "sub"));
    }
}

TEST_F(Services, EmptyFolderNeedsAFolder) {
    const std::string file = dir.write("a.tif", "");
    EXPECT_EQ(onPath("EmptyFolder", dir.path("missing")), -1.0f);
    EXPECT_EQ(onPath("EmptyFolder", file), -1.0f);
    EXPECT_EQ(onPath("EmptyFolder", ""), -1.0f);
    EXPECT_THAT(dir.names(), ElementsAre("a.tif"));
}

TEST_F(Services, PublicFolderHoldsTheUsersFolders) {
    Block block;
    const float status = plugin.call("GetPublicFolder", {.buffer1 = block});
    const bool exists = std::filesystem::is_directory("/home");
    EXPECT_EQ(status, exists ? 1.0f : 0.0f);
    EXPECT_EQ(block.text(), exists ? "/home" : "untouched");
}

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

TEST_F(Services, FileCopyToLeavesTwoEqualFiles) {
    const std::string source = dir.write("a.tif", ByteList{0, 255, 10, 13});
    EXPECT_EQ(onPaths("FileCopyTo", source, dir.path("b.tif")), 0.0f);
    EXPECT_EQ(readBytes(source), (ByteList{0, 255, 10, 13}));
    EXPECT_EQ(readBytes(dir.path("b.tif")), (ByteList{0, 255, 10, 13}));
}

TEST_F(Services, FileCopyToOfAMissingFileStillDeletesTheTarget) {
    const std::string target = dir.write("b.tif", "old");
    EXPECT_EQ(onPaths("FileCopyTo", dir.path("missing.tif"), target), -1.0f);
    EXPECT_THAT(dir.names(), IsEmpty());
}

TEST_F(Services, FileRenameReplacesTheTarget) {
    const std::string source = dir.write("a.tif", ByteList{1});
    const std::string target = dir.write("b.tif", ByteList{2});
    EXPECT_EQ(onPaths("FileRename", source, target), 0.0f);
    EXPECT_THAT(dir.names(), ElementsAre("b.tif"));
    EXPECT_EQ(readBytes(target), (ByteList{1}));
}

TEST_F(Services, FailedFileRenameChangesNothing) {
    const std::string source = dir.write("a.tif", ByteList{1});
    EXPECT_EQ(onPaths("FileRename", dir.path("missing.tif"), source), -1.0f);
    EXPECT_EQ(onPaths("FileRename", source, dir.path("missing/b.tif")), -1.0f);
    EXPECT_THAT(dir.names(), ElementsAre("a.tif"));
    EXPECT_EQ(readBytes(source), (ByteList{1}));
}

// Texts

TEST_F(Services, GetStringStartsAtTheValueTruncated) {
    EXPECT_EQ(textFrom("abcdefgh", 2.0), "cdefgh");
    EXPECT_EQ(textFrom("abcdefgh", 2.9), "cdefgh");
    EXPECT_EQ(textFrom("abcdefgh", 0.0), "abcdefgh");
    EXPECT_EQ(textFrom("abcdefgh", -0.0), "abcdefgh");
    EXPECT_EQ(textFrom("abcdefghijklm", 10.0), "klm");
    EXPECT_EQ(textFrom("abcdefghijklm", std::nextafter(10.0, 0.0)), "jklm");
}

TEST_F(Services, GetStringStartsAtByte5ForAnyOtherValue) {
    constexpr double kInf = std::numeric_limits<double>::infinity();
    for (const double value : {11.0, std::nextafter(10.0, 11.0), -1.0, std::nextafter(0.0, -1.0),
                               1e300, -1e300, kInf, -kInf, std::nan("")})
        EXPECT_EQ(textFrom("abcdefgh", value), "fgh") << value;
}

TEST_F(Services, GetStringPastTheEndIsEmpty) {
    EXPECT_EQ(textFrom("abc", 3.0), "");
    EXPECT_EQ(textFrom("abc", 4.0), "");
    EXPECT_EQ(textFrom("abc", 99.0), "");
    EXPECT_EQ(textFrom("", 10.0), "");
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
    const auto helloWorld = reinterpret_cast<void (*)(void* object, const char*)>(
        plugin.symbol("_ZN7Quillon10HelloWorldEPKc"));
    const CaptureStdout output;
    char object = 0;  // the library object has no state
    helloWorld(&object, "Hello, 100 %d");
    EXPECT_EQ(output.text(), "Hello, 100 %d\n");
    helloWorld(&object, nullptr);
    helloWorld(&object, "");
    EXPECT_EQ(output.text(), "Hello, 100 %d\n\n");
}

TEST_F(Services, HelloWorldPrivPrintsTheSame) {
    const auto helloWorldPriv = reinterpret_cast<void (*)(void* object, const char*)>(
        plugin.symbol("_ZN11QuillonPriv14HelloWorldPrivEPKc"));
    const CaptureStdout output;
    char object = 0;
    helloWorldPriv(&object, "Hello");
    EXPECT_EQ(output.text(), "Hello\n");
}

}  // namespace
