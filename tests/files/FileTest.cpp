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

// What opening for reading, for rewriting and loading refuse alike.
void expectNotOpened(const char* path) {
    EXPECT_FALSE(File::openForReading(path).isOpen());
    EXPECT_FALSE(File::openForRewriting(path).isOpen());
    EXPECT_EQ(loadFile(path).data, nullptr);
}

TEST(File, OpensNoMissingFile) {
    const TempDir dir;
    expectNotOpened(dir.path("missing").c_str());
    expectNotOpened("");
    EXPECT_FALSE(dir.has("missing"));
}

TEST(File, OpensNoNullPath) {
    expectNotOpened(nullptr);
    EXPECT_FALSE(File::create(nullptr).isOpen());
}

TEST(File, OpensNoFolder) {
    const TempDir dir;
    expectNotOpened(dir.path().c_str());
    EXPECT_FALSE(File::create(dir.path().c_str()).isOpen());
}

// A pipe whose other end nobody holds would make a plain open wait for ever.
TEST(File, NeverWaitsOnAPipe) {
    const TempDir dir;
    const std::string pipe = dir.path("pipe");
    ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
    expectNotOpened(pipe.c_str());
    EXPECT_FALSE(File::create(pipe.c_str()).isOpen());
}

TEST(File, OpensNoDevice) {
    expectNotOpened("/dev/zero");
}

TEST(File, ReadsWhatLiesInsideTheFile) {
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
    EXPECT_FALSE(write(File::openForReading(path.c_str()), 0, {9}));
    EXPECT_THAT(readBytes(path), ElementsAre(1, 2));
}

TEST(File, RewritingKeepsWhatIsNotWritten) {
    const TempDir dir;
    const std::string path = dir.write("f", ByteList{1, 2, 3, 4});
    {
        const File file = File::openForRewriting(path.c_str());
        EXPECT_TRUE(write(file, 1, {20, 30}));
        EXPECT_THAT(read(file, 0, 4), ElementsAre(1, 20, 30, 4));
    }
    EXPECT_THAT(readBytes(path), ElementsAre(1, 20, 30, 4));
}

TEST(File, WritingPastTheEndMakesTheFileLonger) {
    const TempDir dir;
    const std::string path = dir.write("f", ByteList{1, 2});
    const File file = File::openForRewriting(path.c_str());
    EXPECT_TRUE(write(file, 4, {5, 6}));
    EXPECT_EQ(file.size(), 2u);  // as it was opened
    EXPECT_THAT(readBytes(path), ElementsAre(1, 2, 0, 0, 5, 6));
}

TEST(File, WritingNothingSucceedsAnywhere) {
    const TempDir dir;
    const std::string path = dir.path("f");
    EXPECT_TRUE(write(File::create(path.c_str()), 100, {}));
    EXPECT_THAT(readBytes(path), ElementsAre());
}

