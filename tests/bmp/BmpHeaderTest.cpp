#include "bmp/BmpHeader.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "support/BmpFile.h"

namespace {

void fillBmpV(const ByteList& bytes) {
    bmpV.data = std::make_unique<std::uint8_t[]>(bytes.size());
    bmpV.size = bytes.size();
    std::copy(bytes.begin(), bytes.end(), bmpV.data.get());
    bmpHdr = {};
}

TEST(GetPadding, BringsRowsToAMultipleOfFour) {
    const struct {
        std::int32_t width;
        std::uint32_t padding;
    } rows[] = {{0, 0}, {1, 1}, {2, 2}, {3, 3}, {4, 0}, {5, 1}, {1023, 3}, {4096, 0}, {-3, 0}};
    for (const auto& row : rows)
        EXPECT_EQ(getPadding(row.width), row.padding) << row.width;
}

// A float holds every whole number up to 16777216 = 2^24; beyond, an odd one is rounded to a
// multiple of 4.
TEST(GetPadding, IsComputedInSinglePrecision) {
    EXPECT_EQ(getPadding(5592405), 1u);  // 16777215 bytes
    EXPECT_EQ(getPadding(5592406), 2u);  // 16777218
    EXPECT_EQ(getPadding(5592407), 0u);  // 16777221, rounded to 16777220
    EXPECT_EQ(getPadding(2147483647), 0u);
}

TEST(ReadBmpHeader, StoresEveryField) {
    fillBmpV(BmpFile(5, 7).pixelOffset(60).bitsPerPixel(0x8018));
    EXPECT_EQ(readBMPHeader(), 0.0f);
    EXPECT_EQ(bmpHdr.firstByte, 'B');
    EXPECT_EQ(bmpHdr.secondByte, 'M');
    EXPECT_EQ(bmpHdr.fileSize, 166u);  // as the builder's headers say: 54 and 7 rows of 16
    EXPECT_EQ(bmpHdr.pixelOffset, 60u);
    EXPECT_EQ(bmpHdr.width, 5);
    EXPECT_EQ(bmpHdr.height, 7);
    EXPECT_EQ(bmpHdr.bitsPerPixel, 32792);
    EXPECT_EQ(bmpHdr.imageSize, 112u);
    EXPECT_EQ(bmpHdr.rowStride, 16);
}

TEST(ReadBmpHeader, TakesSizesAsSigned) {
    fillBmpV(BmpFile(1, 1).claimSize(-5, -7));
    EXPECT_EQ(readBMPHeader(), 0.0f);
    EXPECT_EQ(bmpHdr.width, -5);
    EXPECT_EQ(bmpHdr.height, -7);
}

TEST(ReadBmpHeader, StrideOfTheWidestRowDoesNotWrap) {
    fillBmpV(BmpFile(1, 1).claimSize(2147483647, 1));
    EXPECT_EQ(readBMPHeader(), 0.0f);
    EXPECT_EQ(bmpHdr.rowStride, 6442450941);
}

TEST(ReadBmpHeader, StoresOnlyTheTwoBytesOfAnotherSignature) {
    for (const auto& [first, second] : {std::pair('B', 'm'), std::pair('M', 'B')}) {
        fillBmpV(BmpFile(5, 7).signature(first, second));
        EXPECT_EQ(readBMPHeader(), -7.0f);
        EXPECT_EQ(bmpHdr.firstByte, first);
        EXPECT_EQ(bmpHdr.secondByte, second);
        EXPECT_EQ(bmpHdr.fileSize, 0u);
        EXPECT_EQ(bmpHdr.width, 0);
        EXPECT_EQ(bmpHdr.rowStride, 0);
    }
}

TEST(ReadBmpHeader, NothingElseIsChecked) {
    ByteList file = BmpFile(1, 1);
    for (const std::size_t at :
         {6u, 14u, 26u, 30u, 38u, 46u, 50u})  // what the reader does not look at
        file[at] = 0xFF;
    fillBmpV(file);
    EXPECT_EQ(readBMPHeader(), 0.0f);
}

TEST(LoadBmpHead, HoldsAHundredBytesAtMost) {
    const TempDir dir;
    EXPECT_EQ(loadBMPHead(dir.write("small.bmp", BmpFile(1, 1)).c_str(), -55.0f), 0.0f);
    EXPECT_EQ(bmpV.size, 58u);
    EXPECT_EQ(loadBMPHead(dir.write("large.bmp", BmpFile(4, 4)).c_str(), -55.0f), 0.0f);
    EXPECT_EQ(bmpV.size, 100u);
}

TEST(LoadBmpHead, AFileThatCannotBeOpenedLeavesNothingOfTheLastOne) {
    const TempDir dir;
    EXPECT_EQ(loadBMPHead(dir.write("map.bmp", BmpFile(4, 4)).c_str(), -55.0f), 0.0f);
    EXPECT_EQ(loadBMPHead(dir.path("none.bmp").c_str(), -55.0f), -55.0f);
    EXPECT_EQ(bmpV.size, 0u);
    EXPECT_EQ(bmpHdr.width, 0);
}

TEST(BmpRoutines, ReadLittleEndianValues) {
    fillBmpV({0x01, 0x80, 0xFF, 0xFE});
    EXPECT_EQ(readSigned(0), 0xFEFF8001u);
    EXPECT_EQ(readShortInt(0), -32767);
    EXPECT_EQ(readShortInt(1), -128);
}

TEST(BmpRoutines, BytesPastTheEndReadAsZero) {
    fillBmpV({0x01, 0x80, 0xFF, 0xFE});
    EXPECT_EQ(readSigned(3), 0xFEu);
    EXPECT_EQ(readShortInt(4), 0);
    EXPECT_EQ(readSigned(UINT32_MAX), 0u);
}

TEST(BmpRoutines, WriteTheLowByteFirst) {
    fillBmpV(ByteList(6));
    writeSignedInt(0, 0xFEFF8001u);
    EXPECT_EQ(writeShortInt(4, 0x12345), 0x12345);
    EXPECT_EQ(ByteList(bmpV.data.get(), bmpV.data.get() + 6),
              (ByteList{0x01, 0x80, 0xFF, 0xFE, 0x45, 0x23}));
}

TEST(BmpRoutines, AValueThatDoesNotFitIsNotStored) {
    fillBmpV(ByteList(4));
    writeSignedInt(1, 0xFFFFFFFFu);
    writeShortInt(3, -1);
    writeShortInt(UINT32_MAX, -1);
    EXPECT_EQ(ByteList(bmpV.data.get(), bmpV.data.get() + 4), ByteList(4));
}

}  // namespace
