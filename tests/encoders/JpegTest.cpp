#include "encoders/JpegOps.h"

#include <gmock/gmock.h>
#include <sys/stat.h>

#include <algorithm>
#include <cmath>
#include <filesystem>

#include "export/Quillon.h"
#include "support/BmpFile.h"
#include "support/Faults.h"
#include "support/Pictures.h"

namespace {

using testing::ElementsAre;

class Jpeg : public testing::Test {
protected:
    float save(const ByteList& bmp, int scale = 50) const {
        return convertToJPEG(dir.write("map.bmp", bmp).c_str(), target().c_str(), scale);
    }
    // The file that a BMP becomes.
    ByteList saved(const ByteList& bmp, int scale = 50) const {
        EXPECT_EQ(save(bmp, scale), 0.0f);
        return readBytes(target());
    }
    std::string target() const { return dir.path("map.jpg"); }

    // The first `length` bytes of a BMP become the picture with zeros for all that is missing.
    void expectZerosFrom(std::size_t length, const ByteList& bmp) const {
        ByteList cut(bmp.begin(), bmp.begin() + static_cast<std::ptrdiff_t>(length));
        const ByteList file = saved(cut);
        cut.resize(bmp.size());
        EXPECT_TRUE(file == saved(cut)) << length;
    }

