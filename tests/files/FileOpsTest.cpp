#include "files/FileOps.h"

#include <gmock/gmock.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <stdexcept>
#include <string>

#include "support/Faults.h"
#include "support/TempDir.h"

namespace fs = std::filesystem;

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

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

TEST(FileNameExtract, GivesThePieceThatTheModeNames) {
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

TEST(FileNameExtract, GivesTheExtensionWithItsDot) {
    EXPECT_EQ(FileNameExtract("C:\\maps\\tile.1001.tif", 4), ".tif");
    EXPECT_EQ(FileNameExtract("tile.", 4), ".");
    EXPECT_EQ(FileNameExtract(".hidden", 4), ".hidden");
    EXPECT_EQ(FileNameExtract("maps.v2/tile", 4), ".v2/tile");
}

TEST(FileNameExtract, ThrowsForTheExtensionOfAPathWithoutADot) {
    EXPECT_THROW(FileNameExtract("maps/tile", 4), std::out_of_range);
    EXPECT_THROW(FileNameExtract("", 4), std::out_of_range);
}

TEST(FileNameExtract, GivesTheWholePathForAnyOtherMode) {
    for (const int mode : {5, 0, 7, -1, -4, 2147483647, -2147483647 - 1})
        EXPECT_EQ(FileNameExtract("a\\b/c.tif", mode), "a\\b/c.tif") << mode;
}

TEST(ClearFolder, DeletesTheNamesWithADot) {
    const TempDir dir;
    for (const char* name : {"a.tif", "b.psd", "noext", "two words.tif", "größe 高さ.tif",
                             ".hidden", "dot.", "..two", "back.slash\\name"})
        dir.write(name, "");
    dir.makeFolder("sub");
    dir.write("sub/inner.tif", "");

    EXPECT_EQ(ClearFolder(dir.path()), 1);
    EXPECT_THAT(dir.names(), ElementsAre("back.slash\\name", "noext", "sub"));
    EXPECT_TRUE(dir.has("sub/inner.tif"));
}

TEST(ClearFolder, TakesAPathWithAClosingSlash) {
    const TempDir dir;
    dir.write("a.tif", "");
    EXPECT_EQ(ClearFolder(dir.path() + "/"), 1);
    EXPECT_THAT(dir.names(), IsEmpty());
}

TEST(ClearFolder, NeverSparesTheOnlyFile) {
    const TempDir dir;
    for (const char* name : {"a.tif", "z.tif", "0.tif"}) {
        dir.write(name, "");
        EXPECT_EQ(ClearFolder(dir.path()), 1);
        EXPECT_THAT(dir.names(), IsEmpty());
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

TEST(ClearFolder, AFolderWithADotGoesWhenItIsEmpty) {
    const TempDir dir;
    dir.makeFolder("empty.d");
    dir.makeFolder("full.d");
    dir.write("full.d/inner.tif", "");
    dir.write("z.tif", "");

    EXPECT_EQ(ClearFolder(dir.path()), 1);
    EXPECT_THAT(dir.names(), ElementsAre("full.d"));
    EXPECT_TRUE(dir.has("full.d/inner.tif"));
}

TEST(ClearFolder, ALinkGoesAndWhatItNamesStays) {
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

TEST(ClearFolder, ADotInTheFoldersOwnPathSparesTheNamesWithoutOne) {
    const TempDir dir;
    dir.makeFolder("maps.v2");
    dir.write("maps.v2/noext", "");
    EXPECT_EQ(ClearFolder(dir.path("maps.v2")), 1);
    EXPECT_TRUE(dir.has("maps.v2/noext"));
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

TEST(ClearFolder, LeavesAFolderThatItMayNotRead) {
    const TempDir dir;
    const std::string folder = dir.makeFolder("locked");
    dir.write("locked/a.tif", "");
    ASSERT_EQ(::chmod(dir.path().c_str(), 0755), 0);
    ASSERT_EQ(::chmod(folder.c_str(), 0), 0);
    {
        const WithoutRoot ordinaryUser;
        EXPECT_EQ(ClearFolder(folder), 0);
    }
    ASSERT_EQ(::chmod(folder.c_str(), 0755), 0);
    EXPECT_TRUE(dir.has("locked/a.tif"));
}

TEST(ClearFolder, SucceedsWhereSingleFilesCannotBeDeleted) {
    const TempDir dir;
    const std::string folder = dir.makeFolder("locked");
    dir.write("locked/a.tif", "");
    ASSERT_EQ(::chmod(dir.path().c_str(), 0755), 0);
    ASSERT_EQ(::chmod(folder.c_str(), 0555), 0);
    {
        const WithoutRoot ordinaryUser;
        EXPECT_EQ(ClearFolder(folder), 1);
    }
    ASSERT_EQ(::chmod(folder.c_str(), 0755), 0);
    EXPECT_TRUE(dir.has("locked/a.tif"));
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

// Whole rounds of 4000 bytes, a last one that is short, and the sizes around them.
TEST(CopyFile, LeavesAnIdenticalFile) {
    const TempDir dir;
    const std::string target = dir.path("größe und mehr.tif");
    const std::size_t sizes[] = {0, 1, 3999, 4000, 4001, 8000, 10000};
    for (const std::size_t size : sizes) {
        const std::string source = dir.write("source.tif", countingBytes(size));
        EXPECT_TRUE(copied(source, target)) << size;
        EXPECT_EQ(readBytes(target), countingBytes(size));
        EXPECT_EQ(readBytes(source), countingBytes(size));
    }
}

TEST(CopyFile, ReplacesALongerTarget) {
    const TempDir dir;
    const std::string target = dir.write("target.tif", countingBytes(5000));
    EXPECT_TRUE(copied(dir.write("source.tif", ByteList{1, 2}), target));
    EXPECT_EQ(readBytes(target), (ByteList{1, 2}));
}

TEST(CopyFile, ReplacesALinkAndNotWhatItNames) {
    const TempDir dir;
    const std::string linked = dir.write("linked.tif", ByteList{7});
    fs::create_symlink("linked.tif", dir.path("target.tif"));
    EXPECT_TRUE(copied(dir.write("source.tif", ByteList{1}), dir.path("target.tif")));
    EXPECT_EQ(readBytes(linked), (ByteList{7}));
    EXPECT_EQ(readBytes(dir.path("target.tif")), (ByteList{1}));
}

TEST(CopyFile, OfAMissingFileDeletesTheTarget) {
    const TempDir dir;
    EXPECT_FALSE(copied(dir.path("missing.tif"), dir.write("target.tif", "old")));
    EXPECT_THAT(dir.names(), IsEmpty());
}

TEST(CopyFile, OntoItselfDeletesTheFile) {
    const TempDir dir;
    const std::string file = dir.write("file.tif", "text");
    EXPECT_FALSE(copied(file, file));
    EXPECT_THAT(dir.names(), IsEmpty());
}

// A pipe that nobody writes to would hold the host for ever.
TEST(CopyFile, TakesNoFolderOrPipeForAFile) {
    const TempDir dir;
    const std::string pipe = dir.path("pipe.tif");
    ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
    EXPECT_FALSE(copied(dir.makeFolder("folder"), dir.path("target.tif")));
    EXPECT_FALSE(copied(pipe, dir.path("target.tif")));
    EXPECT_THAT(dir.names(), ElementsAre("folder", "pipe.tif"));
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

TEST(CopyFile, LeavesAnUnwritableFolderAsItIs) {
    const TempDir dir;
    const std::string source = dir.write("source.tif", ByteList{1});
    const std::string folder = dir.makeFolder("locked");
    const std::string target = dir.write("locked/target.tif", ByteList{2});
    ASSERT_EQ(::chmod(dir.path().c_str(), 0755), 0);
    ASSERT_EQ(::chmod(folder.c_str(), 0555), 0);
    {
        const WithoutRoot ordinaryUser;
        EXPECT_FALSE(copied(source, dir.path("locked/new.tif")));
        EXPECT_FALSE(copied(source, target + "/new.tif"));
    }
    ASSERT_EQ(::chmod(folder.c_str(), 0755), 0);
    EXPECT_FALSE(dir.has("locked/new.tif"));
    EXPECT_EQ(readBytes(target), (ByteList{2}));
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
