#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <utility>

#include "bmp/BmpHeader.h"
#include "bmp/BmpOps.h"
#include "support/BmpFile.h"
#include "support/Faults.h"

namespace {

constexpr std::int32_t kLargest = 2147483647;
constexpr std::int32_t kLowest = -kLargest - 1;

class CropBmp : public testing::Test {
protected:
    float crop(const ByteList& image, std::int32_t xOffset, std::int32_t newWidth) const {
        dir_.write("in.bmp", image);
        return cropBMP(in().c_str(), out().c_str(), xOffset, newWidth);
    }
    std::string in() const { return dir_.path("in.bmp"); }
    std::string out() const { return dir_.path("out.bmp"); }

    const TempDir dir_;
};

TEST_F(CropBmp, CutsABandAndDropsTheBottomRowAndTheTwoTopRows) {
    EXPECT_EQ(crop(BmpFile(10, 10).places().padding(0xEE), 6, 5), 0.0f);
    BmpFile expected(5, 7);
    for (std::int32_t row = 0; row < 7; ++row) {
        for (std::int32_t column = 0; column < 5; ++column)
            expected.pixel(column, row, static_cast<std::uint8_t>(column + 2),
                           static_cast<std::uint8_t>(row + 1), 200);
    }
    EXPECT_EQ(readBytes(out()), ByteList(expected));
}

// The row above the bottom one has bytes 13 to 24 and starts at byte 66 of the file. The offset
// counts bytes: a band that leaves its row goes on in the next, and beyond the file it is black.
TEST_F(CropBmp, ABandMayLeaveItsRowAndTheFile) {
    const struct {
        std::int32_t offset, width;
        ByteList pixels;
    } rows[] = {
        {1, 1, {14, 15, 16}},
        {9, 2, {22, 23, 24, 25, 26, 27}},
        {34, 2, {47, 48, 0, 0, 0, 0}},
        {36, 2, {0, 0, 0, 0, 0, 0}},
        {37, 2, {0, 0, 0, 0, 0, 0}},
        {kLargest, 2, {0, 0, 0, 0, 0, 0}},
        {-68, 2, {0, 0, 'B', 'M', 102, 0}},
        {-72, 2, {0, 0, 0, 0, 0, 0}},
        {-73, 2, {0, 0, 0, 0, 0, 0}},
        {kLowest, 2, {0, 0, 0, 0, 0, 0}},
    };
    for (const auto& [offset, width, pixels] : rows) {
        EXPECT_EQ(crop(BmpFile(4, 4), offset, width), 0.0f);
        EXPECT_EQ(bmpPixelsOf(out()), pixels) << offset;
    }
}

TEST_F(CropBmp, KeepsTheOtherHeaderBytesAndTheGapBeforeThePixels) {
    const auto file = [](BmpFile image) {
        ByteList bytes = image.pixelOffset(60, 0xAB);
        for (const std::size_t at : {6u, 14u, 26u, 28u, 30u, 38u, 50u})
            bytes[at] = static_cast<std::uint8_t>(at);
        return bytes;
    };
    EXPECT_EQ(crop(file(BmpFile(4, 4)), 0, 1), 0.0f);
    ByteList expected = file(BmpFile(1, 1).pixels({13, 14, 15}));
    expected[2] = 64;  // the file size, which the builder gives for pixels at 54
    EXPECT_EQ(readBytes(out()), expected);
}

TEST_F(CropBmp, InputAndOutputMayBeOneFile) {
    dir_.write("in.bmp", BmpFile(4, 4).places());
    EXPECT_EQ(cropBMP(in().c_str(), in().c_str(), 3, 2), 0.0f);
    EXPECT_EQ(readBytes(in()), ByteList(BmpFile(2, 1).pixels({1, 1, 200, 2, 1, 200})));
}

// 300000 rows of 12 bytes are many pieces; the last one ends within the black.
TEST_F(CropBmp, WorksThroughImagesOfManyPieces) {
    EXPECT_EQ(crop(BmpFile(100, 3000).plain(1, 2, 3), 0, 99), 0.0f);
    EXPECT_EQ(readBytes(out()), ByteList(BmpFile(99, 2997).plain(1, 2, 3)));

    EXPECT_EQ(crop(BmpFile(100, 3).plain(1, 2, 3).claimSize(100, 300003), 0, 4), 0.0f);
    BmpFile expected = BmpFile(4, 300000).plain(0, 0, 0);
    for (std::int32_t column = 0; column < 4; ++column)
        expected.pixel(column, 0, 1, 2, 3).pixel(column, 1, 1, 2, 3);
    EXPECT_EQ(readBytes(out()), ByteList(expected));
}

TEST_F(CropBmp, LessThanFourRowsLeaveTheHeadersAlone) {
    const std::pair<std::int32_t, std::int32_t> heights[] = {
        {3, 0}, {2, -1}, {0, -3}, {-8, -11}, {kLowest, kLargest - 2}};  // the low 32 bits
    for (const auto& [before, after] : heights) {
        EXPECT_EQ(crop(BmpFile(4, 4).claimSize(4, before), 0, 2), 0.0f);
        EXPECT_EQ(readBytes(out()), ByteList(BmpFile(2, 0).claimSize(2, after))) << before;
    }
}

TEST_F(CropBmp, ABandWithoutColumnsLeavesTheHeadersAloneAndAnInputWithoutIsBlack) {
    for (const std::int32_t width : {0, -1, -5, kLowest}) {
        EXPECT_EQ(crop(BmpFile(4, 5), 0, width), 0.0f);
        EXPECT_EQ(readBytes(out()), ByteList(BmpFile(0, 0).claimSize(width, 2))) << width;
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

TEST_F(CropBmp, ReportsWhatIsWrongAndLeavesTheOutputAlone) {
    dir_.write("out.bmp", std::string_view("kept"));
    EXPECT_EQ(crop(BmpFile(4, 4).signature('B', 'A'), 0, 2), -7.0f);
    EXPECT_EQ(crop(BmpFile(4, 4).claimPixelOffset(103), 0, 2), -7.0f);  // the file has 102 bytes
    EXPECT_EQ(crop(BmpFile(4, 4).claimPixelOffset(0xFFFFFFFF), 0, 2), -7.0f);
    EXPECT_EQ(cropBMP(dir_.path("none.bmp").c_str(), out().c_str(), 0, 2), -1760.0f);
    EXPECT_EQ(cropBMP(nullptr, out().c_str(), 0, 2), -1760.0f);
    EXPECT_EQ(readBytes(out()), (ByteList{'k', 'e', 'p', 't'}));
}

TEST_F(CropBmp, ReportsThatTheOutputCannotBeOpenedOrTheDiskIsFull) {
    dir_.write("in.bmp", BmpFile(4, 5));
    EXPECT_EQ(cropBMP(in().c_str(), dir_.path("none/out.bmp").c_str(), 0, 2), -5.0f);
    EXPECT_EQ(cropBMP(in().c_str(), dir_.path().c_str(), 0, 2), -5.0f);
    EXPECT_EQ(cropBMP(in().c_str(), nullptr, 0, 2), -5.0f);
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
    EXPECT_EQ(openFiles(), before);
}

}  // namespace
