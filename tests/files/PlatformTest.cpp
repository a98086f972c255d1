#include <gmock/gmock.h>

#include <filesystem>
#include <memory>
#include <optional>
#include <string>

#include "files/CocoaFileBrowser.h"
#include "support/TempDir.h"

namespace fs = std::filesystem;

namespace {

using testing::IsEmpty;

std::optional<std::string> taken(char* text) {
    const std::unique_ptr<char[]> owned(text);
    return owned == nullptr ? std::nullopt : std::optional<std::string>(owned.get());
}

TEST(CreateFolder, MakesAFolder) {
    const TempDir dir;
    EXPECT_TRUE(createFolder(dir.path("größe 高さ.maps").c_str()));
    EXPECT_TRUE(createFolder(dir.path("closed/").c_str()));
    EXPECT_TRUE(fs::is_directory(dir.path("größe 高さ.maps")));
    EXPECT_TRUE(fs::is_directory(dir.path("closed")));
}

TEST(CreateFolder, MakesNothingWhereSomethingExists) {
    const TempDir dir;
    EXPECT_FALSE(createFolder(dir.path().c_str()));
    EXPECT_FALSE(createFolder(dir.write("file", ByteList{1}).c_str()));
    EXPECT_EQ(readBytes(dir.path("file")), (ByteList{1}));
}

TEST(CreateFolder, MakesNoParents) {
    const TempDir dir;
    EXPECT_FALSE(createFolder(dir.path("missing/maps").c_str()));
    EXPECT_THAT(dir.names(), IsEmpty());
}

TEST(CreateFolder, NeedsAName) {
    EXPECT_FALSE(createFolder(nullptr));
    EXPECT_FALSE(createFolder(""));
}

TEST(GetSharedFolder, HoldsTheUsersFolders) {
    if (fs::is_directory("/home"))
        EXPECT_EQ(taken(getSharedFolder()), "/home");
    else
        EXPECT_EQ(taken(getSharedFolder()), std::nullopt);
}

TEST(OpenFileBrowser, GivesNothingWhereThereIsNoAppKit) {
    EXPECT_EQ(runCocoaOpenFileBrowser("Choose a mesh"), nullptr);
    EXPECT_EQ(runCocoaOpenFileBrowser(nullptr), nullptr);
}

}  // namespace
