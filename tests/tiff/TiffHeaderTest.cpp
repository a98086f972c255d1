#include "tiff/TiffHeader.h"

#include <gtest/gtest.h>

#include "support/TempDir.h"
#include "support/TiffFile.h"

namespace {

class ReadTiffHeader : public testing::Test {
protected:
    TiffHeader read(const ByteList& bytes) const {
        return readTiffHeader(dir.write("map.tif", bytes).c_str(), -10.0f);
    }

    const TempDir dir;
};

TiffFile greyMap() {
    return TiffFile(3, 2).grey8({1, 2, 3, 4, 5, 6});
}

TEST_F(ReadTiffHeader, RefusesATagWithItsNumber) {
    const struct {
        const char* what;
        TiffFile file;
        float status;
    } rows[] = {
        {"four samples", greyMap().entry(258, 4, 8), 258.0f},
        {"two samples", greyMap().entry(258, 2, 8), 258.0f},
        {"no sample", greyMap().entry(258, 0, 8), 258.0f},
        {"compressed", greyMap().entry(259, 1, 5), -259.0f},
        {"compression 0", greyMap().entry(259, 1, 0), -259.0f},
        {"white is 0", greyMap().entry(262, 1, 0), 0.0f},
        {"black is 0", greyMap().entry(262, 1, 1), 0.0f},
        {"RGB", greyMap().entry(262, 1, 2), 0.0f},
        {"palette", greyMap().entry(262, 1, 3), -262.0f},
        {"beyond every photometric", greyMap().entry(262, 1, 0xFFFFFFFF), -262.0f},
        {"two strips", greyMap().entry(273, 2, 8), -273.0f},
        {"seven byte counts", greyMap().entry(279, 7, 6), 0.0f},
        {"two sample formats", greyMap().entry(339, 2, 1), -339.0f},
        {"the first of two faults", greyMap().entry(273, 2, 8).entry(259, 1, 2), -259.0f},
    };
    for (const auto& row : rows)
        EXPECT_EQ(read(row.file).refused, row.status) << row.what;
}

TEST_F(ReadTiffHeader, IgnoresTheByteOrderMark) {
    ByteList bytes = greyMap();
    bytes[0] = bytes[1] = 'M';
    bytes[2] = 0;
    EXPECT_EQ(read(bytes).info.width, 3);
}

// A big-endian file has the offset of its directory in the other order: 0x08000000 is beyond any
// head.
TEST_F(ReadTiffHeader, MisreadsABigEndianFileAsEmpty) {
    const TiffHeader header = read({'M', 'M', 0, 42, 0, 0, 0, 8, 0, 1, 1, 0, 0, 3});
    EXPECT_EQ(header.refused, 0.0f);
    EXPECT_TRUE(header.entries.empty());
    EXPECT_EQ(header.info.width, 0);
}

TEST_F(ReadTiffHeader, ALaterEntryOfATagWins) {
    ByteList bytes = greyMap().entry(255, 1, 99);
    bytes[14 + 2] = 0x00;  // tag 255 becomes a second 256, before the first
    bytes[14 + 3] = 0x01;
    EXPECT_EQ(read(bytes).info.width, 3);
}

// The count is signed.
TEST_F(ReadTiffHeader, EntriesThatAreNotClaimedAreNotRead) {
    const TiffHeader one = read(greyMap().claimEntries(1));
    EXPECT_EQ(one.info.width, 3);
    EXPECT_EQ(one.info.length, 0);
    EXPECT_TRUE(read(greyMap().claimEntries(0)).entries.empty());
    EXPECT_TRUE(read(greyMap().claimEntries(0x8000)).entries.empty());
}

// The directory follows the pixels: at byte 1000, and at byte 978, where there is room for one
// entry and a half.
TEST_F(ReadTiffHeader, WhatIsPastByte1000IsMisreadAsZero) {
    EXPECT_TRUE(read(TiffFile(992, 1).grey8(ByteList(992, 7))).entries.empty());
    const TiffHeader header = read(TiffFile(970, 1).grey8(ByteList(970, 7)));
    EXPECT_EQ(header.refused, 0.0f);
    EXPECT_EQ(header.info.width, 970);
    EXPECT_EQ(header.info.length, 0);
}

// The last byte stands for all that is missing: 0x03 becomes the high bytes of the last value.
TEST_F(ReadTiffHeader, AShortFileRepeatsItsLastByte) {
    ByteList bytes = greyMap();
    bytes.resize(14 + 2 + 9);  // in the middle of the width's value
    bytes[14] = 1;             // one entry
    EXPECT_EQ(read(bytes).info.width, 0x03030303);
}

TEST_F(ReadTiffHeader, ADepthListOutsideTheHeadIsNoDepth) {
    const TiffFile colourMap = TiffFile(1, 2).rgb8({1, 2, 3, 4, 5, 6}).entry(258, 3, 0xFFFFFFF0);
    EXPECT_EQ(read(colourMap).info.bitsPerSample, 0);
}

}  // namespace
