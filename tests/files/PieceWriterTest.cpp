#include "files/PieceWriter.h"

#include <gmock/gmock.h>

#include <numeric>

#include "support/Faults.h"
#include "support/TempDir.h"

namespace {

class PieceWriterTest : public testing::Test {
protected:
    bool create() { return out.start(File::create(path.c_str())); }

    const TempDir dir;
    const std::string path = dir.path("f");
    PieceWriter out{10};
};

TEST_F(PieceWriterTest, WritesBytesOfAnyLengthInOrder) {
    ByteList bytes(100);
    std::iota(bytes.begin(), bytes.end(), std::uint8_t{0});
    for (const std::size_t part : {1u, 7u, 10u, 11u, 25u, 100u}) {
        ASSERT_TRUE(create());
        for (std::size_t at = 0; at < bytes.size(); at += part) {
            EXPECT_EQ(out.offset(), at);
            out.append(&bytes[at], std::min(part, bytes.size() - at));
        }
        EXPECT_TRUE(out.flush());
        EXPECT_EQ(out.written(), 100u);
        EXPECT_EQ(readBytes(path), bytes) << part;
    }
}

TEST_F(PieceWriterTest, WritesNoRoomThatIsGivenBack) {
    ASSERT_TRUE(create());
    for (std::uint8_t value = 1; value <= 4; ++value) {
        std::fill_n(out.room(8), 8, value);
        out.giveBack(5);
    }
    EXPECT_TRUE(out.flush());
    EXPECT_EQ(readBytes(path), (ByteList{1, 1, 1, 2, 2, 2, 3, 3, 3, 4, 4, 4}));
}

TEST_F(PieceWriterTest, StartsAtAnOffsetAndSkipsBytes) {
    dir.write("f", ByteList{1, 2, 3, 4, 5, 6});
    ASSERT_TRUE(out.start(File::openForRewriting(path.c_str()), 1));
    out.append(ByteList{9}.data(), 1);
    out.skip(2);
    out.append(ByteList{8}.data(), 1);
    EXPECT_TRUE(out.flush());
    EXPECT_EQ(readBytes(path), (ByteList{1, 9, 3, 4, 8, 6}));
}

TEST_F(PieceWriterTest, ReportsAFullDiskAndWritesNothingMore) {
    const FullDisk disk(12);
    ASSERT_TRUE(create());
    out.append(ByteList(25, 7).data(), 25);
    EXPECT_FALSE(out.flush());
    EXPECT_EQ(out.offset(), 25u);
    EXPECT_EQ(out.written(), 12u);
    EXPECT_EQ(readBytes(path), ByteList(12, 7));
}

TEST_F(PieceWriterTest, ReportsAFileThatIsNotOpenAtTheStart) {
    EXPECT_FALSE(out.start(File::create(dir.path("none/f").c_str())));
}

}  // namespace
