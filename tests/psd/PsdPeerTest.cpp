// ImageMagick writes the files and reads the results. It also writes its picture as a layer, so the
// image data starts further back than in the host's files.

#include <gmock/gmock.h>

#include <cstdlib>

#include "psd/PsdOps.h"
#include "support/PsdFile.h"

namespace {

using testing::ElementsAre;

const std::string kRgb = "-size 2x2 -depth 8 rgb:";
const std::string kGrey16 = "-size 2x2 -depth 16 -endian MSB gray:";

void convert(const std::string& arguments) {
    ASSERT_EQ(std::system(("convert " + arguments).c_str()), 0) << arguments;
}

// A PSD file of 2 x 2 pixels that ImageMagick writes from raw ones.
std::string peerFile(const TempDir& dir, const std::string& name, const std::string& kind,
                     const ByteList& pixels) {
    const std::string raw = dir.write(name + ".raw", pixels);
    convert(kind + raw + " -compress none psd:" + dir.path(name));
    return dir.path(name);
}

// The pixels of the flat picture of a file, as ImageMagick reads it.
ByteList peerPixels(const TempDir& dir, const std::string& path, const std::string& kind) {
    const std::string raw = dir.path("read.raw");
    convert("'psd:" + path + "[0]' " + kind + raw);
    return readBytes(raw);
}

const ByteList kPicture = {9, 9, 9, 1, 2, 3, 4, 5, 6, 9, 9, 9};

TEST(PsdPeer, MergedRgbMapsAreRead) {
    const TempDir dir;
    const std::string tile = peerFile(dir, "tile.psd", kRgb, kPicture);
    const std::string map = peerFile(dir, "map.psd", kRgb, {9, 9, 9, 9, 9, 9, 9, 9, 9, 7, 8, 0});
    EXPECT_EQ(mergePSD(tile.c_str(), map.c_str()), 0.0f);
    EXPECT_THAT(peerPixels(dir, map, "-depth 8 rgb:"),
                ElementsAre(9, 9, 9, 1, 2, 3, 4, 5, 6, 7, 8, 0));
}

TEST(PsdPeer, Merged16BitGreyMapsAreRead) {
    const TempDir dir;
    const std::string tile = peerFile(dir, "tile.psd", kGrey16, {9, 9, 1, 2, 9, 9, 3, 4});
    const std::string map = peerFile(dir, "map.psd", kGrey16, {9, 9, 9, 9, 5, 6, 9, 9});
    EXPECT_EQ(mergePSD(tile.c_str(), map.c_str()), 0.0f);
    EXPECT_THAT(peerPixels(dir, map, "-depth 16 -endian MSB gray:"),
                ElementsAre(9, 9, 1, 2, 5, 6, 3, 4));
}

TEST(PsdPeer, SwappedChannelsAndReplacedColoursAreRead) {
    const TempDir dir;
    const std::string map = peerFile(dir, "map.psd", kRgb, kPicture);
    EXPECT_EQ(swapChannelsPSD(map.c_str(), 2), 0.0f);
    EXPECT_THAT(peerPixels(dir, map, "-depth 8 rgb:"),
                ElementsAre(9, 9, 9, 3, 1, 2, 6, 4, 5, 9, 9, 9));
    EXPECT_EQ(convertPSD(map.c_str(), 592137.0f, 16711680.0f, false), 0.0f);
    EXPECT_THAT(peerPixels(dir, map, "-depth 8 rgb:"),
                ElementsAre(255, 0, 0, 3, 1, 2, 6, 4, 5, 255, 0, 0));
}

TEST(PsdPeer, GreyMapsOfTheHostAreRead) {
    const TempDir dir;
    const std::string map =
        dir.write("map.psd", PsdFile(2, 1).pixels({{10, 20, 30}, {255, 255, 255}}));
    EXPECT_EQ(GrayscalePSD(map.c_str(), map.c_str(), 0), 0.0f);
    EXPECT_THAT(peerPixels(dir, map, "-depth 8 gray:"), ElementsAre(20, 255));
}

TEST(PsdPeer, ThumbnailsOfTheHostAreRead) {
    const TempDir dir;
    const std::string map = dir.write(
        "map.psd", PsdFile(4, 2).planes({1,  2,  3,  4,  5,  6,  7,  8,  11, 12, 13, 14,
                                         15, 16, 17, 18, 21, 22, 23, 24, 25, 26, 27, 28}));
    EXPECT_EQ(createThumb(map.c_str(), 2), 0.0f);
    EXPECT_THAT(peerPixels(dir, map, "-depth 8 rgb:"),
                ElementsAre(1, 11, 21, 3, 13, 23, 0, 0, 0, 0, 0, 0));
}

}  // namespace
