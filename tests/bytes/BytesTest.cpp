#include "bytes/Bytes.h"

#include <gmock/gmock.h>

#include <cmath>

#include "bytes/Numbers.h"

namespace {

using testing::ElementsAre;

constexpr std::uint8_t kBytes[] = {0x01, 0x80, 0xFF, 0x7F, 0xFE};

TEST(Bytes, LittleEndianNumbersStartWithTheLowByte) {
    Bytes bytes{kBytes, sizeof kBytes};
    EXPECT_EQ(bytes.le16(0), 0x8001);
    EXPECT_EQ(bytes.le32(1), 0xFE7FFF80u);
    EXPECT_FALSE(bytes.overran);
}

TEST(Bytes, BigEndianNumbersStartWithTheHighByte) {
    Bytes bytes{kBytes, sizeof kBytes};
    EXPECT_EQ(bytes.be16(0), 0x0180);
    EXPECT_EQ(bytes.be32(1), 0x80FF7FFEu);
    EXPECT_FALSE(bytes.overran);
}

TEST(Bytes, BytesPastTheEndReadAsZeroAndAreRemembered) {
    Bytes bytes{kBytes, sizeof kBytes};
    EXPECT_EQ(bytes.le32(3), 0x0000FE7Fu);
    EXPECT_TRUE(bytes.overran);
    EXPECT_EQ(bytes.u8(UINT64_MAX), 0);
}

TEST(Bytes, HoldsCountsElementsWithoutWrapping) {
    const Bytes bytes{kBytes, sizeof kBytes};
    EXPECT_TRUE(bytes.holds(1, 2, 2));
    EXPECT_FALSE(bytes.holds(1, 3, 2));
    EXPECT_FALSE(bytes.holds(2, UINT64_MAX / 2 + 1, 2));
    EXPECT_FALSE(bytes.holds(6, 1, 1));
    EXPECT_TRUE(bytes.holds(6, 0, 1));
}

TEST(Bytes, StoresAreTheReverseOfLoads) {
    std::uint8_t out[4];
    storeLe32(out, 0x01020304);
    EXPECT_THAT(out, ElementsAre(4, 3, 2, 1));
    storeBe32(out, 0x01020304);
    EXPECT_THAT(out, ElementsAre(1, 2, 3, 4));
    storeBe16(out, 0x0506);
    EXPECT_THAT(out, ElementsAre(5, 6, 3, 4));
    storeLeFloat(out, -1.0f);
    EXPECT_EQ(loadLe32(out), 0xBF800000u);
    EXPECT_EQ(loadLeFloat(out), -1.0f);
}

TEST(SaturatedInt, TruncatesTowardZero) {
    EXPECT_EQ(saturatedInt(2.9), 2);
    EXPECT_EQ(saturatedInt(-0.5), 0);
    EXPECT_EQ(saturatedInt(-2.9), -2);
}

TEST(SaturatedInt, StopsAtTheEndsOfItsRange) {
    EXPECT_EQ(saturatedInt(2147483647.0), INT32_MAX);
    EXPECT_EQ(saturatedInt(2147483648.0), INT32_MAX);
    EXPECT_EQ(saturatedInt(-2147483648.5), INT32_MIN);
    EXPECT_EQ(saturatedInt(1e30), INT32_MAX);
    EXPECT_EQ(saturatedInt(-INFINITY), INT32_MIN);
}

TEST(SaturatedInt, NotANumberIsZero) {
    EXPECT_EQ(saturatedInt(NAN), 0);
}

}  // namespace
