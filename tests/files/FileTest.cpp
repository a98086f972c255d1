#include "files/File.h"

#include <gmock/gmock.h>
#include <sys/stat.h>

#include <filesystem>
#include <optional>
#include <string>
#include <utility>

#include "support/Faults.h"
#include "support/TempDir.h"

namespace {

using testing::ElementsAre;

ByteList read(const File& file, std::uint64_t offset, std::size_t count) {
    ByteList bytes(count);
    bytes.resize(file.readAt(offset, bytes.data(), count));
    return bytes;
}

bool write(const File& file, std::uint64_t offset, const ByteList& bytes) {
    return file.writeAt(offset, bytes.data(), bytes.size());
}

// What opening for reading, opening for rewriting and loading all refuse.
void expectNotOpened(const char* path) {
    EXPECT_FALSE(File::openForReading(path).isOpen());
    EXPECT_FALSE(File::openForRewriting(path).isOpen());
    EXPECT_EQ(loadFile(path).data, nullptr);
}

// A pipe whose other end nobody holds would make a plain open wait for ever.
TEST(File, OpensNothingButAFile) {
    const TempDir dir;
    const std::string pipe = dir.path("pipe");
    ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
    const auto before = openFiles();
    for (const std::string& path : {dir.path("missing"), dir.path(), pipe})
        expectNotOpened(path.c_str());
    for (const char* path : {static_cast<const char*>(nullptr), "", "/dev/zero"})
        expectNotOpened(path);
    EXPECT_EQ(openFiles(), before);
    EXPECT_THAT(dir.names(), ElementsAre("pipe"));
}

TEST(File, IsCreatedNowhereButInAFolder) {
    const TempDir dir;
    const std::string pipe = dir.path("pipe");
    ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
    for (const auto create : {File::create, File::createOver, File::createNew}) {
        EXPECT_FALSE(create(nullptr).isOpen());
        for (const std::string& path : {dir.path(), pipe, dir.path("missing/f")})
            EXPECT_FALSE(create(path.c_str()).isOpen()) << path;
    }
    EXPECT_THAT(dir.names(), ElementsAre("pipe"));
}

TEST(File, IsCreatedNewOnlyWhereThereIsNothing) {
    const TempDir dir;
    dir.write("old", "kept");
    std::filesystem::create_symlink(dir.path("nowhere"), dir.path("link"));
    dir.makeFolder("folder");
    for (const char* name : {"old", "link", "folder"})
        EXPECT_FALSE(File::createNew(dir.path(name).c_str()).isOpen()) << name;
    EXPECT_TRUE(File::createNew(dir.path("new").c_str()).isOpen());
    EXPECT_THAT(dir.names(), ElementsAre("folder", "link", "new", "old"));
    EXPECT_EQ(readText(dir.path("old")), "kept");
}

TEST(File, IsForAllWhomTheUmaskDoesNotExclude) {
    const TempDir dir;
    for (const auto create : {File::create, File::createOver, File::createNew}) {
        for (const auto& [mask, mode] : {std::pair<mode_t, mode_t>(0, 0666), {022, 0644}}) {
            const mode_t before = ::umask(mask);
            EXPECT_TRUE(create(dir.path("f").c_str()).isOpen());
            ::umask(before);
            struct stat status {};
            ASSERT_EQ(::stat(dir.path("f").c_str(), &status), 0);
            EXPECT_EQ(status.st_mode & 07777u, mode);
            std::filesystem::remove(dir.path("f"));
        }
    }
}

TEST(File, ReadsWhatIsInsideTheFile) {
    const TempDir dir;
    const File file = File::openForReading(dir.write("f", ByteList{10, 11, 12, 13, 14}).c_str());
    ASSERT_TRUE(file.isOpen());
    EXPECT_EQ(file.size(), 5u);
    EXPECT_THAT(read(file, 0, 5), ElementsAre(10, 11, 12, 13, 14));
    EXPECT_THAT(read(file, 3, 1), ElementsAre(13));
    EXPECT_THAT(read(file, 3, 9), ElementsAre(13, 14));
    EXPECT_THAT(read(file, 5, 1), ElementsAre());
    EXPECT_THAT(read(file, 1'000'000, 1), ElementsAre());
    EXPECT_THAT(read(file, 0, 0), ElementsAre());
}

// Offsets that the system's own type cannot hold.
TEST(File, HasNothingAtImpossibleOffsets) {
    const TempDir dir;
    const File file = File::openForRewriting(dir.write("f", ByteList{1}).c_str());
    for (const std::uint64_t offset :
         {UINT64_MAX, std::uint64_t{1} << 63, (std::uint64_t{1} << 63) - 1}) {
        EXPECT_THAT(read(file, offset, 1), ElementsAre());
        EXPECT_FALSE(write(file, offset, {9}));
    }
    EXPECT_EQ(file.size(), 1u);
}

TEST(File, OpenedForReadingIsNeverWritten) {
    const TempDir dir;
    const std::string path = dir.write("f", ByteList{1, 2});
    const File file = File::openForReading(path.c_str());
    EXPECT_FALSE(write(file, 0, {9}));
    EXPECT_FALSE(file.cut(0));
    EXPECT_THAT(readBytes(path), ElementsAre(1, 2));
}

TEST(File, RewritingKeepsWhatIsNotWritten) {
    const TempDir dir;
    const std::string path = dir.write("f", ByteList{1, 2, 3, 4});
    const File file = File::openForRewriting(path.c_str());
    EXPECT_TRUE(write(file, 1, {20, 30}));
    EXPECT_THAT(read(file, 0, 4), ElementsAre(1, 20, 30, 4));
    EXPECT_TRUE(write(file, 6, {5, 6}));
    EXPECT_EQ(file.size(), 4u) << "as it was opened";
    EXPECT_THAT(readBytes(path), ElementsAre(1, 20, 30, 4, 0, 0, 5, 6));
}

TEST(File, WritingNothingSucceedsAnywhere) {
    const TempDir dir;
    const std::string path = dir.path("f");
    EXPECT_TRUE(write(File::create(path.c_str()), 100, {}));
    EXPECT_THAT(readBytes(path), ElementsAre());
}

TEST(File, WritingToAFullDiskReturnsHowManyBytesItTook) {
    const TempDir dir;
    const std::string path = dir.write("f", ByteList{1, 2, 3, 4});
    const File file = File::openForRewriting(path.c_str());
    const ByteList bytes = {7, 8, 9};
    {
        const FullDisk disk(3);
        EXPECT_EQ(file.writeUpTo(1, bytes.data(), 3), 2u);
    }
    EXPECT_EQ(readBytes(path), (ByteList{1, 7, 8, 4}));
}

TEST(File, CuttingRemovesTheEndAndAddsNone) {
    const TempDir dir;
    const std::string path = dir.write("f", ByteList{1, 2, 3});
    const File file = File::openForRewriting(path.c_str());
    EXPECT_TRUE(file.cut(4));
    EXPECT_EQ(readBytes(path), (ByteList{1, 2, 3}));
    EXPECT_TRUE(file.cut(1));
    EXPECT_EQ(readBytes(path), ByteList{1});
}

TEST(File, CreatingEmptiesAFileThatExists) {
    const TempDir dir;
    const std::string path = dir.write("f", ByteList{1, 2, 3});
    EXPECT_TRUE(write(File::create(path.c_str()), 0, {9}));
    EXPECT_THAT(readBytes(path), ElementsAre(9));
}

TEST(File, ThatIsNotOpenHoldsNothing) {
    const File none;
    EXPECT_FALSE(none.isOpen());
    EXPECT_EQ(none.size(), 0u);
    EXPECT_THAT(read(none, 0, 1), ElementsAre());
    EXPECT_FALSE(write(none, 0, {1}));
}

TEST(File, HasOneOwnerThatClosesIt) {
    const TempDir dir;
    const auto before = openFiles();
    {
        std::optional<File> first(File::openForReading(dir.write("a", ByteList{1}).c_str()));
        File second(std::move(*first));
        EXPECT_FALSE(first->isOpen());
        EXPECT_EQ(first->size(), 0u);
        EXPECT_EQ(second.size(), 1u);
        first.reset();
        EXPECT_THAT(read(second, 0, 1), ElementsAre(1));
        second = File::openForReading(dir.write("b", ByteList{2, 3}).c_str());
        EXPECT_THAT(read(second, 0, 2), ElementsAre(2, 3));
        EXPECT_EQ(openFiles(), before + 1);
        second = File();
        EXPECT_EQ(openFiles(), before);
        second = File::openForReading(dir.path("a").c_str());
    }
    EXPECT_EQ(openFiles(), before);
}

TEST(LoadFile, HoldsTheWholeFileAndSpareBytesOfZero) {
    const TempDir dir;
    const struct {
        ByteList file;
        std::size_t spare;
        ByteList loaded;
    } rows[] = {{{1, 0, 255}, 0, {1, 0, 255}}, {{7, 8}, 3, {7, 8, 0, 0, 0}}, {{}, 1, {0}}};
    for (const auto& row : rows) {
        const FileBytes file = loadFile(dir.write("f", row.file).c_str(), row.spare);
        ASSERT_NE(file.data, nullptr);
        EXPECT_EQ(file.size, row.file.size()) << "spare bytes do not count";
        EXPECT_EQ(ByteList(file.data.get(), file.data.get() + row.loaded.size()), row.loaded);
    }
}

TEST(LoadFile, ASizeBeyondTheMemoryIsRefused) {
    const TempDir dir;
    const std::string path = dir.write("f", ByteList{1});
    EXPECT_EQ(loadFile(path.c_str(), SIZE_MAX / 2).data, nullptr);
}

TEST(File, IsTheSameByAnyOfItsNames) {
    const TempDir dir;
    const std::string path = dir.write("f", ByteList{1});
    std::filesystem::create_symlink(path, dir.path("link"));
    const File file = File::openForReading(path.c_str());
    EXPECT_TRUE(file.isSameAs(path.c_str()));
    EXPECT_TRUE(file.isSameAs(dir.path("link").c_str()));
    EXPECT_FALSE(file.isSameAs(dir.write("g", ByteList{1}).c_str()));
    EXPECT_FALSE(file.isSameAs(dir.path("missing").c_str()));
    EXPECT_FALSE(file.isSameAs(dir.path("f/below").c_str()));
    EXPECT_FALSE(file.isSameAs("/dev/null")) << "on another device";
    EXPECT_FALSE(file.isSameAs(nullptr));
}

TEST(File, MayBeTheSameWhereThatCannotBeDetermined) {
    const TempDir dir;
    const File file = File::openForReading(dir.write("f", ByteList{1}).c_str());
    const std::string loop = dir.path("loop");
    std::filesystem::create_symlink(loop, loop);
    EXPECT_TRUE(file.isSameAs(loop.c_str()));
}

}  // namespace
