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
