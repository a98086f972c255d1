#include "files/FileOps.h"

#include <gmock/gmock.h>

#include <filesystem>
#include <stdexcept>
#include <string>
#include <vector>

#include "support/Faults.h"
#include "support/TempDir.h"

namespace fs = std::filesystem;

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::UnorderedElementsAre;

TEST(IsDirectory, LooksForADotInTheLastComponentOnly) {
    const struct {
        const char* path;
        int isDirectory;
    } rows[] = {
        {"a/b.c", 0},     {"a.b/c", 1},  {"abc", 1},    {"", 1},
        {".", 0},         {"..", 0},     {"a.b/", 1},   {"a/.", 0},
        {"a/.hidden", 0}, {"a\\b.c", 0}, {"a.b\\c", 1}, {"a/b.c\\d", 1},
        {"a\\b/c.d", 0},  {"/", 1},      {"\\", 1},     {"dot.", 0},
    };
    for (const auto& row : rows)
        EXPECT_EQ(IsDirectory(row.path), row.isDirectory) << row.path;
}

TEST(FileNameExtract, GivesThePartThatTheModeNames) {
    const struct {
        const char* path;
        const char* folder;         // mode 1
        const char* name;           // mode 2
        const char* beforeLastDot;  // mode 3
        const char* nameWithType;   // mode 6
    } rows[] = {
        {"C:\\maps\\tile.1001.tif", "C:\\maps\\", "tile.1001", "C:\\maps\\tile.1001",
         "tile.1001.tif"},
        {"/maps/tile.tif", "/maps/", "tile", "/maps/tile", "tile.tif"},
        {"a/b\\c.tif", "a/b\\", "c", "a/b\\c", "c.tif"},
        {"a\\b/c.tif", "a\\b/", "c", "a\\b/c", "c.tif"},
        {"tile.tif", "", "tile", "tile", "tile.tif"},
        {"tile", "", "tile", "tile", "tile"},
        {"maps.v2/tile", "maps.v2/", "tile", "maps", "tile"},  // the dot of the folder counts
        {"maps.v2\\", "maps.v2\\", "", "maps", ""},
        {"/", "/", "", "/", ""},
        {".tif", "", "", "", ".tif"},
        {"maps/tile.", "maps/", "tile", "maps/tile", "tile."},
        {"größe/高さ.tif", "größe/", "高さ", "größe/高さ", "高さ.tif"},
        {"", "", "", "", ""},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.path);
        EXPECT_EQ(FileNameExtract(row.path, 1), row.folder);
        EXPECT_EQ(FileNameExtract(row.path, 2), row.name);
        EXPECT_EQ(FileNameExtract(row.path, 3), row.beforeLastDot);
        EXPECT_EQ(FileNameExtract(row.path, 6), row.nameWithType);
    }
}

TEST(FileNameExtract, GivesTheExtensionWithItsDotOrThrows) {
    EXPECT_EQ(FileNameExtract("C:\\maps\\tile.1001.tif", 4), ".tif");
    EXPECT_EQ(FileNameExtract("tile.", 4), ".");
    EXPECT_EQ(FileNameExtract(".hidden", 4), ".hidden");
    EXPECT_EQ(FileNameExtract("maps.v2/tile", 4), ".v2/tile");
    EXPECT_THROW(FileNameExtract("maps/tile", 4), std::out_of_range);
    EXPECT_THROW(FileNameExtract("", 4), std::out_of_range);
}

TEST(FileNameExtract, GivesTheWholePathForAnyOtherMode) {
    for (const int mode : {5, 0, 7, -1, -4, 2147483647, -2147483647 - 1})
        EXPECT_EQ(FileNameExtract("a\\b/c.tif", mode), "a\\b/c.tif") << mode;
}

// A dot in the folder's own path does not count.
TEST(ClearFolder, DeletesTheNamesWithADot) {
    const TempDir dir;
    const std::string folder = dir.makeFolder("maps.v2");
    for (const char* name : {"a.tif", "b.psd", "noext", "two words.tif", "größe 高さ.tif",
                             ".hidden", "dot.", "..two", "back.slash\\name"})
        dir.write("maps.v2/" + std::string(name), "");
    dir.makeFolder("maps.v2/sub");
    dir.write("maps.v2/sub/inner.tif", "");

    EXPECT_EQ(ClearFolder(folder), 1);
    std::vector<std::string> kept;
    for (const fs::directory_entry& entry : fs::directory_iterator(folder))
        kept.push_back(entry.path().filename().string());
    EXPECT_THAT(kept, UnorderedElementsAre("back.slash\\name", "noext", "sub"));
    EXPECT_TRUE(dir.has("maps.v2/sub/inner.tif"));
}

TEST(ClearFolder, NeverLeavesTheOnlyFile) {
    const TempDir dir;
    for (const char* name : {"a.tif", "z.tif", "0.tif"}) {
        for (const char* end : {"", "/"}) {
            dir.write(name, "");
            EXPECT_EQ(ClearFolder(dir.path() + end), 1);
            EXPECT_THAT(dir.names(), IsEmpty());
        }
    }
}

