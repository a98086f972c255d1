#include <gmock/gmock.h>

#include "support/CaptureStdout.h"
#include "support/Faults.h"
#include "support/TempDir.h"
#include "support/TiffFile.h"
#include "tiff/TiffOps.h"

namespace {

using testing::ElementsAre;

class SwapChannels : public testing::Test {
protected:
    float swap(const ByteList& bytes, int mode) const {
        return swapChannels(dir.write("map.tif", bytes).c_str(), mode);
    }
    float again(int mode) const { return swapChannels(path().c_str(), mode); }
    std::string path() const { return dir.path("map.tif"); }

    const TempDir dir;
};

TiffFile twoPixels() {
    return TiffFile(1, 2).rgb8({1, 2, 3, 4, 5, 6});
}

TEST_F(SwapChannels, ModeOneExchangesGreenAndBlue) {
    EXPECT_EQ(swap(twoPixels().bytes(), 1), 0.0f);
    EXPECT_THAT(pixelsOf(path(), twoPixels()), ElementsAre(1, 3, 2, 4, 6, 5));
}

TEST_F(SwapChannels, ModeTwoExchangesRedAndBlue) {
    EXPECT_EQ(swap(twoPixels().bytes(), 2), 0.0f);
    EXPECT_THAT(pixelsOf(path(), twoPixels()), ElementsAre(3, 2, 1, 6, 5, 4));
}

TEST_F(SwapChannels, ModeThreeExchangesRedAndGreen) {
    EXPECT_EQ(swap(twoPixels().bytes(), 3), 0.0f);
    EXPECT_THAT(pixelsOf(path(), twoPixels()), ElementsAre(2, 1, 3, 5, 4, 6));
}

TEST_F(SwapChannels, OtherModesChangeNothing) {
    for (const int mode : {0, 4, -1, 2147483647}) {
        EXPECT_EQ(swap(twoPixels().bytes(), mode), 0.0f);
        EXPECT_EQ(readBytes(path()), twoPixels().bytes());
    }
}

TEST_F(SwapChannels, EveryModeTwiceRestoresTheMap) {
    for (const int mode : {1, 2, 3}) {
        EXPECT_EQ(swap(twoPixels().bytes(), mode), 0.0f);
        EXPECT_NE(readBytes(path()), twoPixels().bytes());
        EXPECT_EQ(again(mode), 0.0f);
        EXPECT_EQ(readBytes(path()), twoPixels().bytes());
    }
}

TEST_F(SwapChannels, ChangesNothingOutsideTheStrip) {
    for (const auto order : {TiffFile::Order::kPixelsFirst, TiffFile::Order::kDirectoryFirst}) {
        EXPECT_EQ(swap(TiffFile(2, 1, order).rgb8({1, 2, 3, 4, 5, 6}).bytes(), 2), 0.0f);
        EXPECT_EQ(readBytes(path()), TiffFile(2, 1, order).rgb8({3, 2, 1, 6, 5, 4}).bytes());
    }
}

TEST_F(SwapChannels, AMapOfManyPiecesIsSwappedWhole) {
    ByteList pixels;
    ByteList expected;
    for (unsigned i = 0; i < 500 * 400; ++i) {
        const auto red = static_cast<std::uint8_t>(i);
        const auto green = static_cast<std::uint8_t>(i >> 8);
        const auto blue = static_cast<std::uint8_t>(i >> 16 | 0x40);
        pixels.insert(pixels.end(), {red, green, blue});
        expected.insert(expected.end(), {red, blue, green});
    }
    const auto order = TiffFile::Order::kDirectoryFirst;
    EXPECT_EQ(swap(TiffFile(500, 400, order).rgb8(pixels).bytes(), 1), 0.0f);
    EXPECT_EQ(readBytes(path()), TiffFile(500, 400, order).rgb8(expected).bytes());
}

TEST_F(SwapChannels, OtherDepthsAndGreyMapsStayAsTheyAre) {
    const TiffFile maps[] = {
        TiffFile(1, 1).rgb16({1, 2, 3}),
        TiffFile(1, 1).rgb32({1, 2, 3}),
        TiffFile(3, 1).grey8({1, 2, 3}),
        TiffFile(1, 2).rgb8({1, 2, 3, 4, 5, 6}).claimEntries(0),
    };
    for (const TiffFile& map : maps) {
        EXPECT_EQ(swap(map.bytes(), 2), 0.0f);
        EXPECT_EQ(readBytes(path()), map.bytes());
    }
}

TEST_F(SwapChannels, SizesBelowOneStayAsTheyAre) {
    for (const std::uint16_t tag : {std::uint16_t{256}, std::uint16_t{257}}) {
        for (const std::uint32_t size : {0u, 0xFFFFFFFFu}) {
            const TiffFile map = twoPixels().entry(tag, 1, size);
            EXPECT_EQ(swap(map.bytes(), 2), 0.0f);
            EXPECT_EQ(readBytes(path()), map.bytes());
        }
    }
}

TEST_F(SwapChannels, OnlyWholeRowsThatExistAreSwapped) {
    const auto order = TiffFile::Order::kDirectoryFirst;
    ByteList bytes = TiffFile(2, 2, order).rgb8({1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12}).bytes();
    ByteList expected = TiffFile(2, 2, order).rgb8({3, 2, 1, 6, 5, 4, 7, 8, 9, 10, 11, 12}).bytes();
    bytes.pop_back();
    expected.pop_back();
    EXPECT_EQ(swap(bytes, 2), 0.0f);
    EXPECT_EQ(readBytes(path()), expected);
}

TEST_F(SwapChannels, NoHeaderMakesTheFileLonger) {
    for (const std::uint32_t value : {0x7FFFFFFFu, 0xFFFFFFFFu, 1000u}) {
        for (const std::uint16_t tag :
             {std::uint16_t{256}, std::uint16_t{257}, std::uint16_t{273}}) {
            const ByteList bytes = twoPixels().entry(tag, 1, value).bytes();
            EXPECT_EQ(swap(bytes, 2), 0.0f);
            EXPECT_EQ(readBytes(path()).size(), bytes.size());
        }
    }
}

TEST_F(SwapChannels, AMissingFileIsPrinted) {
    const CaptureStdout captured;
    EXPECT_EQ(swapChannels(dir.path("missing").c_str(), 1), -10.0f);
    EXPECT_EQ(captured.text(), "-10\n");
}

TEST_F(SwapChannels, ARefusedTagIsNotPrinted) {
    const CaptureStdout captured;
    EXPECT_EQ(swap(twoPixels().entry(258, 4, 8).bytes(), 1), 258.0f);
    EXPECT_EQ(swap(twoPixels().entry(259, 1, 5).bytes(), 1), -259.0f);
    EXPECT_EQ(captured.text(), "");
}

TEST_F(SwapChannels, AFileThatTakesNoMoreBytesIsToldButNotPrinted) {
    dir.write("map.tif", twoPixels().bytes());
    const CaptureStdout captured;
    const FullDisk full(8);
    EXPECT_EQ(again(2), -101.0f);
    EXPECT_EQ(captured.text(), "");
}

TEST_F(SwapChannels, ATruncatedMapNeverGrows) {
    const ByteList whole = twoPixels().bytes();
    for (std::size_t length = 0; length <= whole.size(); ++length) {
        swap({whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(length)}, 2);
        EXPECT_EQ(readBytes(path()).size(), length);
    }
}

}  // namespace