    const TempDir dir;
};

// Where the segments start: every file has the same ones.
constexpr std::ptrdiff_t kDqt = 38;
constexpr std::ptrdiff_t kSof = 172;
constexpr std::ptrdiff_t kDht = 191;
constexpr std::ptrdiff_t kSos = 611;
constexpr std::ptrdiff_t kScan = 625;

ByteList part(const ByteList& file, std::ptrdiff_t from, std::ptrdiff_t to) {
    return {file.begin() + from, file.begin() + to};
}

// The coded blocks, without the marker at the end.
ByteList scanOf(const ByteList& file) {
    EXPECT_EQ(part(file, std::ssize(file) - 2, std::ssize(file)), (ByteList{0xFF, 0xD9}));
    return part(file, kScan, std::ssize(file) - 2);
}

ByteList grey(std::int32_t width, std::int32_t height) {
    return BmpFile(width, height).plain(128, 128, 128);
}

ByteList noise(std::int32_t width, std::int32_t height) {
    return BmpFile(width, height)
        .pixels(
            noisePicture(static_cast<std::uint32_t>(width), static_cast<std::uint32_t>(height)));
}

TEST_F(Jpeg, StartsWithItsHeaderAndAComment) {
    const ByteList file = saved(grey(8, 8));
    EXPECT_EQ(
        part(file, 0, kDqt),
        (ByteList{0xFF, 0xD8,                                            //
                  0xFF, 0xE0, 0x00, 0x10, 'J',  'F',  'I',  'F',  0x00,  //
                  0x01, 0x01, 0x00, 0x00, 0x01, 0x00, 0x01, 0x00, 0x00,  //
                  0xFF, 0xFE, 0x00, 0x10,                                //
                  'Q',  'u',  'i',  'l',  'l',  'o',  'n',  ' ',  'v',  '1', '.', '0', '.', '.'}));
}

TEST_F(Jpeg, TheFrameHeaderHasTheRealSize) {
    const ByteList file = saved(noise(300, 513));
    EXPECT_EQ(part(file, kSof, kDht),
              (ByteList{0xFF, 0xC0, 0x00, 0x11, 0x08, 0x02, 0x01, 0x01, 0x2C, 0x03,  //
                        0x01, 0x11, 0x00, 0x02, 0x11, 0x01, 0x03, 0x11, 0x01}));
}

TEST_F(Jpeg, TheScanHeaderNamesThreeComponents) {
    const ByteList file = saved(grey(8, 8));
    EXPECT_EQ(part(file, kSos, kScan), (ByteList{0xFF, 0xDA, 0x00, 0x0C, 0x03, 0x01, 0x00, 0x02,
                                                 0x11, 0x03, 0x11, 0x00, 0x3F, 0x00}));
}

// The standard's tables along the zig-zag. JpegPeerTest has all other factors, and the Huffman
// tables.
TEST_F(Jpeg, AFactorOf100TakesTheStandardsQuantisation) {
    EXPECT_EQ(part(saved(grey(8, 8), 100), kDqt, kSof),
              (ByteList{
                  0xFF, 0xDB, 0x00, 0x84, 0x00,                                         //
                  16,   11,   12,   14,   12,   10,  16,  14,  13, 14,  18,  17,  16,   //
                  19,   24,   40,   26,   24,   22,  22,  24,  49, 35,  37,  29,  40,   //
                  58,   51,   61,   60,   57,   51,  56,  55,  64, 72,  92,  78,  64,   //
                  68,   87,   69,   55,   56,   80,  109, 81,  87, 95,  98,  103, 104,  //
                  103,  62,   77,   113,  121,  112, 100, 120, 92, 101, 103, 99,        //
                  0x01,                                                                 //
                  17,   18,   18,   24,   21,   24,  47,  26,  26, 47,  99,  66,  56,   //
                  66,   99,   99,   99,   99,   99,  99,  99,  99, 99,  99,  99,  99,   //
                  99,   99,   99,   99,   99,   99,  99,  99,  99, 99,  99,  99,  99,   //
                  99,   99,   99,   99,   99,   99,  99,  99,  99, 99,  99,  99,  99,   //
                  99,   99,   99,   99,   99,   99,  99,  99,  99, 99,  99,  99,        //
              }));
}

TEST_F(Jpeg, OnlyTheLow8BitsOfAFactorCount) {
    const ByteList bmp = noise(9, 9);
    EXPECT_EQ(saved(bmp, 256), saved(bmp, 0));
    EXPECT_EQ(saved(bmp, 300), saved(bmp, 44));
    EXPECT_EQ(saved(bmp, -206), saved(bmp, 50));
}

// Middle grey is 0 in all components: 00 1010, 00 00, 00 00, then ones.
TEST_F(Jpeg, AGreyPixelIsABlockOfNothing) {
    const ByteList file = saved(grey(1, 1));
    EXPECT_EQ(part(file, kSof + 5, kSof + 9), (ByteList{0, 1, 0, 1}));
    EXPECT_THAT(scanOf(file), ElementsAre(0x28, 0x03));
}

// Luminance -128, quantised by 8: -1024 / 8 = -128, category 8 (111110), bits 01111111.
TEST_F(Jpeg, ABlackPixelIsABlockWithOnlyADcCoefficient) {
    EXPECT_THAT(scanOf(saved(BmpFile(1, 1).plain(0, 0, 0))), ElementsAre(0xF9, 0xFE, 0x80, 0x3F));
}

// Pure blue: luminance 29 - 128 = -99: -99 (792 / 8), category 7 (11110), 0011100; Cb 127: 1016 / 9
// rounds to 113, category 7 (1111110), 1110001; Cr -21: -168 / 9 rounds to -19, category 5
// (11110), 01100.
TEST_F(Jpeg, ComponentsAreCodedInTurn) {
    // 11110 0011100 1010 | 1111110 1110001 00 | 11110 01100 00 | 1
    EXPECT_THAT(scanOf(saved(BmpFile(1, 1).plain(255, 0, 0))),
                ElementsAre(0xF1, 0xCA, 0xFD, 0xC4, 0xF3, 0x0F));
}

// At a factor of 100 a DC coefficient is the luminance divided by 2: 1/2 becomes 1 (010, 1), -1/2
// becomes 0 (00), 3/2 becomes 2 (011, 10) and -3/2 becomes -1 (010, 0).
TEST_F(Jpeg, HalvesAreRoundedUpward) {
    const auto scanOfGrey = [&](std::uint8_t level) {
        return scanOf(saved(BmpFile(1, 1).plain(level, level, level), 100));
    };
    EXPECT_THAT(scanOfGrey(129), ElementsAre(0x5A, 0x00, 0xFF, 0x00));
    EXPECT_THAT(scanOfGrey(127), ElementsAre(0x28, 0x03));
    EXPECT_THAT(scanOfGrey(131), ElementsAre(0x75, 0x00, 0x7F));
    EXPECT_THAT(scanOfGrey(125), ElementsAre(0x4A, 0x00, 0xFF, 0x00));
}

// Luminance from -70 to 70 along each row. By the transform's definition the row of coefficients is
// 0, -364.43, 0, -38.10, 0, -11.36, 0, -2.87, quantised by 28, 41, 102 and 156 to -13, -1, 0 and 0.
TEST_F(Jpeg, EachCoefficientIsCodedWithTheZerosBeforeIt) {
    BmpFile rising(8, 8);
    for (std::int32_t row = 0; row < 8; ++row) {
        for (std::int32_t column = 0; column < 8; ++column) {
            const auto level = static_cast<std::uint8_t>(58 + 20 * column);
            rising.pixel(column, row, level, level, level);
        }
    }
    // 00, category 4 after no zeros: 1011 0010, category 1 after four: 111011 0, 1010, 00 00, 00 00
    EXPECT_THAT(scanOf(saved(rising, 255)), ElementsAre(0x2C, 0xBB, 0x50, 0x07));
}

// Unquantised, a black block has -1024 and the white one after it 1016, which is 2040 more: both of
// category 11 (111111110), with the bits 01111111111 and 11111111000.
TEST_F(Jpeg, DcCoefficientsDifferByUpTo11Bits) {
    BmpFile bmp = BmpFile(16, 8).plain(0, 0, 0);
    for (std::int32_t row = 0; row < 8; ++row) {
        for (std::int32_t column = 8; column < 16; ++column)
            bmp.pixel(column, row, 255, 255, 255);
    }
    EXPECT_THAT(scanOf(saved(bmp, 0)), ElementsAre(0xFF, 0x00, 0x3F, 0xFA, 0x00,  //
                                                   0xFF, 0x00, 0x7F, 0x8A, 0x00,  //
                                                   0xFF, 0x00));
}

TEST_F(Jpeg, EqualBlocksDifferByNothing) {
    EXPECT_THAT(scanOf(saved(grey(24, 8))), ElementsAre(0x28, 0x00, 0xA0, 0x02, 0x80, 0x3F));
}

TEST_F(Jpeg, CodesThatEndOnAByteAreFollowedByAByteOfOnes) {
    EXPECT_THAT(scanOf(saved(grey(32, 8))),
                ElementsAre(0x28, 0x00, 0xA0, 0x02, 0x80, 0x0A, 0x00, 0xFF, 0x00));
}

TEST_F(Jpeg, TheLastColumnAndTheBottomRowAreRepeated) {
    const ByteList small = noisePicture(13, 9);
    ByteList large;
    for (std::size_t row = 0; row < 16; ++row) {
        const std::size_t from = row < 7 ? 0 : row - 7;  // the file starts with the bottom row
        for (std::size_t column = 0; column < 16; ++column) {
            const std::size_t pixel = 3 * (13 * from + std::min<std::size_t>(column, 12));
            large.insert(large.end(), &small[pixel], &small[pixel] + 3);
        }
    }
    const ByteList cut = saved(BmpFile(13, 9).pixels(small));
    EXPECT_EQ(part(cut, kSof + 5, kSof + 9), (ByteList{0, 9, 0, 13}));
    EXPECT_EQ(scanOf(cut), scanOf(saved(BmpFile(16, 16).pixels(large))));
}

TEST_F(Jpeg, PaddingOfRowsIsLeftOut) {
    for (const std::int32_t width : {1, 2, 3, 4, 5}) {
        const BmpFile bmp(width, 9);
        EXPECT_EQ(saved(BmpFile(bmp).padding(0)), saved(BmpFile(bmp).padding(0xEE))) << width;
    }
}

TEST_F(Jpeg, PixelsAreReadFromByte54WhateverTheHeaderSays) {
    // The gap is what is taken for the picture.
    EXPECT_THAT(scanOf(saved(BmpFile(1, 1).plain(0, 0, 0).pixelOffset(58, 128))),
                ElementsAre(0x28, 0x03));
    EXPECT_THAT(scanOf(saved(BmpFile(1, 1).plain(128, 128, 128).claimPixelOffset(7))),
                ElementsAre(0x28, 0x03));
}

TEST_F(Jpeg, ATopDownImageIsATallOneThatEndsUpsideDown) {
    const ByteList rows = noisePicture(8, 8);
    ByteList tall(std::size_t{3} * 8 * 65528);  // the bottom row first: 8 rows, then black
    std::copy(rows.begin(), rows.end(), tall.begin());
    EXPECT_EQ(saved(BmpFile(8, 8).pixels(rows).claimSize(8, -8)),
              saved(BmpFile(8, 65528).pixels(tall)));
}

TEST_F(Jpeg, SizesKeepTheirLow16Bits) {
    const BmpFile bmp(5, 3);
    EXPECT_EQ(saved(BmpFile(bmp).claimSize(0x10005, 0x7FFF0003)), saved(bmp));
}

TEST_F(Jpeg, BytesThatTheFileDoesNotHaveAreZero) {
    const ByteList bmp = noise(13, 9);
    for (std::size_t length = 54; length <= bmp.size(); ++length)
        expectZerosFrom(length, bmp);
}

TEST_F(Jpeg, AFileShorterThanItsHeadersIsRefused) {
    for (std::size_t length = 0; length < 54; ++length)
        EXPECT_EQ(save(BmpFile(13, 9).cut(length)), 4.0f) << length;
    EXPECT_FALSE(dir.has("map.jpg"));
}

// More than one band of rows (256 KiB of pixels), of which the topmost ones are missing.
TEST_F(Jpeg, MissingBandsAreBlack) {
    const ByteList bmp = noise(600, 1000);
    for (const std::size_t rows : {0u, 1u, 8u, 500u, 999u})
        expectZerosFrom(54 + rows * 1800, bmp);
}

// Only the left end of a row is flipped, so the upper rows of such a picture are partly those that
// the file has first.
TEST_F(Jpeg, AWidePictureThatIsCutShortHasZerosForTheRest) {
    expectZerosFrom(54 + 5 * 66000, noise(22000, 24));
}

TEST_F(Jpeg, TheLargestPictureOfNothingIsBlack) {
    const std::string in = dir.write("map.bmp", BmpFile(1, 1).claimSize(65528, 65528).cut(54));
    EXPECT_EQ(convertToJPEG(in.c_str(), "/dev/null", 50), 0.0f);
}

TEST_F(Jpeg, AConversionLeavesNothingToTheNext) {
    const ByteList bmp = BmpFile(40, 30).pixels(gradientPicture(40, 30)).cut(700);
    const ByteList file = saved(bmp);
    saved(noise(64, 64), 0);
    save(BmpFile(1, 1).bitsPerPixel(8));
    EXPECT_EQ(saved(bmp), file);
}

TEST_F(Jpeg, OtherFilesAreRefusedAndNoOutputIsCreated) {
    EXPECT_EQ(convertToJPEG(dir.path("none").c_str(), target().c_str(), 50), 3.0f);
    EXPECT_EQ(convertToJPEG(dir.path().c_str(), target().c_str(), 50), 3.0f);
    EXPECT_EQ(save(BmpFile(2, 2).signature('b', 'M')), 5.0f);
    EXPECT_EQ(save(BmpFile(2, 2).signature('B', 'A')), 5.0f);
    for (const unsigned bits : {0u, 1u, 8u, 16u, 32u, 280u})
        EXPECT_EQ(save(BmpFile(2, 2).bitsPerPixel(static_cast<std::uint16_t>(bits))), 5.0f) << bits;
    EXPECT_FALSE(dir.has("map.jpg"));
}

TEST_F(Jpeg, SizesThatNoBlockFitsAreRefusedAndAnOldOutputStays) {
    dir.write("map.jpg", "old");
    for (const std::int32_t side : {0, 65529, 65535, 65536, -1, -7, -65536}) {
        EXPECT_EQ(save(BmpFile(2, 2).claimSize(side, 2)), -9.0f) << side;
        EXPECT_EQ(save(BmpFile(2, 2).claimSize(2, side)), -9.0f) << side;
    }
    EXPECT_EQ(readBytes(target()), (ByteList{'o', 'l', 'd'}));
}

TEST_F(Jpeg, AnOutputThatCannotBeCreatedIsReported) {
    const std::string in = dir.write("map.bmp", grey(8, 8));
    EXPECT_EQ(convertToJPEG(in.c_str(), dir.path("no/map.jpg").c_str(), 50), -1.0f);
    EXPECT_EQ(convertToJPEG(in.c_str(), dir.path().c_str(), 50), -1.0f);
}

TEST_F(Jpeg, AFolderThatMayNotBeWrittenGetsNoOutput) {
    const std::string in = dir.write("map.bmp", grey(8, 8));
    const std::string folder = dir.makeFolder("locked");
    ASSERT_EQ(::chmod(dir.path().c_str(), 0755), 0);
    ASSERT_EQ(::chmod(folder.c_str(), 0555), 0);
    {
        const WithoutRoot ordinaryUser;
        EXPECT_EQ(convertToJPEG(in.c_str(), dir.path("locked/map.jpg").c_str(), 50), -1.0f);
    }
    EXPECT_FALSE(dir.has("locked/map.jpg"));
}

// A path of exactly this length.
std::string pathOf(std::size_t length, const TempDir& dir, const std::string& name) {
    std::string path = dir.path() + '/';
    while (path.size() + name.size() + 2 <= length)
        path += "./";
    if (path.size() + name.size() < length) path += '/';
    return path + name;
}

TEST_F(Jpeg, PathsOf512BytesAreRefusedAndNeverCut) {
    dir.write("map.bmp", grey(8, 8));
    const std::string in = pathOf(512, dir, "map.bmp");
    ASSERT_EQ(in.size(), 512u);
    EXPECT_EQ(convertToJPEG(in.c_str(), target().c_str(), 50), -1.0f);
    EXPECT_EQ(convertToJPEG(dir.path("map.bmp").c_str(), pathOf(512, dir, "map.jpg").c_str(), 50),
              -1.0f);
    EXPECT_THAT(dir.names(), ElementsAre("map.bmp"));
    EXPECT_EQ(
        convertToJPEG(pathOf(511, dir, "map.bmp").c_str(), pathOf(511, dir, "map.jpg").c_str(), 50),
        0.0f);
    EXPECT_THAT(dir.names(), ElementsAre("map.bmp", "map.jpg"));
}

TEST_F(Jpeg, AnImageCanBecomeItsOwnJpeg) {
    const ByteList bmp = noise(700, 300);
    const ByteList file = saved(bmp);
    const std::string in = dir.write("own.bmp", bmp);
    std::filesystem::create_symlink(in, dir.path("link.bmp"));
    EXPECT_EQ(convertToJPEG(in.c_str(), dir.path("link.bmp").c_str(), 50), 0.0f);
    EXPECT_EQ(readBytes(in), file);
}

TEST_F(Jpeg, AFullDiskIsReported) {
    const std::string in = dir.write("map.bmp", noise(700, 300));  // a JPEG of several pieces
    const FullDisk full(1000);
    EXPECT_EQ(convertToJPEG(in.c_str(), target().c_str(), 0), -1.0f);
    EXPECT_EQ(readBytes(target()).size(), 1000u);
}

// The export passes its number on as the factor, 50 for one beyond 0 to 100.
TEST_F(Jpeg, TheExportTakesFactorsFrom0To100) {
    const ByteList bmp = noise(9, 9);
    const std::string in = dir.write("map.bmp", bmp);
    std::string out = dir.path("export.jpg");
    const struct {
        double value;
        int factor;
    } kCases[] = {{0.0, 0},    {0.9, 0},     {7.9, 7},         {99.9, 99}, {100.0, 100},
                  {100.1, 50}, {101.0, 50},  {-1.0, 50},       {-0.1, 50}, {-0.0, 0},
                  {1e300, 50}, {-1e300, 50}, {double{NAN}, 50}};
    for (const auto& row : kCases) {
        EXPECT_EQ(saveAsJpeg(in.c_str(), row.value, out.data(), 0, nullptr, 0, nullptr), 0.0f);
        EXPECT_EQ(readBytes(out), saved(bmp, row.factor)) << row.value;
    }
}

}  // namespace
