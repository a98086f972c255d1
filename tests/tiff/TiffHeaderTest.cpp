#include "tiff/TiffHeader.h"

#include <gtest/gtest.h>

#include "support/TempDir.h"
#include "support/TiffFile.h"

namespace {

class ReadTiffHeader : public testing::Test {
protected:
    TiffHeader read(const TiffFile& file) { return read(file.bytes()); }
    TiffHeader read(const ByteList& bytes) {
        return readTiffHeader(dir.write("map.tif", bytes).c_str(), -10.0f);
    }
    float refusal(const TiffFile& file) { return read(file).refused; }

    const TempDir dir;
};

TiffFile greyMap() {
    return TiffFile(3, 2).grey8({1, 2, 3, 4, 5, 6});
}
TiffFile colourMap() {
    return TiffFile(1, 2).rgb8({1, 2, 3, 4, 5, 6});
}

TEST_F(ReadTiffHeader, TakesAGreyMapsFields) {
    const TiffHeader header = read(greyMap());
    EXPECT_EQ(header.refused, 0.0f);
    EXPECT_EQ(header.entries.size(), 11u);
    EXPECT_EQ(header.info.width, 3);
    EXPECT_EQ(header.info.length, 2);
    EXPECT_EQ(header.info.channels, 1);
    EXPECT_EQ(header.info.bitsPerSample, 8);
    EXPECT_EQ(header.info.stripOffset, 8);
    EXPECT_EQ(header.info.stripByteCount, 6);
}

TEST_F(ReadTiffHeader, TakesAColourMapsDepthFromItsList) {
    const TiffHeader header =
        read(TiffFile(1, 1, TiffFile::Order::kDirectoryFirst).rgb16({1, 2, 3}));
    EXPECT_EQ(header.info.channels, 3);
    EXPECT_EQ(header.info.bitsPerSample, 16);
    EXPECT_EQ(header.info.stripOffset, 158);
}

TEST_F(ReadTiffHeader, AFileThatCannotBeOpenedHasItsRolesStatus) {
    EXPECT_EQ(readTiffHeader(dir.path("missing").c_str(), -20.0f).refused, -20.0f);
    EXPECT_EQ(readTiffHeader(dir.path().c_str(), -10.0f).refused, -10.0f);
}

struct Refusal {
    const char* what;
    TiffFile file;
    float status;
};

TEST_F(ReadTiffHeader, RefusesATagWithItsNumber) {
    const Refusal cases[] = {
        {"four samples", greyMap().entry(258, 4, 8), 258.0f},
        {"two samples", greyMap().entry(258, 2, 8), 258.0f},
        {"no sample", greyMap().entry(258, 0, 8), 258.0f},
        {"compressed", greyMap().entry(259, 1, 5), -259.0f},
        {"compression 0", greyMap().entry(259, 1, 0), -259.0f},
        {"palette", greyMap().entry(262, 1, 3), -262.0f},
        {"beyond every photometric", greyMap().entry(262, 1, 0xFFFFFFFF), -262.0f},
        {"two strips", greyMap().entry(273, 2, 8), -273.0f},
        {"two sample formats", greyMap().entry(339, 2, 1), -339.0f},
        {"the first of two faults", greyMap().entry(273, 2, 8).entry(259, 1, 2), -259.0f},
    };
    for (const Refusal& test : cases)
        EXPECT_EQ(refusal(test.file), test.status) << test.what;
}

TEST_F(ReadTiffHeader, AcceptsEveryPhotometricUpToRgb) {
    for (const std::uint32_t photometric : {0u, 1u, 2u})
        EXPECT_EQ(refusal(greyMap().entry(262, 1, photometric)), 0.0f) << photometric;
}

TEST_F(ReadTiffHeader, DoesNotLookAtTheStripByteCountsCount) {
    EXPECT_EQ(refusal(greyMap().entry(279, 7, 6)), 0.0f);
}

TEST_F(ReadTiffHeader, DoesNotLookAtTheByteOrderMark) {
    ByteList bytes = greyMap().bytes();
    bytes[0] = bytes[1] = 'M';
    bytes[2] = 0;
    EXPECT_EQ(read(bytes).info.width, 3);
}

// A big-endian file says where its directory is in another order: 0x08000000 lies beyond any head.
TEST_F(ReadTiffHeader, MisreadsABigEndianFileAsEmpty) {
    const TiffHeader header = read(ByteList{'M', 'M', 0, 42, 0, 0, 0, 8, 0, 1, 1, 0, 0, 3});
    EXPECT_EQ(header.refused, 0.0f);
    EXPECT_TRUE(header.entries.empty());
    EXPECT_EQ(header.info.width, 0);
}

TEST_F(ReadTiffHeader, ALaterEntryOfATagWins) {
    ByteList bytes = greyMap().entry(255, 1, 99).bytes();
    bytes[14 + 2] = 0x00;  // tag 255 becomes a second 256, before the first
    bytes[14 + 3] = 0x01;
    EXPECT_EQ(read(bytes).info.width, 3);
}

TEST_F(ReadTiffHeader, EntriesThatAreNotClaimedAreNotRead) {
    const TiffHeader header = read(greyMap().claimEntries(1));
    EXPECT_EQ(header.info.width, 3);
    EXPECT_EQ(header.info.length, 0);
}

TEST_F(ReadTiffHeader, ADirectoryWithoutEntriesIsEmpty) {
    for (const std::uint16_t count : {std::uint16_t{0}, std::uint16_t{0x8000}}) {
        const TiffHeader header = read(greyMap().claimEntries(count));
        EXPECT_TRUE(header.entries.empty());
        EXPECT_EQ(header.refused, 0.0f);
        EXPECT_EQ(header.info.width, 0);
    }
}

TEST_F(ReadTiffHeader, ADirectoryPastByte1000IsMisreadAsEmpty) {
    const ByteList pixels(992, 7);  // the directory lies at byte 1000
    EXPECT_TRUE(read(TiffFile(992, 1).grey8(pixels)).entries.empty());
}

TEST_F(ReadTiffHeader, EntriesPastByte1000AreMisreadAsNothing) {
    const ByteList pixels(970, 7);  // the directory lies at byte 978: room for one entry and a half
    const TiffHeader header = read(TiffFile(970, 1).grey8(pixels));
    EXPECT_EQ(header.refused, 0.0f);
    EXPECT_EQ(header.info.width, 970);
    EXPECT_EQ(header.info.length, 0);
}

// The last byte stands for all that is missing: 0x03 becomes the high bytes of the last value.
TEST_F(ReadTiffHeader, AShortFileGoesOnWithItsLastByte) {
    ByteList bytes = greyMap().bytes();
    bytes.resize(14 + 2 + 9);  // in the middle of the width's value
    bytes[14] = 1;             // one entry
    EXPECT_EQ(read(bytes).info.width, 0x03030303);
}

TEST_F(ReadTiffHeader, WhereTheDirectoryMayBeAnywhereMissingBytesAreZero) {
    const ByteList bytes = {'I', 'I', 42, 0, 8, 0, 0, 0, 1, 0, 0, 1, 3, 0, 1, 0, 0, 0, 3};
    const std::string path = dir.write("map.tif", bytes);
    const TiffRules anywhere{.directoryAnywhere = true};
    EXPECT_EQ(readTiffHeader(path.c_str(), -10.0f, anywhere).info.width, 3);
    EXPECT_EQ(readTiffHeader(path.c_str(), -10.0f).info.width, 0x03030303);
}

TEST_F(ReadTiffHeader, AnEmptyFileIsEmpty) {
    EXPECT_TRUE(read(ByteList{}).entries.empty());
}

TEST_F(ReadTiffHeader, KeepsNumbersBeyondTheSignedRangeAsNegative) {
    EXPECT_EQ(read(greyMap().entry(256, 1, 0xFFFFFFFF)).info.width, -1);
}

TEST_F(ReadTiffHeader, ADepthListOutsideTheHeadIsNoDepth) {
    EXPECT_EQ(read(colourMap().entry(258, 3, 0xFFFFFFF0)).info.bitsPerSample, 0);
}

}  // namespace
