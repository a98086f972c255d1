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

ByteList bytesOfBmpV() {
    return {bmpV.data.get(), bmpV.data.get() + bmpV.size};
}

// A float holds every integer up to 16777216 = 2^24; beyond, an odd one is rounded to a multiple
// of 4: 3 x 5592405 is 16777215, 3 x 5592407 is 16777221, which becomes 16777220.
TEST(GetPadding, BringsRowsToAMultipleOfFourInSinglePrecision) {
    const std::pair<std::int32_t, std::uint32_t> rows[] = {
        {0, 0},    {1, 1},  {2, 2},       {3, 3},       {4, 0},       {5, 1},         {1023, 3},
        {4096, 0}, {-3, 0}, {5592405, 1}, {5592406, 2}, {5592407, 0}, {2147483647, 0}};
    for (const auto& [width, padding] : rows)
        EXPECT_EQ(getPadding(width), padding) << width;
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

TEST(ReadBmpHeader, StoresOnlyTheTwoBytesOfAnotherSignature) {
    fillBmpV(BmpFile(5, 7).signature('M', 'B'));
    EXPECT_EQ(readBMPHeader(), -7.0f);
    EXPECT_EQ(bmpHdr.firstByte, 'M');
    EXPECT_EQ(bmpHdr.secondByte, 'B');
    EXPECT_EQ(bmpHdr.fileSize, 0u);
    EXPECT_EQ(bmpHdr.pixelOffset, 0u);
    EXPECT_EQ(bmpHdr.width, 0);
    EXPECT_EQ(bmpHdr.height, 0);
    EXPECT_EQ(bmpHdr.bitsPerPixel, 0);
    EXPECT_EQ(bmpHdr.imageSize, 0u);
    EXPECT_EQ(bmpHdr.rowStride, 0);
}

TEST(LoadBmpHead, HoldsAHundredBytesAtMostAndNothingOfTheFileBefore) {
    const TempDir dir;
    EXPECT_EQ(loadBMPHead(dir.write("small.bmp", BmpFile(1, 1)).c_str(), -55.0f), 0.0f);
    EXPECT_EQ(bmpV.size, 58u);
    EXPECT_EQ(loadBMPHead(dir.write("large.bmp", BmpFile(4, 4)).c_str(), -55.0f), 0.0f);
    EXPECT_EQ(bmpV.size, 100u);
    EXPECT_EQ(loadBMPHead(dir.path("none.bmp").c_str(), -55.0f), -55.0f);
    EXPECT_EQ(bmpV.size, 0u);
    EXPECT_EQ(bmpHdr.width, 0);
}

TEST(BmpRoutines, ReadLittleEndianValuesAndZeroPastTheEnd) {
    fillBmpV({0x01, 0x80, 0xFF, 0xFE});
    EXPECT_EQ(readSigned(0), 0xFEFF8001u);
    EXPECT_EQ(readSigned(3), 0xFEu);
    EXPECT_EQ(readSigned(UINT32_MAX), 0u);
    EXPECT_EQ(readShortInt(0), -32767);
    EXPECT_EQ(readShortInt(1), -128);
    EXPECT_EQ(readShortInt(4), 0);
}

TEST(BmpRoutines, WriteTheLowByteFirstAndNothingThatDoesNotFit) {
    fillBmpV(ByteList(6));
    writeSignedInt(0, 0xFEFF8001u);
    EXPECT_EQ(writeShortInt(4, 0x12345), 0x12345);
    writeSignedInt(3, 0xFFFFFFFFu);
    writeShortInt(5, -1);
    writeShortInt(UINT32_MAX, -1);
    EXPECT_EQ(bytesOfBmpV(), (ByteList{0x01, 0x80, 0xFF, 0xFE, 0x45, 0x23}));

    fillBmpV(ByteList(4));
    writeSignedInt(0, 0x04030201u);
    EXPECT_EQ(bytesOfBmpV(), (ByteList{1, 2, 3, 4}));
}

}  // namespace
