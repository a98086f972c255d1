#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>

#include "bmp/BmpHeader.h"
#include "bmp/BmpOps.h"
#include "export/Quillon.h"
#include "support/BmpFile.h"
#include "support/Faults.h"

namespace {

using std::filesystem::perms;
using testing::ElementsAre;

constexpr std::int32_t kLargest = 2147483647;

class BmpThumb : public testing::Test {
protected:
    float shrink(const ByteList& image, std::int32_t size) const {
        dir_.write("map.bmp", image);
        return createBMPthumb(map().c_str(), size);
    }
    std::string map() const { return dir_.path("map.bmp"); }

    const TempDir dir_;
};

TEST_F(BmpThumb, TheLongerSideTakesTheSize) {
    EXPECT_EQ(shrink(BmpFile(4, 2).padding(0xEE), 2), 0.0f);
    EXPECT_EQ(readBytes(map()), ByteList(BmpFile(2, 1).pixels({1, 2, 3, 7, 8, 9})));
    EXPECT_EQ(shrink(BmpFile(2, 4).padding(0xEE), 2), 0.0f);
    EXPECT_EQ(readBytes(map()), ByteList(BmpFile(1, 2).pixels({1, 2, 3, 13, 14, 15})));
    EXPECT_EQ(shrink(BmpFile(4, 4), 2), 0.0f);
    EXPECT_EQ(readBytes(map()),
              ByteList(BmpFile(2, 2).pixels({1, 2, 3, 7, 8, 9, 25, 26, 27, 31, 32, 33})));
}

// The export truncates its value.
TEST_F(BmpThumb, TheSizeIsTheTruncatedValue) {
    const auto call = [&](double value) {
        return CreateThumbnailBMP(map().c_str(), value, nullptr, 0, nullptr, 0, nullptr);
    };
    dir_.write("map.bmp", BmpFile(4, 4));
    for (const double value : {0.9, -0.9, -5.0, -1e300, double{NAN}})
        EXPECT_EQ(call(value), -9.0f) << value;
    EXPECT_EQ(call(1e300), 0.0f);  // larger than the image
    EXPECT_EQ(readBytes(map()), ByteList(BmpFile(4, 4)));
    EXPECT_EQ(call(2.9), 0.0f);
    EXPECT_THAT(bmpPixelsOf(map()), ElementsAre(1, 2, 3, 7, 8, 9, 25, 26, 27, 31, 32, 33));
}

// The copy is written over the image while that is still read: this one in several pieces.
TEST_F(BmpThumb, ALargeCopyIsWrittenOverTheImageItShows) {
    constexpr std::size_t kSide = 1000;
    const auto byteAt = [](std::size_t row, std::size_t at) {
        return static_cast<std::uint8_t>(row * 31 + at * 7 + at / 300);
    };
    ByteList image = BmpFile(kSide, kSide);
    for (std::size_t row = 0; row < kSide; ++row) {
        for (std::size_t at = 0; at < 3 * kSide; ++at)
            image[54 + 3 * kSide * row + at] = byteAt(row, at);
    }
    EXPECT_EQ(shrink(image, 500), 0.0f);

    const ByteList copy = readBytes(map());
    ASSERT_EQ(copy.size(), 54u + 3 * 500 * 500);
    for (std::size_t row = 0; row < 500; ++row) {
        for (std::size_t at = 0; at < 1500; ++at)
            ASSERT_EQ(copy[54 + 1500 * row + at], byteAt(2 * row, 6 * (at / 3) + at % 3)) << row;
    }
}

TEST_F(BmpThumb, AFractionalStepTakesThePixelsBelow) {
    EXPECT_EQ(shrink(BmpFile(5, 5).places(), 3), 0.0f);  // 0, 1.67 and 3.33
    EXPECT_THAT(bmpPixelsOf(map()), ElementsAre(0, 0, 200, 1, 0, 200, 3, 0, 200, 0, 1, 200, 1, 1,
                                                200, 3, 1, 200, 0, 3, 200, 1, 3, 200, 3, 3, 200));
}

// Nine times 4/3 is 12; the float sum of nine steps stays just below.
TEST_F(BmpThumb, StepsAreSummedUpAsFloats) {
    EXPECT_EQ(shrink(BmpFile(16, 2).places(), 12), 0.0f);
    BmpFile expected(12, 1);
    std::int32_t column = 0;
    for (const std::uint8_t shown : ByteList{0, 1, 2, 4, 5, 6, 8, 9, 10, 11, 13, 14})
        expected.pixel(column++, 0, shown, 0, 200);
    EXPECT_EQ(readBytes(map()), ByteList(expected));
}

TEST_F(BmpThumb, AnImageWithBothSidesBelowTheSizeStaysAsItIs) {
    const ByteList before = BmpFile(100, 100);
    for (const std::int32_t size : {101, 256, kLargest}) {
        EXPECT_EQ(shrink(before, size), 0.0f);
        EXPECT_EQ(readBytes(map()), before) << size;
    }
}

TEST_F(BmpThumb, OneSideOfTheSizeIsEnoughToRewrite) {
    EXPECT_EQ(shrink(BmpFile(3, 2).padding(0xEE), 3), 0.0f);
    EXPECT_EQ(readBytes(map()), ByteList(BmpFile(3, 2)));
}

// A pixel counts only when the file has a byte after it; in rows without padding the top right one
// is the end of the file.
TEST_F(BmpThumb, TheFilesLastPixelIsBlack) {
    EXPECT_EQ(shrink(BmpFile(4, 4), 4), 0.0f);
    EXPECT_EQ(readBytes(map()), ByteList(BmpFile(4, 4).pixel(3, 3, 0, 0, 0)));
}

TEST_F(BmpThumb, KeepsTheOtherHeaderBytesAndTheGapBeforeThePixels) {
    const auto file = [](BmpFile image) {
        ByteList bytes = image.pixelOffset(60, 0xAB);
        for (const std::size_t at : {6u, 14u, 26u, 28u, 30u, 38u, 50u})
            bytes[at] = static_cast<std::uint8_t>(at);
        return bytes;
    };
    EXPECT_EQ(shrink(file(BmpFile(2, 2)), 1), 0.0f);
    ByteList expected = file(BmpFile(1, 1).pixels({1, 2, 3}));
    expected[2] = 64;  // the file size, which the builder gives for pixels at 54
    EXPECT_EQ(readBytes(map()), expected);
}

// Of the headers only the first byte is left; the four pixels are bytes 1, 7, 25 and 31 of the file
// and the two after each.
TEST_F(BmpThumb, PixelsMayStartAtTheSecondByte) {
    EXPECT_EQ(shrink(BmpFile(4, 4).claimPixelOffset(1), 2), 0.0f);
    EXPECT_EQ(readBytes(map()),
              (ByteList{'B', 'M', 102, 0, 0, 0, 0, 0, 0, 0, 1, 0, 0, 0, 0, 0, 0}));
}

// Thin ones, of which less than a row is left, and ones without columns.
TEST_F(BmpThumb, ImagesWithoutPixelsBecomeHeadersAlone) {
    const struct {
        ByteList image;
        std::int32_t size, width, height;
    } rows[] = {
        {BmpFile(8, 1), 4, 4, 0},
        {BmpFile(1, 8), 4, 0, 4},
        {BmpFile(4, 4).claimSize(-8, 8), 4, -4, 4},
        {BmpFile(4, 4).claimSize(0, 8), 4, 0, 4},
        {BmpFile(4, 4).claimSize(0, kLargest), kLargest, 0, kLargest},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(shrink(row.image, row.size), 0.0f);
        EXPECT_EQ(readBytes(map()), ByteList(BmpFile(0, 0).claimSize(row.width, row.height)));
    }
}

TEST_F(BmpThumb, ATopDownImageIsRefusedUnlessItsWidthIsBelowTheSize) {
    const std::pair<std::int32_t, float> rows[] = {
        {1, -9.0f}, {8, -9.0f}, {9, 0.0f}, {kLargest, 0.0f}};
    for (const std::int32_t height : {-1, -8, -kLargest - 1}) {
        const ByteList before = BmpFile(8, 8).claimSize(8, height);
        for (const auto& [size, status] : rows) {
            EXPECT_EQ(shrink(before, size), status) << size;
            EXPECT_EQ(readBytes(map()), before) << height;
        }
    }
}

TEST_F(BmpThumb, RefusesASizeOfZeroOrBelowAndAResultOfMoreThanFourGigabytes) {
    const struct {
        std::int32_t width, height, size;
    } rows[] = {{4, 4, 0},
                {4, 4, -1},
                {4, 4, -kLargest - 1},
                {kLargest, kLargest, kLargest},
                {kLargest, 1, kLargest},
                {1, kLargest, kLargest},
                {40000, 40000, 40000}};
    for (const auto& row : rows) {
        const ByteList before = BmpFile(4, 4).claimSize(row.width, row.height);
        EXPECT_EQ(shrink(before, row.size), -9.0f);
        EXPECT_EQ(readBytes(map()), before) << row.width << " x " << row.height;
    }
    EXPECT_EQ(createBMPthumb(nullptr, 0), -9.0f);
}

// Rows that the file only claims are black and not written one by one.
TEST_F(BmpThumb, ClaimedRowsTakeNoMemory) {
    EXPECT_EQ(shrink(BmpFile(4, 1).claimSize(10000, 10000), 10000), 0.0f);
    EXPECT_EQ(std::filesystem::file_size(map()), 300000054u);
}

TEST_F(BmpThumb, ReportsWhatIsWrongAndLeavesTheFileAsItIs) {
    const struct {
        const char* what;
        ByteList file;
        float status;
    } rows[] = {
        {"no BMP", BmpFile(4, 4).signature('B', 'A'), -2.0f},
        {"empty", {}, -2.0f},
        {"half a signature", {'B'}, -2.0f},
        {"shorter than its headers", BmpFile(4, 4).cut(53), -7.0f},
        {"pixels start past the end", BmpFile(4, 4).claimPixelOffset(103), -7.0f},
        {"pixels start far past the end", BmpFile(4, 4).claimPixelOffset(0xFFFFFFFF), -7.0f},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(shrink(row.file, 2), row.status) << row.what;
        EXPECT_EQ(readBytes(map()), row.file) << row.what;
    }
}

TEST_F(BmpThumb, ReportsThatTheFileCannotBeOpened) {
    EXPECT_EQ(createBMPthumb(map().c_str(), 4), -1.0f);
    EXPECT_EQ(createBMPthumb(nullptr, 4), -1.0f);
    EXPECT_FALSE(dir_.has("map.bmp"));
}

TEST_F(BmpThumb, AFileThatCannotBeWrittenStaysAsItIsWithoutAStatus) {
    const ByteList before = BmpFile(4, 4);
    dir_.write("map.bmp", before);
    std::filesystem::permissions(dir_.path(), perms{0755});
    std::filesystem::permissions(map(), perms{0444});
    {
        const WithoutRoot user;
        EXPECT_EQ(createBMPthumb(map().c_str(), 2), 0.0f);
    }
    EXPECT_EQ(readBytes(map()), before);
}

TEST_F(BmpThumb, AFullDiskIsNoFailure) {
    dir_.write("map.bmp", BmpFile(4, 4));
    const FullDisk disk(60);
    EXPECT_EQ(createBMPthumb(map().c_str(), 2), 0.0f);
    EXPECT_EQ(std::filesystem::file_size(map()), 60u);
}

TEST_F(BmpThumb, HoldsNothingAfterwards) {
    const std::ptrdiff_t before = openFiles();
    for (const std::int32_t size : {2, 40, 41}) {
        EXPECT_EQ(shrink(BmpFile(40, 40), size), 0.0f);
        EXPECT_EQ(bmpV.data, nullptr) << size;
    }
    EXPECT_EQ(shrink(BmpFile(40, 40).signature('B', 'A'), 2), -2.0f);
    EXPECT_EQ(bmpV.data, nullptr);
    EXPECT_EQ(openFiles(), before);
}

// The copy ends within the old image, whose rows must not show through: 320 of the copy's 640 rows
// have a row of the file to show.
TEST_F(BmpThumb, BlackCoversTheOldImage) {
    const ByteList lowerHalf =
        BmpFile(800, 800).plain(9, 9, 9).cut(54 + std::size_t{400} * 800 * 3);
    EXPECT_EQ(shrink(lowerHalf, 640), 0.0f);
    ByteList pixels(std::size_t{320} * 640 * 3, 9);
    pixels.resize(std::size_t{640} * 640 * 3);
    EXPECT_TRUE(readBytes(map()) == ByteList(BmpFile(640, 640).pixels(pixels)));
}

}  // namespace
