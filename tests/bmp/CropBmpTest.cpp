#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>

#include "bmp/BmpHeader.h"
#include "bmp/BmpOps.h"
#include "support/BmpFile.h"
#include "support/Faults.h"

namespace {

using testing::ElementsAre;

constexpr std::int32_t kLargest = 2147483647;

// Pixels that tell where they were: blue is the column, green the row from the bottom.
BmpFile placesImage(std::int32_t columns, std::int32_t rows) {
    BmpFile image(columns, rows);
    for (std::int32_t row = 0; row < rows; ++row) {
        for (std::int32_t column = 0; column < columns; ++column)
            image.pixel(column, row, static_cast<std::uint8_t>(column),
                        static_cast<std::uint8_t>(row), 200);
    }
    return image;
}

class CropBmp : public testing::Test {
protected:
    float crop(const ByteList& image, std::int32_t xOffset, std::int32_t newWidth) {
        dir_.write("in.bmp", image);
        return cropBMP(in().c_str(), out().c_str(), xOffset, newWidth);
    }
    std::string in() const { return dir_.path("in.bmp"); }
    std::string out() const { return dir_.path("out.bmp"); }

    const TempDir dir_;
};

TEST_F(CropBmp, CutsABandAndDropsTheBottomRowAndTheTwoTopRows) {
    EXPECT_EQ(crop(placesImage(10, 10), 6, 4), 0.0f);
    BmpFile expected(4, 7);
    for (std::int32_t row = 0; row < 7; ++row) {
        for (std::int32_t column = 0; column < 4; ++column)
            expected.pixel(column, row, static_cast<std::uint8_t>(column + 2),
                           static_cast<std::uint8_t>(row + 1), 200);
    }
    EXPECT_EQ(readBytes(out()), ByteList(expected));
}

TEST_F(CropBmp, PadsRowsWithZeros) {
    EXPECT_EQ(crop(placesImage(10, 10).padding(0xEE), 0, 5), 0.0f);
    const ByteList cropped = readBytes(out());
    EXPECT_EQ(cropped.size(), 54u + 7 * 16);
    EXPECT_THAT(ByteList(cropped.begin() + 54, cropped.begin() + 54 + 16),
                ElementsAre(0, 1, 200, 1, 1, 200, 2, 1, 200, 3, 1, 200, 4, 1, 200, 0));
}

TEST_F(CropBmp, OffsetCountsBytes) {
    EXPECT_EQ(crop(BmpFile(4, 4), 1, 1), 0.0f);  // bytes 1 to 48, rows of 12
    EXPECT_THAT(bmpPixelsOf(out()), ElementsAre(14, 15, 16));
}

TEST_F(CropBmp, NeverChangesTheInput) {
    const ByteList before = BmpFile(5, 5).padding(0xEE);
    EXPECT_EQ(crop(before, 3, 2), 0.0f);
    EXPECT_EQ(readBytes(in()), before);
}

TEST_F(CropBmp, KeepsTheOtherHeaderBytesAndTheGapBeforeThePixels) {
    ByteList before = BmpFile(4, 4).pixelOffset(60, 0xAB);
    for (const std::size_t at : {6u, 14u, 26u, 28u, 30u, 38u, 50u})
        before[at] = static_cast<std::uint8_t>(at);
    EXPECT_EQ(crop(before, 0, 1), 0.0f);

    ByteList expected = BmpFile(1, 1).pixels({13, 14, 15}).pixelOffset(60, 0xAB);
    expected[2] = 64;  // the file size, which the builder gives for pixels at 54
    for (const std::size_t at : {6u, 14u, 26u, 28u, 30u, 38u, 50u})
        expected[at] = static_cast<std::uint8_t>(at);
    EXPECT_EQ(readBytes(out()), expected);
}

TEST_F(CropBmp, InputAndOutputMayBeOneFile) {
    dir_.write("in.bmp", placesImage(4, 4));
    EXPECT_EQ(cropBMP(in().c_str(), in().c_str(), 3, 2), 0.0f);
    EXPECT_EQ(readBytes(in()), ByteList(BmpFile(2, 1).pixels({1, 1, 200, 2, 1, 200})));
}

TEST_F(CropBmp, ReplacesALongerOutput) {
    dir_.write("out.bmp", ByteList(1000, 7));
    EXPECT_EQ(crop(placesImage(4, 4), 3, 2), 0.0f);
    EXPECT_EQ(readBytes(out()), ByteList(BmpFile(2, 1).pixels({1, 1, 200, 2, 1, 200})));
}

TEST_F(CropBmp, ABandThatLeavesItsRowGoesOnInTheNext) {
    EXPECT_EQ(crop(BmpFile(4, 4), 9, 2), 0.0f);
    EXPECT_THAT(bmpPixelsOf(out()), ElementsAre(22, 23, 24, 25, 26, 27));
}

TEST_F(CropBmp, WhatLiesPastTheInputIsBlack) {
    EXPECT_EQ(crop(BmpFile(4, 4), 34, 2), 0.0f);
    EXPECT_THAT(bmpPixelsOf(out()), ElementsAre(47, 48, 0, 0, 0, 0));
    for (const std::int32_t offset : {36, 37, kLargest}) {
        EXPECT_EQ(crop(BmpFile(4, 4), offset, 2), 0.0f);
        EXPECT_THAT(bmpPixelsOf(out()), ElementsAre(0, 0, 0, 0, 0, 0)) << offset;
    }
}

// The row above the bottom one starts at byte 66 of the file.
TEST_F(CropBmp, WhatLiesBeforeTheInputIsBlack) {
    EXPECT_EQ(crop(BmpFile(4, 4), -68, 2), 0.0f);
    EXPECT_THAT(bmpPixelsOf(out()), ElementsAre(0, 0, 'B', 'M', 102, 0));
    for (const std::int32_t offset : {-72, -73, -kLargest - 1}) {
        EXPECT_EQ(crop(BmpFile(4, 4), offset, 2), 0.0f);
        EXPECT_THAT(bmpPixelsOf(out()), ElementsAre(0, 0, 0, 0, 0, 0)) << offset;
    }
}

TEST_F(CropBmp, MissingRowsAreBlack) {
    EXPECT_EQ(crop(BmpFile(4, 6).cut(54 + 12 + 12 + 4), 0, 2), 0.0f);
    EXPECT_THAT(bmpPixelsOf(out()),
                ElementsAre(13, 14, 15, 16, 17, 18, 25, 26, 27, 28, 0, 0, 0, 0, 0, 0, 0, 0));
    EXPECT_EQ(readBytes(out()).size(), 54u + 3 * 8);
}

// 300000 rows of 12 bytes are many pieces; the last one ends within the black.
TEST_F(CropBmp, WorksThroughImagesOfManyPieces) {
    const ByteList image = BmpFile(100, 3000).plain(1, 2, 3);
    EXPECT_EQ(crop(image, 0, 99), 0.0f);
    EXPECT_TRUE(readBytes(out()) == ByteList(BmpFile(99, 2997).plain(1, 2, 3)));

    EXPECT_EQ(crop(BmpFile(100, 3).plain(1, 2, 3).claimSize(100, 300003), 0, 4), 0.0f);
    const ByteList cropped = readBytes(out());
    EXPECT_EQ(cropped.size(), 54u + 12 * 300000);
    ByteList expected(12 * 300000);
    for (std::size_t i = 0; i < 24; ++i)
        expected[i] = static_cast<std::uint8_t>(i % 3 + 1);
    EXPECT_TRUE(std::equal(cropped.begin() + 54, cropped.end(), expected.begin()));
}

TEST_F(CropBmp, LessThanFourRowsLeaveTheHeadersAlone) {
    const std::pair<std::int32_t, std::int32_t> heights[] = {
        {3, 0}, {2, -1}, {0, -3}, {-8, -11}, {-kLargest - 1, kLargest - 2}};  // the low 32 bits
    for (const auto& [before, after] : heights) {
        EXPECT_EQ(crop(BmpFile(4, 4).claimSize(4, before), 0, 2), 0.0f);
        EXPECT_EQ(readBytes(out()), ByteList(BmpFile(2, 0).claimSize(2, after))) << before;
    }
}

TEST_F(CropBmp, ABandWithoutColumnsLeavesTheHeadersAlone) {
    for (const std::int32_t width : {0, -1, -5, -kLargest - 1}) {
        EXPECT_EQ(crop(BmpFile(4, 5), 0, width), 0.0f);
        EXPECT_EQ(readBytes(out()), ByteList(BmpFile(0, 0).claimSize(width, 2))) << width;
    }
}

TEST_F(CropBmp, AnInputWithoutColumnsIsBlack) {
    for (const std::int32_t width : {0, -4, -kLargest - 1}) {
        EXPECT_EQ(crop(BmpFile(4, 4).claimSize(width, 5), 0, 1), 0.0f);
        EXPECT_EQ(readBytes(out()), ByteList(BmpFile(1, 2).plain(0, 0, 0))) << width;
    }
}

// A header that claims 500,000,000 rows, almost all of them before the start of the file.
TEST_F(CropBmp, RowsBeforeTheFileTakeNeitherTimeNorDisk) {
    EXPECT_EQ(crop(BmpFile(1, 1).claimSize(1, 500000000), -2000000000, 1), 0.0f);
    struct stat status {};
    ASSERT_EQ(::stat(out().c_str(), &status), 0);
    EXPECT_EQ(status.st_size, 54 + 499999997 * std::int64_t{4});
    EXPECT_LT(status.st_blocks, 1000);  // of 512 bytes
}

TEST_F(CropBmp, RefusesAnOutputOfMoreThanFourGigabytes) {
    EXPECT_EQ(crop(BmpFile(4, 4).claimSize(4, kLargest), 0, 4), -9.0f);
    EXPECT_EQ(crop(BmpFile(4, 4).claimSize(kLargest, kLargest), 0, kLargest), -9.0f);
    EXPECT_EQ(crop(BmpFile(4, 4), 0, 1431655765), -9.0f);  // 54 more than 2^32 - 1
    EXPECT_FALSE(dir_.has("out.bmp"));
}

TEST_F(CropBmp, TellsWhatIsWrongAndLeavesTheOutputAlone) {
    dir_.write("out.bmp", std::string_view("kept"));
    EXPECT_EQ(crop(BmpFile(4, 4).signature('B', 'A'), 0, 2), -7.0f);
    EXPECT_EQ(crop(BmpFile(4, 4).claimPixelOffset(103), 0, 2), -7.0f);  // the file has 102 bytes
    EXPECT_EQ(crop(BmpFile(4, 4).claimPixelOffset(0xFFFFFFFF), 0, 2), -7.0f);
    EXPECT_EQ(cropBMP(dir_.path("none.bmp").c_str(), out().c_str(), 0, 2), -1760.0f);
    EXPECT_EQ(cropBMP(nullptr, out().c_str(), 0, 2), -1760.0f);
    EXPECT_EQ(readBytes(out()), (ByteList{'k', 'e', 'p', 't'}));
}

TEST_F(CropBmp, TellsThatTheOutputCannotBeOpened) {
    dir_.write("in.bmp", BmpFile(4, 4));
    EXPECT_EQ(cropBMP(in().c_str(), dir_.path("none/out.bmp").c_str(), 0, 2), -5.0f);
    EXPECT_EQ(cropBMP(in().c_str(), dir_.path().c_str(), 0, 2), -5.0f);
    EXPECT_EQ(cropBMP(in().c_str(), nullptr, 0, 2), -5.0f);
}

TEST_F(CropBmp, TellsThatTheDiskIsFull) {
    dir_.write("in.bmp", BmpFile(4, 5));
    for (const rlim_t bytes : {0u, 53u, 54u, 69u}) {  // the output takes 70
        const FullDisk disk(bytes);
        EXPECT_EQ(cropBMP(in().c_str(), out().c_str(), 0, 2), -5.0f) << bytes;
    }
    const FullDisk disk(70);
    EXPECT_EQ(cropBMP(in().c_str(), out().c_str(), 0, 2), 0.0f);
}

TEST_F(CropBmp, HoldsNothingAfterwards) {
    const std::ptrdiff_t before = openFiles();
    EXPECT_EQ(crop(BmpFile(40, 40), 0, 2), 0.0f);
    EXPECT_EQ(bmpV.data, nullptr);
    EXPECT_EQ(crop(BmpFile(40, 40), 0, kLargest), -9.0f);
    EXPECT_EQ(bmpV.data, nullptr);
    EXPECT_EQ(crop(BmpFile(40, 40).signature('B', 'A'), 0, 2), -7.0f);
    EXPECT_EQ(bmpV.data, nullptr);
    EXPECT_EQ(cropBMP(in().c_str(), nullptr, 0, 2), -7.0f);
    EXPECT_EQ(bmpV.data, nullptr);
    EXPECT_EQ(openFiles(), before);
}

}  // namespace
