// Maps in every format and with every extra, as libtiff and ImageMagick read them.

#include <gmock/gmock.h>

#include "host/ExportedQuads.h"
#include "host/MagickPicture.h"

namespace {

using ::testing::ElementsAre;
using ::testing::EndsWith;
using ::testing::HasSubstr;

using Format = ExportedQuads;

// Each row: a format, the file it leaves, the export it calls and the file's size. Cells are of 8 x 8
// pixels; each quad covers the middle 4 x 4 of its cell.
TEST_F(Format, EachIsMergedByItsOwnExport) {
    const struct {
        const char* format;
        const char* file;
        const char* merge;
        const char* size;
    } kCases[] = {
        {"tiff", "two_normal.tif", "mergeMapsTIF", "608"},
        {"psd", "two_normal.psd", "mergeMapsPSD", "424"},
        {"bmp", "two_normal.bmp", "mergeMapsBMP", "438"},
    };
    for (const auto& row : kCases) {
        const Ended ended = succeed({"--format", row.format});
        EXPECT_THAT(ended.out, HasSubstr(std::string("\n") + row.merge + "            0  "));
        EXPECT_THAT(ended.out,
                    EndsWith("\n\n" + out + '/' + row.file + "  " + row.size + " bytes\n"));
        const MagickPicture picture(dir, out + '/' + row.file, 16);
        ASSERT_EQ(picture.samples.size(), 3u * 16 * 8);
        for (std::size_t i = 0; i < 16 * 8; ++i) {
            const std::size_t x = i % 16;
            const std::size_t y = i / 16;
            const bool inQuad = x % 8 >= 2 && x % 8 < 6 && y >= 2 && y < 6;
            const Rgb faces = x < 8 ? kFacesZ : kFacesX;
            EXPECT_EQ(picture.at(x, y), inQuad ? faces : kBackground) << x << ' ' << y;
        }
    }
    EXPECT_THAT(namesIn(out), ElementsAre("two_normal.bmp", "two_normal.psd", "two_normal.tif"));
}

// 19 tiles in a sheet of 410 columns, whose rows take padding in a BMP.
TEST_F(Format, TheSameModelHasTheSamePixelsInEach) {
    mesh = dir.path("spider.Vemo");
    ASSERT_EQ(
        quillon({"import", "/usr/share/assimp/models/OBJ/spider.obj", mesh, "--tile-per-group"})
            .exitStatus,
        0);
    size = "410";
    for (const char* format : {"tiff", "psd", "bmp"})
        succeed({"--format", format});
    const MagickPicture tiff(dir, out + "/spider_normal.tif", 410);
    const MagickPicture psd(dir, out + "/spider_normal.psd", 410);
    const MagickPicture bmp(dir, out + "/spider_normal.bmp", 410);
    ASSERT_EQ(tiff.samples.size(), 3u * 410 * 82);
    EXPECT_TRUE(tiff.samples == psd.samples);
    EXPECT_TRUE(tiff.samples == bmp.samples);
    EXPECT_NE(std::ranges::count(tiff.samples, 0), std::ssize(tiff.samples));
}

// What becomes of (128, 128, 255) and (255, 128, 128).
TEST_F(Format, AnOrderOfChannelsIsTheSameInEach) {
    const struct {
        const char* order;
        Rgb z;
        Rgb x;
    } kCases[] = {
        {"rbg", {128, 255, 128}, {255, 128, 128}},
        {"bgr", {255, 128, 128}, {128, 128, 255}},
        {"grb", {128, 128, 255}, {128, 255, 128}},
    };
    for (const char* format : {"tiff", "psd", "bmp"}) {
        for (const auto& row : kCases) {
            succeed({"--format", format, "--order", row.order});
            const std::string extension = format == std::string("tiff") ? "tif" : format;
            const MagickPicture picture(dir, out + "/two_normal." + extension, 16);
            EXPECT_EQ(picture.at(2, 2), row.z) << format << ' ' << row.order;
            EXPECT_EQ(picture.at(13, 5), row.x) << format << ' ' << row.order;
            EXPECT_EQ(picture.at(0, 0), kBackground) << format << ' ' << row.order;
        }
    }
}

// Heights of 1/16, 9/16 and 15/16 of 65535, rounded.
TEST_F(Format, APsdHasHeightsOf16Bits) {
    succeed({"--map", "height", "--format", "psd"});
    const ByteList samples = samplesOf(dir, out + "/two_height.psd", "gray:", "16");
    const auto level = [&](std::size_t x, std::size_t y) {
        const std::size_t first = 2 * (16 * y + x);
        return samples.at(first) * 256 + samples.at(first + 1);
    };
    EXPECT_EQ(samples.size(), 2u * 16 * 8);
    EXPECT_EQ(level(3, 5), 4096);
    EXPECT_EQ(level(10, 3), 36863);
    EXPECT_EQ(level(13, 3), 61439);
    EXPECT_EQ(level(7, 3), 0);
}

TEST_F(Format, AHeightMapIsAlsoConvertedTo16Bits) {
    const Ended ended = succeed({"--map", "height", "--bits", "16"});
    EXPECT_THAT(ended.out,
                HasSubstr("convertTIFF16           0  " + out + "/working/two_height.tif to " +
                          out + "/working/two_height_16bit.tif, layout 1\n"));
    EXPECT_THAT(ended.out, EndsWith('\n' + out + "/two_height.tif  736 bytes\n" + out +
                                    "/two_height_16bit.tif  454 bytes\n"));
    const Map map(out + "/two_height_16bit.tif");
    EXPECT_EQ(map.width, 16u);
    EXPECT_EQ(map.height, 8u);
    EXPECT_EQ(map.level16(3, 5), 4096);
    EXPECT_EQ(map.level16(10, 3), 36863);
    EXPECT_EQ(map.level16(13, 3), 61439);
    EXPECT_EQ(map.level16(7, 3), 0);
    EXPECT_FLOAT_EQ(Map(out + "/two_height.tif").height32(3, 5), 0.0625f);
}

// 256 rows and 256 columns of a height of their own, and the background: 513 levels. Python
// computes 18.49 e^(1049 / 513 - 0.00007071 x 513) in single precision.
TEST_F(Format, TheDisplacementScaleOfAFloatMapIsPrinted) {
    size = "1024";
    const Ended ended = succeed({"--map", "height"});
    EXPECT_THAT(ended.out, HasSubstr("  " + out + "/working/two_height.tif, channels 1\n"));
    EXPECT_THAT(ended.out,
                HasSubstr("\ndisplacement scale 137.79819, by the number of levels in this map"));
}

TEST_F(Format, AMapOfFewLevelsHasNoFiniteDisplacementScale) {
    EXPECT_THAT(succeed({"--map", "height"}).out,
                HasSubstr("\ndisplacement scale infinite: the map has too few levels"));
}

TEST_F(Format, ATargaFileHasTheReorderedMap) {
    const Ended ended = succeed({"--targa", "--order", "bgr"});
    EXPECT_THAT(ended.out, EndsWith('\n' + out + "/two_normal.tif  608 bytes\n" + out +
                                    "/two_normal.tga  402 bytes\n"));
    const MagickPicture targa(dir, out + "/two_normal.tga", 16);
    EXPECT_EQ(targa.at(2, 2), (Rgb{255, 128, 128}));
    EXPECT_EQ(targa.at(13, 5), (Rgb{128, 128, 255}));
    EXPECT_EQ(targa.at(6, 5), kBackground);
}

// Every fourth pixel of cells of 32, in the middle half of which the quads are.
TEST_F(Format, ABmpAlsoGetsAThumbnail) {
    size = "64";
    const Ended ended = succeed({"--format", "bmp", "--thumbnail", "16"});
    EXPECT_THAT(ended.out, EndsWith('\n' + out + "/two_normal.bmp  6198 bytes\n" + out +
                                    "/two_normal_thumbnail.bmp  438 bytes\n"));
    const MagickPicture thumbnail(dir, out + "/two_normal_thumbnail.bmp", 16);
    EXPECT_EQ(thumbnail.samples.size(), 3u * 16 * 8);
    EXPECT_EQ(thumbnail.at(2, 2), kFacesZ);
    EXPECT_EQ(thumbnail.at(5, 5), kFacesZ);
    EXPECT_EQ(thumbnail.at(10, 2), kFacesX);
    EXPECT_EQ(thumbnail.at(1, 2), kBackground);
    EXPECT_EQ(thumbnail.at(6, 5), kBackground);
    EXPECT_EQ(MagickPicture(dir, out + "/two_normal.bmp", 64).at(8, 8), kFacesZ);
}

// The library's own JPEG, as another decoder sees it: flat cells come close to their colours.
TEST_F(Format, ABmpIsAlsoSavedAsJpeg) {
    size = "64";
    EXPECT_THAT(succeed({"--format", "bmp", "--jpeg"}).out, HasSubstr("quality 50\n"));
    EXPECT_THAT(succeed({"--format", "bmp", "--jpeg", "0"}).out,
                HasSubstr("saveAsJpeg              0  " + out + "/working/two_normal.bmp to " +
                          out + "/working/two_normal.jpg, quality 0\n"));
    const MagickPicture jpeg(dir, out + "/two_normal.jpg", 64);
    ASSERT_EQ(jpeg.samples.size(), 3u * 64 * 32);
    const Rgb pixel = jpeg.at(16, 16);
    for (std::size_t channel = 0; channel < 3; ++channel)
        EXPECT_NEAR(pixel[channel], kFacesZ[channel], 3) << channel;
}

TEST_F(Format, ASheetTooThinForItsThumbnailIsReported) {
    dir.write("two.Vemo", twoQuads(kMiddleOf1001, {40.25f, 0.25f, 1.75f, 0.25f,  //
                                                   1.75f, 0.75f, 1.25f, 0.75f}));
    size = "64";
    EXPECT_THAT(fail({"--format", "bmp", "--thumbnail", "16"}),
                EndsWith("a sheet of 41 x 1 pixels is too thin for that thumbnail; raise "
                         "--thumbnail to 42\n"));
}

// Each row: a file, and the options with which an export writes it.
TEST_F(Format, AFolderInPlaceOfAFileStays) {
    const std::vector<std::pair<std::string, Words>> kCases = {
        {"/two_normal.tif", {}},
        {"/two_normal.tga", {"--targa"}},
        {"/two_height_16bit.tif", {"--map", "height", "--bits", "16"}},
        {"/two_normal_thumbnail.bmp", {"--format", "bmp", "--thumbnail", "16"}},
    };
    for (const auto& [file, options] : kCases) {
        dir.makeFolder("maps" + file);
        EXPECT_EQ(fail(options), "quillon: " + out + file +
                                     " exists and is not a file; move it or choose another "
                                     "folder\n");
        EXPECT_TRUE(std::filesystem::remove(out + file));
    }
}

}  // namespace
