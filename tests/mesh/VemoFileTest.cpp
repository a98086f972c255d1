#include "mesh/VemoFile.h"

#include <gmock/gmock.h>

#include "support/TempDir.h"
#include "support/VemoBuilder.h"

namespace {

constexpr auto kGuarded = ZeroLength::kCountsAs16;
constexpr auto kPlain = ZeroLength::kEndsSearch;

Bytes view(const ByteList& bytes) {
    return {bytes.data(), bytes.size()};
}

char byte(int value) {
    return static_cast<char>(value);
}

TEST(VemoReaders, AssembleLittleEndianValuesFromBytes) {
    EXPECT_EQ(readUnInt(byte(0xFE), byte(0x80), byte(0x00), byte(0xFF)), 0xFF0080FEu);
    EXPECT_EQ(readaFloat(byte(0x00), byte(0x00), byte(0x80), byte(0xBF)), -1.0f);
    EXPECT_EQ(readanInt(byte(0xFF)), 255);
}

TEST(VemoReaders, ShortsAreSigned) {
    EXPECT_EQ(readShort(byte(0xFF), byte(0x00)), 255);
    EXPECT_EQ(readShort(byte(0x00), byte(0x80)), -32768);
    EXPECT_EQ(readShort(byte(0xFF), byte(0xFF)), -1);
}

TEST(LoadVemo, RepeatsTheLastByteOnce) {
    const TempDir dir;
    const VemoFile vemo = loadVemo(dir.write("m.Vemo", ByteList{1, 2, 7}).c_str());
    const Bytes loaded = vemo.loaded();
    EXPECT_EQ(ByteList(loaded.data, loaded.data + loaded.size), (ByteList{1, 2, 7, 7}));
}

TEST(LoadVemo, AnEmptyFileIsOneZeroByte) {
    const TempDir dir;
    const VemoFile vemo = loadVemo(dir.write("m.Vemo", ByteList{}).c_str());
    ASSERT_TRUE(vemo.isOpen());
    EXPECT_EQ(vemo.loaded().size, 1u);
    EXPECT_EQ(vemo.loaded().data[0], 0);
}

TEST(VemoPieces, ReadTheLastByteOnceMoreAndZeroBehindIt) {
    const TempDir dir;
    VemoPieces mesh(dir.write("m.Vemo", ByteList{1, 2, 3, 4, 7}).c_str());
    ASSERT_TRUE(mesh.isGood());
    EXPECT_EQ(mesh.size, 6u);
    EXPECT_EQ(mesh.le32(0), 0x04030201u);
    EXPECT_EQ(mesh.le32(2), 0x07070403u);
    EXPECT_EQ(mesh.le32(4), 0x00000707u);
    EXPECT_EQ(mesh.le32(6), 0u);
    EXPECT_EQ(mesh.le32(1), 0x07040302u);
}

TEST(VemoPieces, AnEmptyFileIsOneZeroByte) {
    const TempDir dir;
    VemoPieces mesh(dir.write("m.Vemo", ByteList{}).c_str());
    ASSERT_TRUE(mesh.isGood());
    EXPECT_EQ(mesh.size, 1u);
    EXPECT_EQ(mesh.le32(0), 0u);
}

// 200,000 elements of 2 bytes are more than one piece; the last one shares the repeated byte.
TEST(VemoPieces, HandOutAllElementsInOrder) {
    const TempDir dir;
    ByteList bytes;
    for (std::uint32_t i = 0; i < 200000; ++i) {
        bytes.push_back(static_cast<std::uint8_t>(i));
        bytes.push_back(static_cast<std::uint8_t>(i >> 8));
    }
    bytes.pop_back();
    VemoPieces mesh(dir.write("m.Vemo", bytes).c_str());
    std::uint32_t next = 0;
    const auto check = [&](const std::uint8_t* element, std::size_t count) {
        for (std::size_t i = 0; i + 1 < count; ++i, ++next, element += 2)
            ASSERT_EQ(loadLe16(element), next % 65536);
        if (next == 199999) {
            EXPECT_EQ(loadLe16(element), 0x3F3F);
        }
        ++next;
    };
    EXPECT_TRUE(mesh.forEachPiece({0, 200000}, 2, check));
    EXPECT_EQ(next, 200000u);
    EXPECT_FALSE(mesh.forEachPiece({2, 200000}, 2, [](const std::uint8_t*, std::size_t) {}));
}

TEST(FindChunk, AFirstChunkIsFoundWithoutItsLength) {
    const ByteList mesh = VemoBuilder().chunk(25001, 0, 0).bytes();
    EXPECT_EQ(findChunk(view(mesh), 25001, 32, kPlain), 32u);
}

TEST(FindChunk, LaterChunksAreReachedByTheLengths) {
    const ByteList mesh = VemoBuilder().vertices({{1, 2, 3}}).faces({{0, 0, 0, -1}}).bytes();
    EXPECT_EQ(findChunk(view(mesh), 20001, 32, kPlain), 60u);
}

TEST(FindChunk, StartsAtTheChunkItIsGiven) {
    const ByteList mesh = VemoBuilder().groups({}).groups({}).bytes();
    EXPECT_EQ(findChunk(view(mesh), 40001, 48, kGuarded), 48u);
}

TEST(FindChunk, AGuardedSearchStepsOverAZeroLength) {
    const ByteList mesh = VemoBuilder().chunk(7, 0, 0).groups({1}).bytes();
    EXPECT_EQ(findChunk(view(mesh), 40001, 32, kGuarded), 48u);
}

TEST(FindChunk, APlainSearchEndsAtAZeroLength) {
    const ByteList mesh = VemoBuilder().chunk(7, 0, 0).groups({1}).bytes();
    EXPECT_EQ(findChunk(view(mesh), 40001, 32, kPlain), std::nullopt);
}

TEST(FindChunk, ALengthThatWouldLeadBackwardsEndsTheSearch) {
    const ByteList mesh = VemoBuilder().chunk(7, 16, 0).chunk(8, 0xFFFFFFF0, 0).bytes();
    EXPECT_EQ(findChunk(view(mesh), 40001, 32, kGuarded), std::nullopt);
}

TEST(FindChunk, AFileWithoutChunksHasNone) {
    const ByteList header = VemoBuilder().bytes();
    EXPECT_EQ(findChunk(view(header), 10001, 32, kGuarded), std::nullopt);
    EXPECT_EQ(findChunk(view({}), 10001, 32, kGuarded), std::nullopt);
}

TEST(ChunkElements, StartBehindTheHeader) {
    const ByteList mesh = VemoBuilder().groups({1, 2, 3}).bytes();
    const auto elements = chunkElements(view(mesh), 32, 2);
    ASSERT_TRUE(elements);
    EXPECT_EQ(elements->offset, 48u);
    EXPECT_EQ(elements->count, 3u);
}

TEST(ChunkElements, ACountBeyondTheFileIsRefused) {
    const ByteList mesh = VemoBuilder().chunk(40001, 22, 4, {1, 0, 2, 0, 3, 0}).bytes();
    EXPECT_FALSE(chunkElements(view(mesh), 32, 2));
    const ByteList huge = VemoBuilder().chunk(40001, 22, 0xFFFFFFFF, {1, 0}).bytes();
    EXPECT_FALSE(chunkElements(view(huge), 32, 32));
}

TEST(ChunkElements, AHeaderCutShortIsRefused) {
    ByteList mesh = VemoBuilder().groups({}).bytes();
    mesh.resize(32 + 11);
    EXPECT_FALSE(chunkElements(view(mesh), 32, 2));
}

}  // namespace