TEST(File, WritingUpToALimitTellsHowFarItCame) {
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

TEST(File, CuttingTakesOffTheEndAndAddsNone) {
    const TempDir dir;
    const std::string path = dir.write("f", ByteList{1, 2, 3});
    const File file = File::openForRewriting(path.c_str());
    EXPECT_TRUE(file.cut(4));
    EXPECT_EQ(readBytes(path), (ByteList{1, 2, 3}));
    EXPECT_TRUE(file.cut(1));
    EXPECT_EQ(readBytes(path), ByteList{1});
    EXPECT_FALSE(File::openForReading(path.c_str()).cut(0));
    EXPECT_EQ(readBytes(path), ByteList{1});
}

TEST(File, CreatingEmptiesAFileThatExists) {
    const TempDir dir;
    const std::string path = dir.write("f", ByteList{1, 2, 3});
    EXPECT_TRUE(write(File::create(path.c_str()), 0, {9}));
    EXPECT_THAT(readBytes(path), ElementsAre(9));
}

TEST(File, CreatingNeedsTheFolder) {
    const TempDir dir;
    EXPECT_FALSE(File::create(dir.path("missing/f").c_str()).isOpen());
    EXPECT_FALSE(dir.has("missing"));
}

// What a full disk does to a write.
TEST(File, WritingToAFullDeviceFails) {
    const File full = File::create("/dev/full");
    ASSERT_TRUE(full.isOpen());
    EXPECT_FALSE(write(full, 0, {1}));
}

TEST(File, ThatIsNotOpenHoldsNothing) {
    const File none;
    EXPECT_FALSE(none.isOpen());
    EXPECT_EQ(none.size(), 0u);
    EXPECT_THAT(read(none, 0, 1), ElementsAre());
    EXPECT_FALSE(write(none, 0, {1}));
}

TEST(File, MovesToOneOwnerThatClosesIt) {
    const TempDir dir;
    const std::string path = dir.write("f", ByteList{1});
    const auto before = openFiles();
    {
        std::optional<File> first(File::openForReading(path.c_str()));
        const File second(std::move(*first));
        EXPECT_FALSE(first->isOpen());
        EXPECT_EQ(first->size(), 0u);
        EXPECT_EQ(second.size(), 1u);
        first.reset();
        EXPECT_THAT(read(second, 0, 1), ElementsAre(1));
        EXPECT_EQ(openFiles(), before + 1);
    }
    EXPECT_EQ(openFiles(), before);
}

TEST(File, AssigningClosesTheFileThatWasHeld) {
    const TempDir dir;
    const auto before = openFiles();
    File file = File::openForReading(dir.write("a", ByteList{1}).c_str());
    file = File::openForReading(dir.write("b", ByteList{2}).c_str());
    EXPECT_THAT(read(file, 0, 1), ElementsAre(2));
    EXPECT_EQ(openFiles(), before + 1);
    file = File();
    EXPECT_EQ(openFiles(), before);
}

TEST(File, RefusingLeavesNoDescriptorOpen) {
    const TempDir dir;
    const auto before = openFiles();
    expectNotOpened(dir.path().c_str());
    expectNotOpened("/dev/zero");
    expectNotOpened(dir.path("missing").c_str());
    EXPECT_EQ(openFiles(), before);
}

TEST(LoadFile, HoldsTheWholeFile) {
    const TempDir dir;
    const FileBytes file = loadFile(dir.write("f", ByteList{1, 0, 255}).c_str());
    ASSERT_NE(file.data, nullptr);
    EXPECT_EQ(ByteList(file.data.get(), file.data.get() + file.size), (ByteList{1, 0, 255}));
}

// A disk that fails, or a file that somebody cuts short meanwhile. This file of the system's says
// that it has 4096 bytes.
TEST(LoadFile, AFileThatGivesLessThanItsSizeIsRefused) {
    const char* const path = "/sys/kernel/fscaps";
    const File file = File::openForReading(path);
    ASSERT_TRUE(file.isOpen()) << path;
    ByteList bytes(4096);
    ASSERT_LT(file.readAt(0, bytes.data(), bytes.size()), file.size());
    EXPECT_EQ(loadFile(path).data, nullptr);
}

TEST(LoadFile, SpareBytesAreZeroAndNotCounted) {
    const TempDir dir;
    const FileBytes file = loadFile(dir.write("f", ByteList{7, 8}).c_str(), 3);
    ASSERT_NE(file.data, nullptr);
    EXPECT_EQ(file.size, 2u);
    EXPECT_EQ(ByteList(file.data.get(), file.data.get() + 5), (ByteList{7, 8, 0, 0, 0}));
}

TEST(LoadFile, AnEmptyFileIsLoaded) {
    const TempDir dir;
    const FileBytes file = loadFile(dir.write("f", "").c_str(), 1);
    ASSERT_NE(file.data, nullptr);
    EXPECT_EQ(file.size, 0u);
    EXPECT_EQ(file.data[0], 0);
}

TEST(LoadFile, ASizeBeyondTheMemoryIsRefused) {
    const TempDir dir;
    const std::string path = dir.write("f", ByteList{1});
    EXPECT_EQ(loadFile(path.c_str(), SIZE_MAX / 2).data, nullptr);
}

TEST(LoadFile, ClosesTheFile) {
    const TempDir dir;
    const std::string path = dir.write("f", ByteList{1});
    const auto before = openFiles();
    EXPECT_NE(loadFile(path.c_str()).data, nullptr);
    EXPECT_EQ(openFiles(), before);
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
    EXPECT_FALSE(file.isSameAs(nullptr));
}

TEST(File, MayBeTheSameWhereTheSystemCannotTell) {
    const TempDir dir;
    const File file = File::openForReading(dir.write("f", ByteList{1}).c_str());
    const std::string loop = dir.path("loop");
    std::filesystem::create_symlink(loop, loop);
    EXPECT_TRUE(file.isSameAs(loop.c_str()));
}

}  // namespace
