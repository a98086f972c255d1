#include <gmock/gmock.h>

#include "support/CaptureStdout.h"
#include "support/Faults.h"
#include "support/TempDir.h"
#include "support/TiffFile.h"
#include "tiff/TiffOps.h"

namespace {

class SwapChannels : public testing::Test {
protected:
    float swap(const ByteList& bytes, int mode) const {
        return swapChannels(dir.write("map.tif", bytes).c_str(), mode);
    }
    std::string path() const { return dir.path("map.tif"); }

    const TempDir dir;
};

constexpr auto kDirectoryFirst = TiffFile::Order::kDirectoryFirst;

TiffFile twoPixels() {
    return TiffFile(1, 2).rgb8({1, 2, 3, 4, 5, 6});
}

TEST_F(SwapChannels, EachModeExchangesTwoChannelsAndAnyOtherNone) {
    const std::pair<int, ByteList> rows[] = {
        {1, {1, 3, 2, 4, 6, 5}},          {2, {3, 2, 1, 6, 5, 4}}, {3, {2, 1, 3, 5, 4, 6}},
        {0, {1, 2, 3, 4, 5, 6}},          {4, {1, 2, 3, 4, 5, 6}}, {-1, {1, 2, 3, 4, 5, 6}},
        {2147483647, {1, 2, 3, 4, 5, 6}},
    };
    for (const auto& [mode, pixels] : rows) {
        EXPECT_EQ(swap(twoPixels(), mode), 0.0f) << mode;
        EXPECT_EQ(readBytes(path()), TiffFile(1, 2).rgb8(pixels).bytes()) << mode;
    }
}

TEST_F(SwapChannels, ASinglePixelIsAMap) {
    EXPECT_EQ(swap(TiffFile(1, 1).rgb8({1, 2, 3}), 2), 0.0f);
    EXPECT_EQ(readBytes(path()), TiffFile(1, 1).rgb8({3, 2, 1}).bytes());
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
    EXPECT_EQ(swap(TiffFile(500, 400, kDirectoryFirst).rgb8(pixels), 1), 0.0f);
    EXPECT_TRUE(readBytes(path()) == TiffFile(500, 400, kDirectoryFirst).rgb8(expected).bytes());
}

TEST_F(SwapChannels, OtherDepthsGreyMapsAndMapsWithoutPixelsStayAsTheyAre) {
    const ByteList maps[] = {
        TiffFile(1, 1).rgb16({1, 2, 3}), TiffFile(1, 1).rgb32({1, 2, 3}),
        TiffFile(3, 1).grey8({1, 2, 3}), twoPixels().claimEntries(0),
        twoPixels().entry(256, 1, 0),    twoPixels().entry(256, 1, 0xFFFFFFFF),
        twoPixels().entry(257, 1, 0),    twoPixels().entry(257, 1, 0xFFFFFFFF),
    };
    for (const ByteList& map : maps) {
        EXPECT_EQ(swap(map, 2), 0.0f);
        EXPECT_EQ(readBytes(path()), map);
    }
}

// Bytes 0 to 7 are the file header. A directory without tag 273, as of a tiled map, gives 0.
TEST_F(SwapChannels, AMapWhosePixelsWouldStartInTheFileHeaderIsRefusedUntouched) {
    const auto startingAt = [](std::uint32_t offset) { return twoPixels().entry(273, 1, offset); };
    const ByteList refused[] = {twoPixels().without(273), startingAt(0), startingAt(7),
                                startingAt(7).entry(256, 1, 1000000)};
    for (const ByteList& map : refused) {
        EXPECT_EQ(swap(map, 2), -273.0f);
        EXPECT_EQ(readBytes(path()), map);
    }
    const std::pair<ByteList, int> unchanged[] = {
        {startingAt(7), 0},
        {startingAt(0).entry(257, 1, 0), 2},
        {TiffFile(3, 1).grey8({1, 2, 3}).entry(273, 1, 0), 2},
        {TiffFile(1, 1).rgb16({1, 2, 3}).entry(273, 1, 0), 2},
    };
    for (const auto& [map, mode] : unchanged) {
        EXPECT_EQ(swap(map, mode), 0.0f);
        EXPECT_EQ(readBytes(path()), map);
    }
    EXPECT_EQ(swap(startingAt(8), 2), 0.0f);
    EXPECT_EQ(readBytes(path()), TiffFile(1, 2).rgb8({3, 2, 1, 6, 5, 4}).bytes());
}

TEST_F(SwapChannels, OnlyWholeRowsThatExistAreSwapped) {
    const ByteList before =
        TiffFile(2, 2, kDirectoryFirst).rgb8({1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12});
    const ByteList after =
        TiffFile(2, 2, kDirectoryFirst).rgb8({3, 2, 1, 6, 5, 4, 7, 8, 9, 10, 11, 12});
    EXPECT_EQ(swap(firstBytes(before, before.size() - 1), 2), 0.0f);
    EXPECT_EQ(readBytes(path()), firstBytes(after, after.size() - 1));
}

TEST_F(SwapChannels, OnlyAMissingFileIsPrinted) {
    const CaptureStdout captured;
    EXPECT_EQ(swapChannels(dir.path("missing").c_str(), 1), -10.0f);
    EXPECT_EQ(captured.text(), "-10\n");
    EXPECT_EQ(swap(twoPixels().entry(258, 4, 8), 1), 258.0f);
    EXPECT_EQ(swap(twoPixels().entry(259, 1, 5), 1), -259.0f);
    EXPECT_EQ(captured.text(), "-10\n");
}

TEST_F(SwapChannels, AFileThatTakesNoMoreBytesIsReportedButNotPrinted) {
    dir.write("map.tif", twoPixels());
    const CaptureStdout captured;
    const FullDisk full(8);
    EXPECT_EQ(swapChannels(path().c_str(), 2), -101.0f);
    EXPECT_EQ(captured.text(), "");
}

TEST_F(SwapChannels, ATruncatedMapNeverGrows) {
    const ByteList whole = twoPixels();
    for (std::size_t length = 0; length <= whole.size(); ++length) {
        swap(firstBytes(whole, length), 2);
        EXPECT_EQ(readBytes(path()).size(), length);
    }
}

}  // namespace
