#include <gmock/gmock.h>

#include <filesystem>
#include <utility>

#include "bmp/BmpHeader.h"
#include "bmp/BmpOps.h"
#include "export/Quillon.h"
#include "support/Append.h"
#include "support/BmpFile.h"
#include "support/Faults.h"

namespace {

using std::filesystem::perms;
using testing::ElementsAre;

constexpr std::int32_t kLargest = 2147483647;

class SwapBmp : public testing::Test {
protected:
    float swap(const ByteList& image, std::int32_t mode) const {
        dir_.write("map.bmp", image);
        return swapAgain(mode);
    }
    float swapAgain(std::int32_t mode) const { return swapChannelsBMP(map().c_str(), mode); }
    std::string map() const { return dir_.path("map.bmp"); }

    const TempDir dir_;
};

TEST_F(SwapBmp, EachModeExchangesTwoChannelsAndAnyOtherNone) {
    const std::pair<std::int32_t, ByteList> rows[] = {
        {1, {2, 1, 3, 5, 4, 6}},        {2, {3, 2, 1, 6, 5, 4}},
        {3, {1, 3, 2, 4, 6, 5}},        {0, {1, 2, 3, 4, 5, 6}},
        {4, {1, 2, 3, 4, 5, 6}},        {-1, {1, 2, 3, 4, 5, 6}},
        {kLargest, {1, 2, 3, 4, 5, 6}}, {-kLargest - 1, {1, 2, 3, 4, 5, 6}},
    };
    for (const auto& [mode, pixels] : rows) {
        EXPECT_EQ(swap(BmpFile(2, 1).padding(0xEE), mode), 0.0f) << mode;
        EXPECT_EQ(readBytes(map()), ByteList(BmpFile(2, 1).pixels(pixels).padding(0xEE))) << mode;
    }
}

// The export truncates its value: 0.5 is mode 0.
TEST_F(SwapBmp, TheModeIsTheTruncatedValue) {
    const auto call = [&](double value) {
        return swapRGBBMP(map().c_str(), value, nullptr, 0, nullptr, 0, nullptr);
    };
    dir_.write("map.bmp", BmpFile(1, 1).pixels({1, 2, 3}));
    EXPECT_EQ(call(0.5), 0.0f);
    EXPECT_THAT(bmpPixelsOf(map()), ElementsAre(1, 2, 3));
    EXPECT_EQ(call(3.9), 0.0f);
    EXPECT_THAT(bmpPixelsOf(map()), ElementsAre(1, 3, 2));
}

TEST_F(SwapBmp, KeepsWhatIsBeforeAndAfterTheRows) {
    const auto file = [](const ByteList& pixels) {
        ByteList bytes = BmpFile(1, 1).pixels(pixels).padding(0xEE).pixelOffset(101, 0x11);
        append(bytes, {4, 5, 6, 7, 8, 9});
        return bytes;
    };
    EXPECT_EQ(swap(file({1, 2, 3}), 2), 0.0f);
    EXPECT_EQ(readBytes(map()), file({3, 2, 1}));
}

// A piece holds 262144 bytes: 87 rows of the first image, less than a row of the others.
TEST_F(SwapBmp, WorksThroughImagesOfManyPieces) {
    const std::pair<std::int32_t, std::int32_t> sizes[] = {{1000, 300}, {87382, 2}, {174762, 2}};
    for (const auto& [width, height] : sizes) {
        EXPECT_EQ(swap(BmpFile(width, height).plain(1, 2, 3).padding(7), 3), 0.0f);
        EXPECT_EQ(readBytes(map()), ByteList(BmpFile(width, height).plain(1, 3, 2).padding(7)))
            << width << " x " << height;
    }
}

TEST_F(SwapBmp, RefusesAFileThatCannotBeOpenedOrIsNoBmp) {
    EXPECT_EQ(swapAgain(1), -1760.0f);
    EXPECT_EQ(swapChannelsBMP(nullptr, 1), -1760.0f);
    const ByteList before = BmpFile(3, 2).signature('B', 'A');
    EXPECT_EQ(swap(before, 1), -7.0f);
    EXPECT_EQ(readBytes(map()), before);
}

TEST_F(SwapBmp, ReportsThatTheFileCannotBeWritten) {
    const ByteList before = BmpFile(3, 2);
    dir_.write("map.bmp", before);
    std::filesystem::permissions(dir_.path(), perms{0755});
    std::filesystem::permissions(map(), perms{0444});
    {
        const WithoutRoot user;
        EXPECT_EQ(swapAgain(1), -101.0f);
    }
    EXPECT_EQ(readBytes(map()), before);
}

// 3 x 2 pixels, rows of 12 bytes from byte 54 on.
TEST_F(SwapBmp, SwapsThePixelsThatTheFileHas) {
    for (std::size_t length = 54; length <= 78; ++length) {
        ByteList expected = BmpFile(3, 2).cut(length);
        for (std::size_t row = 54; row < 78; row += 12) {
            for (std::size_t at = row; at < row + 9 && at + 3 <= length; at += 3)
                std::swap(expected[at], expected[at + 2]);
        }
        EXPECT_EQ(swap(BmpFile(3, 2).cut(length), 2), 0.0f);
        EXPECT_EQ(readBytes(map()), expected) << length;
    }
}

TEST_F(SwapBmp, AFullDiskEndsTheSwapWithoutAStatus) {
    dir_.write("map.bmp", BmpFile(4, 2).plain(1, 2, 3));
    {
        const FullDisk disk(54 + 12);  // one row
        EXPECT_EQ(swapAgain(2), 0.0f);
    }
    EXPECT_THAT(bmpPixelsOf(map()), ElementsAre(3, 2, 1, 3, 2, 1, 3, 2, 1, 3, 2, 1, 1, 2, 3, 1, 2,
                                                3, 1, 2, 3, 1, 2, 3));
}

TEST_F(SwapBmp, HoldsOnlyTheFirstBytesAfterwardsAndNoFileOpen) {
    const std::ptrdiff_t before = openFiles();
    EXPECT_EQ(swap(BmpFile(400, 400), 1), 0.0f);
    EXPECT_EQ(bmpV.size, 100u);
    EXPECT_EQ(bmpHdr.width, 400);
    EXPECT_EQ(openFiles(), before);
}

}  // namespace