// More names than one system call lists, so that removing while reading would show.
TEST(ClearFolder, DeletesEveryOneOfManyFiles) {
    const TempDir dir;
    for (int i = 0; i < 1500; ++i)
        dir.write("a tile with a rather long name " + std::to_string(i) + ".tif", "");
    EXPECT_EQ(ClearFolder(dir.path()), 1);
    EXPECT_THAT(dir.names(), IsEmpty());
}

TEST(ClearFolder, DeletesFoldersWithADotThatAreEmpty) {
    const TempDir dir;
    dir.makeFolder("empty.d");
    dir.makeFolder("full.d");
    dir.write("full.d/inner.tif", "");
    dir.write("z.tif", "");

    EXPECT_EQ(ClearFolder(dir.path()), 1);
    EXPECT_THAT(dir.names(), ElementsAre("full.d"));
    EXPECT_TRUE(dir.has("full.d/inner.tif"));
}

TEST(ClearFolder, DeletesLinksAndNotWhatTheyLeadTo) {
    const TempDir dir;
    dir.makeFolder("work");
    dir.makeFolder("elsewhere");
    dir.write("elsewhere/kept.tif", "");
    fs::create_symlink("../elsewhere/kept.tif", dir.path("work/file.tif"));
    fs::create_directory_symlink("../elsewhere", dir.path("work/folder.d"));
    fs::create_symlink("nowhere", dir.path("work/dangling.tif"));

    EXPECT_EQ(ClearFolder(dir.path("work")), 1);
    EXPECT_TRUE(fs::is_empty(dir.path("work")));
    EXPECT_TRUE(dir.has("elsewhere/kept.tif"));
}

// The joined path, folder and slash and name, must fit 255 bytes.
TEST(ClearFolder, LeavesAnEntryWhoseJoinedPathIsTooLong) {
    const TempDir dir;
    const std::size_t room = 255 - (dir.path() + "/").size();
    const std::string fitting = std::string(room - 4, 'f') + ".tif";
    const std::string tooLong = std::string(room - 3, 'l') + ".tif";
    const std::string longestName = std::string(251, 'n') + ".tif";
    for (const std::string& name : {fitting, tooLong, longestName})
        dir.write(name, "");

    EXPECT_EQ(ClearFolder(dir.path()), 1);
    EXPECT_THAT(dir.names(), ElementsAre(tooLong, longestName));
}

TEST(ClearFolder, OpensOnlyAFolderThatIsNamed) {
    const TempDir dir;
    EXPECT_EQ(ClearFolder(dir.path("missing")), 0);
    EXPECT_EQ(ClearFolder(dir.write("file.tif", "")), 0);
    EXPECT_EQ(ClearFolder(""), 0) << "with a slash it would be the root folder";
    EXPECT_THAT(dir.names(), ElementsAre("file.tif"));
}

ByteList countingBytes(std::size_t count) {
    ByteList bytes(count);
    for (std::size_t i = 0; i < count; ++i)
        bytes[i] = static_cast<std::uint8_t>(i % 251);
    return bytes;
}

bool copied(const std::string& source, const std::string& target) {
    return copyFile(source.c_str(), target.c_str());
}

// Whole rounds of 4000 bytes, a last one that is short, and the sizes around them. The second copy
// replaces a longer file.
TEST(CopyFile, LeavesAnIdenticalFile) {
    const TempDir dir;
    const std::string target = dir.path("größe und mehr.tif");
    for (const std::size_t size : {10000u, 0u, 1u, 3999u, 4000u, 4001u, 8000u}) {
        const std::string source = dir.write("source.tif", countingBytes(size));
        EXPECT_TRUE(copied(source, target)) << size;
        EXPECT_EQ(readBytes(target), countingBytes(size));
        EXPECT_EQ(readBytes(source), countingBytes(size));
    }
}

TEST(CopyFile, OfAMissingFileDeletesTheTarget) {
    const TempDir dir;
    EXPECT_FALSE(copied(dir.path("missing.tif"), dir.write("target.tif", "old")));
    EXPECT_THAT(dir.names(), IsEmpty());
}

TEST(CopyFile, FailsWhereTheTargetCannotBeMade) {
    const TempDir dir;
    const std::string source = dir.write("source.tif", ByteList{1});
    dir.makeFolder("full");
    dir.write("full/kept.tif", "");
    EXPECT_FALSE(copied(source, dir.path("missing/target.tif")));
    EXPECT_FALSE(copied(source, source + "/target.tif"));
    EXPECT_FALSE(copied(source, dir.path("full")));
    EXPECT_FALSE(copied(source, ""));
    EXPECT_TRUE(dir.has("full/kept.tif"));
    EXPECT_EQ(readBytes(source), (ByteList{1}));
}

TEST(CopyFile, FailsWhenTheDiskIsFull) {
    const TempDir dir;
    const std::string source = dir.write("source.tif", countingBytes(10000));
    const std::string target = dir.path("target.tif");
    {
        const FullDisk full(5000);
        EXPECT_FALSE(copied(source, target));
    }
    EXPECT_EQ(readBytes(target), countingBytes(5000));
    EXPECT_EQ(readBytes(source), countingBytes(10000));
}

}  // namespace
