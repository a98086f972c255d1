#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>

#include "bmp/BmpHeader.h"
#include "bmp/BmpOps.h"
#include "support/BmpFile.h"
#include "support/Faults.h"

namespace {

using std::filesystem::perms;
using testing::ElementsAre;

constexpr std::int32_t kLargest = 2147483647;

class SwapBmp : public testing::Test {
protected:
    float swap(const ByteList& image, std::int32_t mode) {
        dir_.write("map.bmp", image);
        return swapAgain(mode);
    }
    float swapAgain(std::int32_t mode) const { return swapChannelsBMP(map().c_str(), mode); }
    std::string map() const { return dir_.path("map.bmp"); }

    const TempDir dir_;
};

TEST_F(SwapBmp, ModeOneExchangesBlueAndGreen) {
    EXPECT_EQ(swap(BmpFile(2, 1).pixels({1, 2, 3, 4, 5, 6}), 1), 0.0f);
    EXPECT_THAT(bmpPixelsOf(map()), ElementsAre(2, 1, 3, 5, 4, 6));
}

TEST_F(SwapBmp, ModeTwoExchangesBlueAndRed) {
    EXPECT_EQ(swap(BmpFile(2, 2).plain(255, 0, 0), 2), 0.0f);
    EXPECT_THAT(bmpPixelsOf(map()), ElementsAre(0, 0, 255, 0, 0, 255, 0, 0, 255, 0, 0, 255));
}

TEST_F(SwapBmp, ModeThreeExchangesGreenAndRed) {
    EXPECT_EQ(swap(BmpFile(2, 1).pixels({1, 2, 3, 4, 5, 6}), 3), 0.0f);
    EXPECT_THAT(bmpPixelsOf(map()), ElementsAre(1, 3, 2, 4, 6, 5));
}

TEST_F(SwapBmp, AnyOtherModeLeavesTheFileAsItIs) {
    const ByteList before = BmpFile(3, 2).padding(0xEE);
    for (const std::int32_t mode : {0, 4, -1, kLargest, -kLargest - 1}) {
        EXPECT_EQ(swap(before, mode), 0.0f);
        EXPECT_EQ(readBytes(map()), before) << mode;
    }
}

TEST_F(SwapBmp, KeepsThePaddingOfASinglePixel) {
    EXPECT_EQ(swap(BmpFile(1, 1).pixels({1, 2, 3}).padding(0xEE), 2), 0.0f);
    EXPECT_EQ(readBytes(map()), ByteList(BmpFile(1, 1).pixels({3, 2, 1}).padding(0xEE)));
}

TEST_F(SwapBmp, KeepsWhatLiesBeforeAndAfterTheRows) {
    ByteList before = BmpFile(1, 1).pixels({1, 2, 3}).pixelOffset(101, 0x11);
    before.insert(before.end(), {4, 5, 6, 7, 8, 9});
    EXPECT_EQ(swap(before, 2), 0.0f);

    ByteList after = BmpFile(1, 1).pixels({3, 2, 1}).pixelOffset(101, 0x11);
    after.insert(after.end(), {4, 5, 6, 7, 8, 9});
    EXPECT_EQ(readBytes(map()), after);
}

TEST_F(SwapBmp, EveryModeTwiceRestoresTheFile) {
    const ByteList before = BmpFile(37, 23).padding(0xEE);
    for (const std::int32_t mode : {1, 2, 3}) {
        EXPECT_EQ(swap(before, mode), 0.0f);
        EXPECT_NE(readBytes(map()), before) << mode;
        EXPECT_EQ(swapAgain(mode), 0.0f);
        EXPECT_EQ(readBytes(map()), before) << mode;
    }
}

// A piece holds 262144 bytes: 87 rows of the first image, less than a row of the others.
TEST_F(SwapBmp, WorksThroughImagesOfManyPieces) {
    const std::pair<std::int32_t, std::int32_t> sizes[] = {{1000, 300}, {87382, 2}, {174762, 2}};
    for (const auto& [width, height] : sizes) {
        EXPECT_EQ(swap(BmpFile(width, height).plain(1, 2, 3).padding(7), 3), 0.0f);
        EXPECT_TRUE(readBytes(map()) == ByteList(BmpFile(width, height).plain(1, 3, 2).padding(7)))
            << width << " x " << height;
    }
}

TEST_F(SwapBmp, RefusesWhatIsNoBmp) {
    const ByteList before = BmpFile(3, 2).signature('B', 'A');
    EXPECT_EQ(swap(before, 1), -7.0f);
    EXPECT_EQ(readBytes(map()), before);
}

TEST_F(SwapBmp, TellsThatTheFileCannotBeOpened) {
    EXPECT_EQ(swapAgain(1), -1760.0f);
    EXPECT_EQ(swapChannelsBMP(nullptr, 1), -1760.0f);
    EXPECT_EQ(swapChannelsBMP(dir_.path().c_str(), 1), -1760.0f);
}

TEST_F(SwapBmp, TellsThatTheFileCannotBeWritten) {
    const ByteList before = BmpFile(3, 2);
    dir_.write("map.bmp", before);
    std::filesystem::permissions(dir_.path(), static_cast<perms>(0755));
    std::filesystem::permissions(map(), static_cast<perms>(0444));
    {
        const WithoutRoot user;
        EXPECT_EQ(swapAgain(1), -101.0f);
    }
    EXPECT_EQ(readBytes(map()), before);
}

TEST_F(SwapBmp, ImagesWithoutRowsStayAsTheyAre) {
    const std::pair<std::int32_t, std::int32_t> sizes[] = {{3, -2}, {3, 0}, {0, 2}, {-3, 2}};
    for (const auto& [width, height] : sizes) {
        const ByteList before = BmpFile(3, 2).claimSize(width, height);
        EXPECT_EQ(swap(before, 2), 0.0f);
        EXPECT_EQ(readBytes(map()), before) << width << " x " << height;
    }
}

TEST_F(SwapBmp, SizesBeyondTheFileDoNotWrap) {
    const std::pair<std::int32_t, std::int32_t> sizes[] = {
        {kLargest, kLargest}, {1431655766, 2}, {2, kLargest}};
    for (const auto& [width, height] : sizes) {
        EXPECT_EQ(swap(BmpFile(2, 1).pixels({1, 2, 3, 4, 5, 6}).claimSize(width, height), 2), 0.0f);
        EXPECT_EQ(readBytes(map()),
                  ByteList(BmpFile(2, 1).pixels({3, 2, 1, 6, 5, 4}).claimSize(width, height)))
            << width << " x " << height;
    }
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
