#include "mesh/VemoFile.h"

#include <gmock/gmock.h>

#include "bytes/Bytes.h"
#include "support/TempDir.h"
#include "support/VemoBuilder.h"

namespace {

constexpr auto kGuarded = ZeroLength::kCountsAs16;
constexpr auto kPlain = ZeroLength::kEndsSearch;

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

class VemoFileTest : public testing::Test {
protected:
    VemoFile fileOf(const ByteList& bytes) const {
        return VemoFile(dir.write("m.Vemo", bytes).c_str());
    }
    std::optional<std::uint32_t> find(const VemoBuilder& mesh, std::uint32_t id,
                                      std::uint32_t start, ZeroLength zeroLength) const {
        return fileOf(mesh.bytes()).findChunk(id, start, zeroLength);
    }
    std::optional<ChunkElements> elements(const ByteList& mesh, std::size_t elementBytes) const {
        return fileOf(mesh).elementsOf(32, elementBytes);
    }

    const TempDir dir;
};

TEST_F(VemoFileTest, ReadsTheLastByteOnceMoreAndZeroBehindIt) {
    for (const bool kept : {false, true}) {
        VemoFile mesh = fileOf({1, 2, 3, 4, 7});
        ASSERT_TRUE(mesh.isGood());
        if (kept) {
            ASSERT_TRUE(mesh.keep());
            EXPECT_EQ(ByteList(mesh.data(), mesh.data() + 6), (ByteList{1, 2, 3, 4, 7, 7}));
        }
        EXPECT_EQ(mesh.size(), 6u);
        EXPECT_EQ(mesh.le32(0), 0x04030201u);
        EXPECT_EQ(mesh.le32(2), 0x07070403u);
        EXPECT_EQ(mesh.le32(4), 0x00000707u);
        EXPECT_EQ(mesh.le32(6), 0u);
        EXPECT_EQ(mesh.le32(1), 0x07040302u);
    }
}

TEST_F(VemoFileTest, AnEmptyFileIsOneZeroByte) {
    VemoFile mesh = fileOf({});
    ASSERT_TRUE(mesh.keep());
    EXPECT_EQ(mesh.size(), 1u);
    EXPECT_EQ(mesh.data()[0], 0);
    EXPECT_EQ(mesh.le32(0), 0u);
}

TEST_F(VemoFileTest, AMissingFileIsNotGood) {
    VemoFile mesh(dir.path("missing").c_str());
    EXPECT_FALSE(mesh.isGood());
    EXPECT_FALSE(mesh.keep());
    EXPECT_EQ(whyMissing(mesh, -17.0f), -17.0f);
    EXPECT_EQ(whyMissing(fileOf({1}), -17.0f), -18.0f);
}

// 200,000 elements of 2 bytes are more than one piece; the last one shares the repeated byte.
TEST_F(VemoFileTest, HandsOutAllElementsInOrder) {
    ByteList bytes;
    for (std::uint32_t i = 0; i < 200000; ++i) {
        bytes.push_back(static_cast<std::uint8_t>(i));
        bytes.push_back(static_cast<std::uint8_t>(i >> 8));
    }
    bytes.pop_back();
    for (const bool kept : {false, true}) {
        VemoFile mesh = fileOf(bytes);
        ASSERT_EQ(kept && !mesh.keep(), false);
        std::uint32_t next = 0;
        const auto check = [&](const std::uint8_t* element, std::size_t count) {
            for (std::size_t i = 0; i + 1 < count; ++i, ++next, element += 2)
                ASSERT_EQ(loadLe16(element), next % 65536);
            if (next == 199999) {
                EXPECT_EQ(loadLe16(element), 0x3F3F);
            }
            ++next;
        };
        EXPECT_TRUE(mesh.forEachElement({0, 200000}, 2, check));
        EXPECT_EQ(next, 200000u);
    }
}

TEST_F(VemoFileTest, ElementsPastTheEndAreNotHandedOut) {
    VemoFile mesh = fileOf(ByteList(7, 1));
    EXPECT_FALSE(mesh.forEachElement({2, 4}, 2, [](const std::uint8_t*, std::size_t) {}));
    EXPECT_FALSE(mesh.isGood());
}

TEST_F(VemoFileTest, AFirstChunkIsFoundWithoutItsLength) {
    EXPECT_EQ(find(VemoBuilder().chunk(25001, 0, 0), 25001, 32, kPlain), 32u);
}

TEST_F(VemoFileTest, LaterChunksAreReachedByTheLengths) {
    EXPECT_EQ(find(VemoBuilder().vertices({{1, 2, 3}}).faces({{0, 0, 0, -1}}), 20001, 32, kPlain),
              60u);
}

TEST_F(VemoFileTest, StartsAtTheChunkItIsGiven) {
    EXPECT_EQ(find(VemoBuilder().groups({}).groups({}), 40001, 48, kGuarded), 48u);
}

TEST_F(VemoFileTest, AGuardedSearchStepsOverAZeroLength) {
    EXPECT_EQ(find(VemoBuilder().chunk(7, 0, 0).groups({1}), 40001, 32, kGuarded), 48u);
}

TEST_F(VemoFileTest, APlainSearchEndsAtAZeroLength) {
    EXPECT_EQ(find(VemoBuilder().chunk(7, 0, 0).groups({1}), 40001, 32, kPlain), std::nullopt);
}

TEST_F(VemoFileTest, ALengthThatWouldLeadBackwardsEndsTheSearch) {
    EXPECT_EQ(find(VemoBuilder().chunk(7, 16, 0).chunk(8, 0xFFFFFFF0, 0), 40001, 32, kGuarded),
              std::nullopt);
}

TEST_F(VemoFileTest, AFileWithoutChunksHasNone) {
    EXPECT_EQ(find(VemoBuilder(), 10001, 32, kGuarded), std::nullopt);
    EXPECT_EQ(fileOf({}).findChunk(10001, 32, kGuarded), std::nullopt);
}

TEST_F(VemoFileTest, StartBehindTheHeader) {
    const ByteList mesh = VemoBuilder().groups({1, 2, 3}).bytes();
    const auto found = elements(mesh, 2);
    ASSERT_TRUE(found);
    EXPECT_EQ(found->offset, 48u);
    EXPECT_EQ(found->count, 3u);
}

TEST_F(VemoFileTest, ACountBeyondTheFileIsRefused) {
    const ByteList mesh = VemoBuilder().chunk(40001, 22, 4, {1, 0, 2, 0, 3, 0}).bytes();
    EXPECT_FALSE(elements(mesh, 2));
    const ByteList huge = VemoBuilder().chunk(40001, 22, 0xFFFFFFFF, {1, 0}).bytes();
    EXPECT_FALSE(elements(huge, 32));
}

TEST_F(VemoFileTest, AHeaderCutShortIsRefused) {
    ByteList mesh = VemoBuilder().groups({}).bytes();
    mesh.resize(32 + 15);  // the repeated byte completes it
    EXPECT_TRUE(elements(mesh, 2));
    mesh.resize(32 + 14);
    EXPECT_FALSE(elements(mesh, 2));
}

}  // namespace
