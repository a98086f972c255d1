// How the exports hand their arguments to the BMP operations.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>

#include "export/Quillon.h"
#include "support/BmpFile.h"

namespace {

using testing::ElementsAre;

float call(ExportFunction* function, const std::string& text, double value,
           std::string buffer1 = {}) {
    return function(text.c_str(), value, buffer1.data(), 0, nullptr, 0, nullptr);
}

TEST(BmpExports, MergeTakesTheSourceThenTheTarget) {
    const TempDir dir;
    const std::string tile = dir.write("tile.bmp", BmpFile(2, 1).pixels({9, 9, 9, 1, 2, 3}));
    const std::string map = dir.write("map.bmp", BmpFile(2, 1).plain(9, 9, 9));
    EXPECT_EQ(call(mergeMapsBMP, tile, 0.0, map), 0.0f);
    EXPECT_THAT(bmpPixelsOf(map), ElementsAre(9, 9, 9, 1, 2, 3));
    EXPECT_EQ(call(mergeMapsBMP, tile, 0.0, dir.path("none")), -1760.0f);
    EXPECT_EQ(call(mergeMapsBMP, dir.path("none"), 0.0, map), -1770.0f);
}

TEST(BmpExports, SwapTruncatesItsMode) {
    const TempDir dir;
    const std::string map = dir.write("map.bmp", BmpFile(1, 1).pixels({1, 2, 3}));
    EXPECT_EQ(call(swapRGBBMP, map, 0.5), 0.0f);  // mode 0
    EXPECT_THAT(bmpPixelsOf(map), ElementsAre(1, 2, 3));
    EXPECT_EQ(call(swapRGBBMP, map, 3.9), 0.0f);
    EXPECT_THAT(bmpPixelsOf(map), ElementsAre(1, 3, 2));
    for (const double value : {0.0, 4.0, -1.0, double{NAN}})
        EXPECT_EQ(call(swapRGBBMP, map, value), -9.0f) << value;
    EXPECT_THAT(bmpPixelsOf(map), ElementsAre(1, 3, 2));
}

TEST(BmpExports, ThumbnailChecksNothingItself) {
    const TempDir dir;
    const std::string map = dir.write("map.bmp", BmpFile(4, 4));
    EXPECT_EQ(CreateThumbnailBMP(nullptr, 2.0, nullptr, 0, nullptr, 0, nullptr), -1.0f);
    EXPECT_EQ(CreateThumbnailBMP(nullptr, 0.0, nullptr, 0, nullptr, 0, nullptr), -9.0f);
    for (const double value : {0.9, -0.9, -5.0, -1e300, double{NAN}})
        EXPECT_EQ(call(CreateThumbnailBMP, map, value), -9.0f) << value;
    EXPECT_EQ(call(CreateThumbnailBMP, map, 1e300), 0.0f);  // larger than the image
    EXPECT_EQ(readBytes(map), ByteList(BmpFile(4, 4)));
    EXPECT_EQ(call(CreateThumbnailBMP, map, 2.9), 0.0f);
    EXPECT_THAT(bmpPixelsOf(map), ElementsAre(1, 2, 3, 7, 8, 9, 25, 26, 27, 31, 32, 33));
}

}  // namespace
