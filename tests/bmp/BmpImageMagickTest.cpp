// ImageMagick writes the inputs, reads the outputs and does the same work in its own way.

#include <gtest/gtest.h>

#include <cstdlib>

#include "bmp/BmpOps.h"
#include "support/BmpFile.h"
#include "tiff/TiffOps.h"

namespace {

class BmpImageMagick : public testing::Test {
protected:
    // Runs ImageMagick in the test's folder. BMP3 is its name for headers of 54 bytes.
    void convert(const std::string& arguments) const {
        const std::string command = "cd '" + dir_.path() + "' && convert " + arguments;
        ASSERT_EQ(std::system(command.c_str()), 0) << command;
    }

    // The picture as ImageMagick sees it: its size, then all pixels, top row first.
    ByteList picture(const std::string& name) const {
        convert(name + " -depth 8 ppm:picture.ppm");
        return readBytes(dir_.path("picture.ppm"));
    }

    std::string path(const std::string& name) const { return dir_.path(name); }

    const TempDir dir_;
};

TEST_F(BmpImageMagick, AgreesOnEverySwap) {
    const struct {
        std::int32_t mode;
        const char* channels;
    } rows[] = {{1, "1,2"}, {2, "0,2"}, {3, "0,1"}};  // red 0, green 1, blue 2
    for (const auto& row : rows) {
        convert("-seed 7 -size 37x23 plasma:red-blue -type truecolor BMP3:map.bmp");
        convert("map.bmp -separate -swap " + std::string(row.channels) + " -combine peer.png");
        EXPECT_NE(picture("map.bmp"), picture("peer.png")) << row.mode;
        EXPECT_EQ(swapChannelsBMP(path("map.bmp").c_str(), row.mode), 0.0f);
        EXPECT_EQ(picture("map.bmp"), picture("peer.png")) << row.mode;
    }
}

TEST_F(BmpImageMagick, AgreesOnACrop) {
    convert("-seed 7 -size 37x23 plasma:red-blue -type truecolor BMP3:map.bmp");
    convert("map.bmp -crop 17x20+5+2 +repage peer.png");
    EXPECT_EQ(cropBMP(path("map.bmp").c_str(), path("band.bmp").c_str(), 15, 17), 0.0f);
    EXPECT_EQ(picture("band.bmp"), picture("peer.png"));
}

// Sampled from the bottom row up, near the start of each 3 x 3 pixels: by default ImageMagick takes
// those in the middle.
TEST_F(BmpImageMagick, AgreesOnAThumbnail) {
    convert("-seed 7 -size 150x90 plasma:red-blue -type truecolor BMP3:map.bmp");
    convert("map.bmp -flip -define sample:offset=1 -sample 50x30! -flip peer.png");
    EXPECT_EQ(createBMPthumb(path("map.bmp").c_str(), 50), 0.0f);
    EXPECT_EQ(picture("map.bmp"), picture("peer.png"));
}

// Three tiles on grey: ImageMagick draws each by itself, and all of them in one picture.
TEST_F(BmpImageMagick, AgreesOnAMapOfThreeTiles) {
    const std::string grey = "-size 61x40 xc:'#808080' +antialias ";
    const std::string tiles[] = {"-fill '#ff0000' -draw 'rectangle 0,0 29,19' ",
                                 "-fill '#00ff01' -draw 'circle 45,10 45,4' ",
                                 "-fill '#808081' -draw 'rectangle 30,20 60,39' "};
    convert(grey + tiles[0] + tiles[1] + tiles[2] + "peer.png");
    convert(grey + tiles[0] + "-type truecolor BMP3:map.bmp");
    for (const std::string& tile : {tiles[1], tiles[2]}) {
        convert(grey + tile + "-type truecolor BMP3:tile.bmp");
        EXPECT_EQ(mergeBMP(path("tile.bmp").c_str(), path("map.bmp").c_str()), 0.0f);
    }
    EXPECT_EQ(picture("map.bmp"), picture("peer.png"));
}

// The background is the top left pixel in one format and the bottom left one in the other; here
// they are equal. A TIFF this small has its directory where it is looked for.
TEST_F(BmpImageMagick, MergesTheSamePixelsAsTiff) {
    const std::string map = "-size 16x12 xc:'#808080' -fill '#ff0102' -draw 'rectangle 2,2 8,6' ";
    const std::string tile = "-size 16x12 xc:'#808080' -fill '#0304fe' -draw 'rectangle 5,4 12,9' ";
    const std::string tiff = "-type truecolor -depth 8 -alpha off -compress none -endian LSB ";
    convert(map + "-type truecolor BMP3:map.bmp");
    convert(tile + "-type truecolor BMP3:tile.bmp");
    convert(map + tiff + "map.tif");
    convert(tile + tiff + "tile.tif");
    const ByteList before = picture("map.tif");

    EXPECT_EQ(mergeBMP(path("tile.bmp").c_str(), path("map.bmp").c_str()), 0.0f);
    EXPECT_EQ(mergeTiff(path("tile.tif").c_str(), path("map.tif").c_str()), 0.0f);
    EXPECT_EQ(picture("map.bmp"), picture("map.tif"));
    EXPECT_NE(picture("map.bmp"), before);
}

}  // namespace
