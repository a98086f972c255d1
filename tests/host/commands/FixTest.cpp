// Maps of every layout rewritten as the kind that the exports take. tests/peers/fix_peers.py has
// files of other programs.

#include <gmock/gmock.h>
#include <tiffio.h>

#include "files/MapFix.h"
#include "host/Quillon.h"
#include "support/Append.h"
#include "support/BmpFile.h"
#include "support/PsdFile.h"
#include "terminal/Failure.h"

namespace {

using ::testing::ElementsAre;
using ::testing::EndsWith;
using ::testing::HasSubstr;

// A TIFF that libtiff writes; by default 3 x 2 pixels, the directory behind them.
struct Tiff {
    const char* mode = "wl";
    std::uint32_t width = 3;
    std::uint32_t height = 2;
    std::uint16_t channels = 3;
    std::uint16_t bits = 8;
    std::uint16_t format = SAMPLEFORMAT_UINT;
    std::uint16_t photometric = PHOTOMETRIC_RGB;
    std::uint16_t compression = COMPRESSION_NONE;
    std::uint32_t rowsPerStrip = 2;
    std::uint32_t tileWidth = 0;  // tiles of 16 rows instead of strips
    bool separate = false;
    std::vector<std::uint16_t> further = {};
    std::vector<std::pair<std::uint32_t, int>> shorts = {};  // further tags
    bool twoPages = false;

    // The samples as the file's rows have them; of separate planes one plane after the other.
    std::string write(const TempDir& dir, ByteList samples) const {
        const std::string path = dir.path("in.tif");
        TIFF* file = TIFFOpen(path.c_str(), mode);
        for (int page = 0; page < (twoPages ? 2 : 1); ++page) {
            setFields(file);
            if (tileWidth > 0)
                writeTiles(file, samples);
            else
                writeRows(file, samples);
            TIFFWriteDirectory(file);
        }
        TIFFClose(file);
        return path;
    }

private:
    void setFields(TIFF* file) const {
        TIFFSetField(file, TIFFTAG_IMAGEWIDTH, width);
        TIFFSetField(file, TIFFTAG_IMAGELENGTH, height);
        TIFFSetField(file, TIFFTAG_SAMPLESPERPIXEL, channels);
        TIFFSetField(file, TIFFTAG_BITSPERSAMPLE, bits);
        TIFFSetField(file, TIFFTAG_SAMPLEFORMAT, format);
        TIFFSetField(file, TIFFTAG_PHOTOMETRIC, photometric);
        TIFFSetField(file, TIFFTAG_COMPRESSION, compression);
        TIFFSetField(file, TIFFTAG_PLANARCONFIG, separate ? 2 : 1);
        if (!further.empty())
            TIFFSetField(file, TIFFTAG_EXTRASAMPLES, further.size(), further.data());
        for (const auto& [tag, value] : shorts)
            TIFFSetField(file, tag, value);
        if (tileWidth == 0) TIFFSetField(file, TIFFTAG_ROWSPERSTRIP, rowsPerStrip);
        if (tileWidth > 0) TIFFSetField(file, TIFFTAG_TILEWIDTH, tileWidth);
        if (tileWidth > 0) TIFFSetField(file, TIFFTAG_TILELENGTH, 16);
        // Two colours, dark red and one that 8 bits cannot hold, in turns.
        std::vector<std::uint16_t> red(256), green(256, 0), blue(256, 0);
        for (std::size_t i = 0; i < 256; ++i)
            red[i] = static_cast<std::uint16_t>(i % 2 == 0 ? 0x1010 : deepColour);
        if (photometric == PHOTOMETRIC_PALETTE)
            TIFFSetField(file, TIFFTAG_COLORMAP, red.data(), green.data(), blue.data());
    }

    std::uint16_t planes() const { return separate ? channels : 1; }

    void writeRows(TIFF* file, ByteList& samples) const {
        std::size_t at = 0;
        for (std::uint16_t plane = 0; plane < planes(); ++plane) {
            for (std::uint32_t y = 0; y < height; ++y) {
                TIFFWriteScanline(file, &samples.at(at), y, plane);
                at += static_cast<std::size_t>(TIFFScanlineSize(file));
            }
        }
    }

    void writeTiles(TIFF* file, const ByteList& samples) const {
        const std::size_t pixel = (separate ? 1u : channels) * bits / 8u;
        for (std::uint16_t plane = 0; plane < planes(); ++plane) {
            for (std::uint32_t left = 0; left < width; left += tileWidth) {
                ByteList tile(static_cast<std::size_t>(TIFFTileSize(file)), 99);
                for (std::size_t y = 0; y < height; ++y) {
                    for (std::size_t x = left; x < std::min(left + tileWidth, width); ++x)
                        std::copy_n(&samples.at(((plane * height + y) * width + x) * pixel), pixel,
                                    &tile.at((y * tileWidth + x - left) * pixel));
                }
                TIFFWriteTile(file, tile.data(), left, 0, 0, plane);
            }
        }
    }

public:
    std::uint16_t deepColour = 0xFFFF;
};

ByteList counting(std::size_t count) {
    ByteList bytes(count);
    for (std::size_t i = 0; i < count; ++i)
        bytes[i] = static_cast<std::uint8_t>(i + 1);
    return bytes;
}

struct Fix : ::testing::Test {
    // Rewrites `in` as a file of the same extension; returns the lines below the first, joined by
    // "|".
    std::string changes(const std::string& in, const Words& options = {}) {
        out = dir.path("out" + in.substr(in.rfind('.')));
        const Ended ended = quillon({"fix", in, out, "--force"}, options);
        EXPECT_EQ(ended.exitStatus, 0) << ended.err;
        EXPECT_EQ(ended.err, "");
        std::string text = ended.out.substr(ended.out.find('\n') + 1);
        for (std::size_t at = 0; (at = text.find("\n  ", at)) != std::string::npos;)
            text.replace(at, 3, "|");
        return text.substr(2, text.size() - 3);
    }

    // The sentence with which `in` is refused, without its start; nothing may be written.
    std::string refusal(const std::string& in, const Words& options = {}) {
        const std::string target = dir.path("refused" + in.substr(in.rfind('.')));
        const Ended ended = quillon({"fix", in, target}, options);
        EXPECT_EQ(ended.exitStatus, 1);
        EXPECT_EQ(ended.out, "");
        EXPECT_FALSE(std::filesystem::exists(target));
        const std::string start = "quillon: " + in + ' ';
        EXPECT_EQ(ended.err.substr(0, start.size()), start);
        return ended.err.substr(start.size(), ended.err.size() - start.size() - 1);
    }

    ByteList tiffPixels() const { return readBytes(out, 224); }

    TempDir dir;
    std::string out;
};

TEST_F(Fix, ATiffOfAnyLayoutBecomesOneStripWithTheDirectoryFirst) {
    const ByteList pixels = counting(18);
    const ByteList planes = {1, 4, 7, 10, 13, 16, 2, 5, 8, 11, 14, 17, 3, 6, 9, 12, 15, 18};
    const struct {
        Tiff tiff;
        std::string changes;
    } kCases[] = {
        {{}, "directory at byte 26 -> byte 8"},
        {{.mode = "wb"}, "big-endian -> little-endian|directory at byte 26 -> byte 8"},
        {{.mode = "wl8"}, "BigTIFF -> TIFF|directory at byte 34 -> byte 8"},
        {{.compression = COMPRESSION_LZW, .shorts = {{TIFFTAG_PREDICTOR, 2}}},
         "|LZW -> not compressed"},
        {{.rowsPerStrip = 1}, "directory at byte 26 -> byte 8|2 strips -> one strip"},
        {{.tileWidth = 16}, "directory at byte 776 -> byte 8|tiles of 16 x 16 -> one strip"},
        {{.separate = true},
         "directory at byte 26 -> byte 8|3 strips -> one strip|a plane per channel -> channels "
         "interleaved"},
        {{.compression = COMPRESSION_ADOBE_DEFLATE, .tileWidth = 16, .separate = true},
         "|AdobeDeflate -> not compressed|tiles of 16 x 16 -> one "
         "strip|a plane per channel -> channels interleaved"},
    };
    for (const auto& row : kCases) {
        EXPECT_THAT(changes(row.tiff.write(dir, row.tiff.separate ? planes : pixels)),
                    EndsWith(row.changes));
        EXPECT_EQ(tiffPixels(), pixels);
        const std::string again = dir.path("again.tif");
        std::filesystem::rename(out, again);
        EXPECT_EQ(changes(again), "nothing had to change");
        EXPECT_EQ(tiffPixels(), pixels);
    }
}

// 35 pixels wide: the third tile is cut by the border. Samples of 16 bits are exchanged.
TEST_F(Fix, TilesSideBySideOfABigEndianTiff) {
    const ByteList pixels = counting(35 * 2 * 2);
    const Tiff tiff{.mode = "wb",
                    .width = 35,
                    .channels = 1,
                    .bits = 16,
                    .photometric = PHOTOMETRIC_MINISBLACK,
                    .tileWidth = 16};
    changes(tiff.write(dir, pixels));
    EXPECT_EQ(tiffPixels(), pixels);
}

// Each row: bits, format, a row of four grey samples, options, the last line, and what they become.
TEST_F(Fix, SamplesOfATiffKeepTheirValues) {
    constexpr std::uint16_t kUnsigned = SAMPLEFORMAT_UINT;
    constexpr std::uint16_t kFloat = SAMPLEFORMAT_IEEEFP;
    const std::string same = "directory at byte 24 -> byte 8";
    const struct {
        std::uint16_t bits;
        std::uint16_t format;
        ByteList samples;
        Words options;
        std::string change;
        ByteList want;
    } kCases[] = {
        {1, kUnsigned, {0x50}, {}, "1-bit integers -> 8-bit integers", {0, 255, 0, 255}},
        {2, kUnsigned, {0x1B}, {}, "2-bit integers -> 8-bit integers", {0, 85, 170, 255}},
        {4, kUnsigned, {0x01, 0xEF}, {}, "4-bit integers -> 8-bit integers", {0, 17, 238, 255}},
        {8,
         kUnsigned,
         {0, 1, 128, 255},
         {"--bits", "16"},
         "8-bit integers -> 16-bit integers",
         {0, 0, 1, 1, 128, 128, 255, 255}},
        {16, kUnsigned, {0, 0, 127, 0, 129, 0, 255, 255}, {}, "", {0, 0, 127, 0, 129, 0, 255, 255}},
        {16,
         kUnsigned,
         {0, 0, 128, 0, 129, 0, 255, 255},
         {"--bits", "8"},
         "16-bit integers -> 8-bit integers, rounded",
         {0, 0, 1, 255}},
        {16,
         kUnsigned,
         {0, 0, 0, 0, 1, 0, 255, 255},
         {"--bits", "32"},
         "16-bit integers -> 32-bit floats from 0 to 1",  // 1 / 65535 is 0x37800080
         {0, 0, 0, 0, 0, 0, 0, 0, 0x80, 0, 0x80, 0x37, 0, 0, 0x80, 0x3F}},
        {32,
         kUnsigned,
         {0, 0, 0, 0, 0, 0, 0, 0x80, 0, 0, 0, 0, 255, 255, 255, 255},
         {"--bits", "32"},
         "32-bit integers -> 32-bit floats from 0 to 1, rounded",
         {0, 0, 0, 0, 0, 0, 0, 0x3F, 0, 0, 0, 0, 0, 0, 0x80, 0x3F}},
        // 1, the smallest subnormal 2^-24, a NaN with its payload, minus infinity
        {16,
         kFloat,
         {0, 0x3C, 1, 0, 1, 0x7E, 0, 0xFC},
         {},
         "16-bit floats -> 32-bit floats",
         {0, 0, 0x80, 0x3F, 0, 0, 0x80, 0x33, 0, 0x20, 0xC0, 0x7F, 0, 0, 0x80, 0xFF}},
        // a signalling NaN, -0, a subnormal, and what 8 bits cannot hold
        {32,
         kFloat,
         {0x45, 0x23, 0xA1, 0x7F, 0, 0, 0, 0x80, 1, 0, 0, 0, 0xFF, 0xFF, 0x7F, 0x7F},
         {},
         "",
         {0x45, 0x23, 0xA1, 0x7F, 0, 0, 0, 0x80, 1, 0, 0, 0, 0xFF, 0xFF, 0x7F, 0x7F}},
        // 0.1, rounded up; 1; 0; 1e300, infinite in 32 bits
        {64,
         kFloat,
         {0x9A, 0x99, 0x99, 0x99, 0x99, 0x99, 0xB9, 0x3F, 0,    0,   0,
          0,    0,    0,    0xF0, 0x3F, 0,    0,    0,    0,    0,   0,
          0,    0,    0x9C, 0x75, 0x00, 0x88, 0x3C, 0xE4, 0x37, 0x7E},
         {},
         "64-bit floats -> 32-bit floats, rounded",
         {0xCD, 0xCC, 0xCC, 0x3D, 0, 0, 0x80, 0x3F, 0, 0, 0, 0, 0, 0, 0x80, 0x7F}},
    };
    for (const auto& row : kCases) {
        const Tiff tiff{.width = 4,
                        .height = 1,
                        .channels = 1,
                        .bits = row.bits,
                        .format = row.format,
                        .photometric = PHOTOMETRIC_MINISBLACK};
        const std::string lines = changes(tiff.write(dir, row.samples), row.options);
        const std::size_t bar = lines.find('|');
        EXPECT_EQ(bar == std::string::npos ? "" : lines.substr(bar + 1), row.change);
        EXPECT_EQ(tiffPixels(), row.want) << row.change;
    }
}

TEST_F(Fix, WhatATiffHasBesideItsSamplesIsSaid) {
    const struct {
        Tiff tiff;
        ByteList samples;
        Words options;
        std::string lastLines;
        ByteList want;
    } kCases[] = {
        {{.width = 2, .height = 1, .channels = 1, .photometric = PHOTOMETRIC_MINISWHITE},
         {0, 10},
         {},
         "0 as white -> 0 as black",
         {255, 245}},
        {{.width = 2, .height = 1, .channels = 1, .photometric = PHOTOMETRIC_PALETTE},
         {0, 1},
         {},
         "palette -> RGB of 8 bits",
         {16, 0, 0, 255, 0, 0}},
        {{.width = 2,
          .height = 1,
          .channels = 1,
          .bits = 4,
          .photometric = PHOTOMETRIC_PALETTE,
          .deepColour = 0x1234},
         {0x01},
         {},
         "palette -> RGB of 16 bits",
         {16, 16, 0, 0, 0, 0, 0x34, 0x12, 0, 0, 0, 0}},
        {{.width = 2, .height = 1, .channels = 4, .further = {EXTRASAMPLE_ASSOCALPHA}},
         counting(8),
         {"--drop-alpha"},
         "1 further channel left out; colours stay multiplied by alpha",
         {1, 2, 3, 5, 6, 7}},
        {{.width = 2,
          .height = 1,
          .channels = 3,
          .photometric = PHOTOMETRIC_MINISBLACK,
          .separate = true,
          .further = {EXTRASAMPLE_UNASSALPHA, 0}},
         counting(6),
         {"--drop-alpha"},
         "2 further channels left out",
         {1, 2}},
        {{.width = 1, .height = 1, .photometric = PHOTOMETRIC_MINISBLACK},
         counting(3),
         {},
         "3 grey channels -> RGB",
         counting(3)},
        {{.width = 1, .height = 1, .shorts = {{TIFFTAG_ORIENTATION, 3}}},
         counting(3),
         {},
         "orientation 3 left out; rows and columns stay where they are",
         counting(3)},
        {{.width = 1, .height = 1, .shorts = {{TIFFTAG_INKSET, 2}}},
         counting(3),
         {},
         "further tags left out: 332",
         counting(3)},
        {{.width = 1, .height = 1, .twoPages = true},
         counting(3),
         {},
         "several pages -> the first one",
         counting(3)},
    };
    for (const auto& row : kCases) {
        const std::string lines = changes(row.tiff.write(dir, row.samples), row.options);
        EXPECT_THAT(lines, EndsWith('|' + row.lastLines));
        EXPECT_EQ(tiffPixels(), row.want) << row.lastLines;
    }
}

TEST_F(Fix, ATiffThatWouldLoseSamplesIsRefused) {
    const auto grey = [](std::uint16_t bits, std::uint16_t format) {
        return Tiff{.width = 1,
                    .height = 1,
                    .channels = 1,
                    .bits = bits,
                    .format = format,
                    .photometric = PHOTOMETRIC_MINISBLACK};
    };
    const struct {
        Tiff tiff;
        Words options;
        const char* sentence;
    } kCases[] = {
        {{.width = 1, .height = 1, .channels = 4, .further = {EXTRASAMPLE_UNASSALPHA}},
         {},
         "has 1 channel beyond grey or RGB, such as alpha, which the exports do not take; "
         "--drop-alpha leaves them out"},
        {{.width = 1, .height = 1, .channels = 4, .photometric = PHOTOMETRIC_SEPARATED},
         {},
         "has the colours of inks (CMYK); convert it to RGB with a program that knows its colour "
         "profile"},
        {{.width = 1, .height = 1, .photometric = PHOTOMETRIC_CIELAB},
         {},
         "has Lab colours; convert it to RGB with a program that knows its colour profile"},
        {{.width = 1,
          .height = 1,
          .photometric = PHOTOMETRIC_YCBCR,
          .shorts = {{TIFFTAG_ORIENTATION, 1}}},
         {},
         "has YCbCr colours; convert it to RGB with a program that knows its colour profile"},
        {{.width = 1, .height = 1, .channels = 2},
         {},
         "has 2 colour channels, which make neither grey nor RGB; write it with 1 or 3"},
        {grey(12, SAMPLEFORMAT_UINT),
         {},
         "has integers of 12 bits, which quillon fix does not read; write it with 8 or 16 bits"},
        {grey(24, SAMPLEFORMAT_IEEEFP),
         {},
         "has floats of 24 bits, which quillon fix does not read; write it with 32 bits"},
        {grey(16, SAMPLEFORMAT_INT),
         {},
         "has signed integers, which the exports take for unsigned ones; write it as floats"},
        {grey(64, SAMPLEFORMAT_COMPLEXIEEEFP),
         {},
         "has complex numbers; write its parts as maps of their own"},
        {grey(32, SAMPLEFORMAT_UINT),
         {},
         "has integers of 32 bits, which the exports take for floats; --bits 32 turns them into "
         "floats from 0 to 1, rounded to 24 bits"},
        {grey(32, SAMPLEFORMAT_IEEEFP),
         {"--bits", "16"},
         "has floats, which do not become integers here; quillon call convertTIFF16 turns 0 to 1 "
         "into 16 bits"},
        {{.width = 1,
          .height = 1,
          .channels = 1,
          .bits = 32,
          .format = SAMPLEFORMAT_IEEEFP,
          .photometric = PHOTOMETRIC_MINISWHITE},
         {},
         "has white as 0; write it with black as 0"},
        {{.width = 65536, .height = 1, .channels = 1, .photometric = PHOTOMETRIC_MINISBLACK},
         {},
         "has 65536 x 1 pixels; the longest side of such a map is 65535, so make it smaller"},
    };
    for (const auto& row : kCases)
        EXPECT_EQ(refusal(row.tiff.write(dir, ByteList(65536)), row.options), row.sentence);
}

// A picture of 2 x 2: blue and white, above them red and green.
struct BmpCase {
    std::string changes;
    std::uint32_t infoBytes;
    std::int32_t height;
    std::uint16_t bits;
    std::uint32_t compression;
    ByteList behind;  // the two headers: masks, the palette, the rows
    std::uint32_t rowsBytes;
    Words options = {};
};

ByteList bmpOf(const BmpCase& row) {
    ByteList bytes = {'B', 'M', 0, 0, 0, 0, 0, 0, 0, 0};
    const auto behind = static_cast<std::uint32_t>(row.behind.size());
    appendLe32(bytes, 14 + row.infoBytes + behind - row.rowsBytes);
    appendLe32(bytes, row.infoBytes);
    if (row.infoBytes == 12) {
        for (const std::uint32_t value : {2u, 2u, 1u, std::uint32_t{row.bits}})
            appendLe16(bytes, value);
    } else {
        appendLe32(bytes, 2);
        appendLe32(bytes, static_cast<std::uint32_t>(row.height));
        appendLe16(bytes, 1);
        appendLe16(bytes, row.bits);
        appendLe32(bytes, row.compression);
        bytes.resize(54);
    }
    append(bytes, row.behind);
    return bytes;
}

const ByteList kPalette = {200, 0, 0, 0, 255, 255, 255, 0, 0, 0, 100, 0, 0, 100, 0, 0};

ByteList withPalette(const ByteList& rows) {
    ByteList bytes = kPalette;
    append(bytes, rows);
    return bytes;
}

TEST_F(Fix, ABmpOfAnyKindHas24BitsAndTheBottomRowFirst) {
    const ByteList topDown = {0, 0, 100, 0, 100, 0, 0, 0, 200, 0, 0, 255, 255, 255, 0, 0};
    const ByteList rows24 = {200, 0, 0, 255, 255, 255, 0, 0, 0, 0, 100, 0, 100, 0, 0, 0};
    const ByteList rows32 = {200, 0, 0, 9, 255, 255, 255, 9, 0, 0, 100, 9, 0, 100, 0, 9};
    ByteList alpha32 = {0, 0, 255, 0, 0, 255, 0, 0, 255, 0, 0, 0, 0, 0, 0, 255};
    append(alpha32, rows32);
    const std::string packed = "run-length compression -> not compressed|palette of ";
    const BmpCase kCases[] = {
        {"nothing had to change", 40, 2, 24, 0, rows24, 16},
        {"header of 12 bytes -> 40 bytes|pixels at byte 26 -> byte 54", 12, 2, 24, 0, rows24, 16},
        {"top row first -> bottom row first", 40, -2, 24, 0, topDown, 16},
        {"palette of 8 bits -> 24 bits per pixel", 40, 2, 8, 0,
         withPalette({0, 1, 0, 0, 2, 3, 0, 0}), 8},
        {"palette of 4 bits -> 24 bits per pixel", 40, 2, 4, 0,
         withPalette({0x01, 0, 0, 0, 0x23, 0, 0, 0}), 8},
        // A step leaves a pixel of 0 out; a row ends; three numbers, one too many, and a byte that
        // fills up a pair; the image ends.
        {packed + "8 bits -> 24 bits per pixel", 40, 2, 8, 1,
         withPalette({0, 2, 1, 0, 1, 1, 0, 0, 0, 3, 2, 3, 0, 0, 0, 1}), 16},
        {packed + "4 bits -> 24 bits per pixel", 40, 2, 4, 2,
         withPalette({2, 0x01, 0, 0, 0, 3, 0x23, 0, 0, 1}), 10},
        {"32 bits per pixel -> 24", 40, 2, 32, 0, rows32, 16},
        {"32 bits per pixel -> 24|1 further channel left out|pixels at byte 70 -> byte 54",
         40,
         2,
         32,
         6,
         alpha32,
         16,
         {"--drop-alpha"}},
    };
    for (const BmpCase& row : kCases) {
        EXPECT_EQ(changes(dir.write("in.bmp", bmpOf(row)), row.options), row.changes);
        EXPECT_THAT(bmpPixelsOf(out), ElementsAre(200, 0, 0, 255, 255, 255, 0, 0, 100, 0, 100, 0))
            << row.changes;
    }
}

// Run lengths of four rows of two bytes, two of them of one plane.
const ByteList kPackedRows = {0,   3,  0, 2,  0,  3,   0, 4,  0,  3, 0,  2,  1,   11, 12,
                              255, 13, 1, 21, 22, 128, 1, 23, 24, 1, 31, 32, 255, 33};

ByteList resourceOfVersion(bool hasMergedImage) {
    ByteList bytes = {'8', 'B', 'I', 'M', 3, 0xED, 1, 'x', 0, 0, 0, 1, 7, 0};  // another one
    append(bytes, {'8', 'B', 'I', 'M', 4, 0x21, 0, 0, 0, 0, 0, 5, 0, 0, 0, 1});
    append(bytes, {static_cast<std::uint8_t>(hasMergedImage), 0});
    return bytes;
}

// A PSD with these bytes as its image resources.
ByteList withResources(const PsdFile& file, const ByteList& resources) {
    ByteList bytes = file;
    bytes[33] = static_cast<std::uint8_t>(resources.size());
    bytes.insert(bytes.begin() + 34, resources.begin(), resources.end());
    return bytes;
}

TEST_F(Fix, APsdBecomesItsMergedImage) {
    const ByteList planes = {11, 12, 13, 13, 21, 22, 23, 24, 31, 32, 33, 33};
    ByteList indexed = PsdFile(2, 1).channels(1).colourMode(2).colourTable(768).planes({0, 255});
    for (std::size_t i = 0; i < 768; ++i)
        indexed[30 + i] = static_cast<std::uint8_t>(i / 256 * 50 + (i % 256 == 255 ? 1 : 0));
    const PsdFile packed = PsdFile(2, 2).compression(1).planes(kPackedRows);
    ByteList large = PsdFile(1, 1).version(2);
    large.resize(34);  // up to the layers: their length has 8 bytes, those of rows have 4
    append(large, {0, 0, 0, 0, 0, 0, 0, 0, 0, 1});
    append(large, {0, 0, 0, 2, 0, 0, 0, 2, 0, 0, 0, 2, 0, 41, 0, 42, 0, 43});
    const struct {
        ByteList bytes;
        Words options;
        const char* changes;
        ByteList want;
    } kCases[] = {
        {PsdFile(2, 2).planes(planes), {}, "nothing had to change", planes},
        {packed, {}, "run-length compression -> not compressed", planes},
        {large,
         {},
         "version 2, of large files -> version 1|run-length compression -> not compressed",
         {41, 42, 43}},
        {PsdFile(2, 1).channels(1).colourMode(1).planes({1, 255}),
         {},
         "8 bits per sample -> 16",
         {1, 1, 255, 255}},
        {PsdFile(2, 1).grey16().planes({1, 2, 3, 4}), {}, "nothing had to change", {1, 2, 3, 4}},
        {PsdFile(1, 1).depth(16).planes({0, 128, 0, 129, 255, 255}),
         {"--bits", "8"},
         "16 bits per sample -> 8, rounded",
         {0, 1, 255}},
        {PsdFile(1, 1).channels(4).planes({1, 2, 3, 4}),
         {"--drop-alpha"},
         "1 further channel left out",
         {1, 2, 3}},
        {indexed, {}, "palette -> RGB", {0, 1, 50, 51, 100, 101}},
        {PsdFile(1, 1).layers(6).planes({1, 2, 3}),
         {},
         "layers -> the merged image alone",
         {1, 2, 3}},
        {withResources(PsdFile(1, 1).planes({1, 2, 3}), resourceOfVersion(true)),
         {},
         "image resources left out",
         {1, 2, 3}},
    };
    for (const auto& row : kCases) {
        EXPECT_EQ(changes(dir.write("in.psd", row.bytes), row.options), row.changes);
        EXPECT_EQ(imageData(out), row.want) << row.changes;
    }
}

// Level 3 of 31 is 24.7 of 255, and 1 of 63 is 4.05.
TEST_F(Fix, ABmpOf16BitsIsRoundedToTheNearestLevels) {
    const ByteList masks = {0, 0xF8, 0, 0, 0xE0, 7, 0, 0, 0x1F, 0, 0, 0};
    ByteList behind = masks;
    append(behind, {0x23, 0xF8, 0, 0, 0xFF, 0xFF, 0, 0});
    changes(dir.write("in.bmp", bmpOf({"", 40, 2, 16, 3, behind, 8})));
    EXPECT_THAT(bmpPixelsOf(out), ElementsAre(25, 4, 255, 0, 0, 0, 255, 255, 255, 0, 0, 0));
}

TEST_F(Fix, APsdOrBmpThatWouldLoseSamplesIsRefused) {
    const struct {
        const char* name;
        ByteList bytes;
        Words options;
        const char* sentence;
    } kCases[] = {
        {"in.psd",
         PsdFile(1, 1).channels(4).filled(4, 1),
         {},
         "has 1 channel beyond grey or RGB, such as alpha, which the exports do not take; "
         "--drop-alpha leaves them out"},
        {"in.psd",
         PsdFile(1, 1).depth(16).filled(6, 1),
         {},
         "has colours of 16 bits, and of PSD maps in colour the exports take 8 bits only; --bits 8 "
         "rounds them"},
        {"in.psd",
         PsdFile(1, 1).grey16().filled(2, 1),
         {"--bits", "8"},
         "is grey, and of grey PSD maps the exports take 16 bits only; leave --bits out"},
        {"in.psd",
         PsdFile(1, 1).depth(32).filled(12, 1),
         {},
         "has 32 bits per sample; the exports take 8 and 16, so save it with these"},
        {"in.psd",
         PsdFile(1, 1).channels(4).colourMode(4).filled(4, 1),
         {},
         "is in colour mode 4, which is neither grey, RGB nor a palette; convert it to RGB"},
        {"in.psd",
         PsdFile(1, 1).compression(2).filled(3, 1),
         {},
         "is compressed in a way that quillon fix does not read (2); save it again without layers"},
        {"in.psd",
         withResources(PsdFile(1, 1).filled(3, 1), resourceOfVersion(false)),
         {},
         "has layers only; save it with their merged image, which is what maps are"},
        {"in.psd",
         PsdFile(30001, 1).filled(90003, 1),
         {},
         "has 30001 x 1 pixels; the longest side of such a map is 30000, so make it smaller"},
        {"in.psd", BmpFile(1, 1), {}, "is no PSD file"},
        {"in.bmp", PsdFile(1, 1).filled(3, 1), {}, "is no BMP file"},
        {"in.bmp", BmpFile(0, 1), {}, "has 0 x 1 pixels, so there is no map"},
        {"in.bmp",
         BmpFile(1, 1),
         {"--bits", "16"},
         "is a BMP, and of these the exports take 8 bits per channel only; leave --bits out"},
        {"in.bmp",
         BmpFile(1, 1).bitsPerPixel(48),
         {},
         "has 48 bits per pixel in compression 0, which quillon fix does not read; save it with 24 "
         "bits"},
        {"in.bmp",
         bmpOf({"", 40, 2, 8, 1, withPalette({1, 4, 0, 0, 0, 1}), 6}),
         {},
         "is damaged: a pixel has the colour 4 of a palette of 4"},
        {"in.tif",
         BmpFile(1, 1),
         {},
         "cannot be read as TIFF: Not a TIFF or MDI file, bad magic number 19778 (0x4d42)"},
    };
    for (const auto& row : kCases)
        EXPECT_EQ(refusal(dir.write(row.name, row.bytes), row.options), row.sentence);
}

// Headers that claim gigabytes in files of a few hundred bytes are refused at once.
TEST_F(Fix, AFileTooShortForItsSizeIsRefusedBeforeAnythingIsWritten) {
    Tiff tiff{.compression = COMPRESSION_ADOBE_DEFLATE};
    ByteList wide = readBytes(tiff.write(dir, counting(18)));
    for (std::size_t at = wide.size() - 12; at > 0; --at) {  // width and height, as 32-bit values
        const bool isSize = (wide[at] == 0 || wide[at] == 1) && wide[at + 1] == 1 &&
                            wide[at + 2] == 3 && wide[at + 4] == 1;
        if (isSize) wide[at + 8] = 0xFF, wide[at + 9] = 0xFF;
    }
    EXPECT_THAT(refusal(dir.write("in.tif", wide)),
                HasSubstr("too short for the 65535 x 65535 pixels that it claims to hold"));
    const std::string damaged = "is cut short or damaged; save it again";
    ByteList runs = bmpOf({"", 40, 16000, 8, 1, withPalette({0, 1}), 2});
    runs[18] = runs[19] = 0xFF;
    EXPECT_EQ(refusal(dir.write("in.bmp", runs)), damaged);
    EXPECT_EQ(refusal(dir.write("in.psd", PsdFile(30000, 30000).compression(1).filled(9, 0))),
              damaged);
}

// Every truncated length either gives a whole map or a sentence, and then no file.
TEST_F(Fix, ATruncatedFileIsRefusedOrWhole) {
    const ByteList pixels = counting(18);
    const ByteList planes = {11, 12, 13, 13, 21, 22, 23, 24, 31, 32, 33, 33};
    const struct {
        MapFormat format;
        ByteList bytes;
    } kCases[] = {
        {MapFormat::kTiff, readBytes(Tiff{}.write(dir, pixels))},
        {MapFormat::kTiff,
         readBytes(Tiff{.mode = "wb8", .compression = COMPRESSION_LZW}.write(dir, pixels))},
        {MapFormat::kTiff,
         readBytes(Tiff{.compression = COMPRESSION_ADOBE_DEFLATE, .tileWidth = 16, .separate = true}
                       .write(dir, pixels))},
        {MapFormat::kPsd, PsdFile(2, 2).compression(1).planes(kPackedRows)},
        {MapFormat::kPsd, withResources(PsdFile(2, 2).planes(planes), resourceOfVersion(true))},
        {MapFormat::kBmp, BmpFile(2, 2)},
        {MapFormat::kBmp,
         bmpOf({"", 40, 2, 8, 1, withPalette({2, 1, 0, 0, 0, 3, 2, 3, 0, 0, 0, 1}), 12})},
    };
    const std::string target = dir.path("target");
    for (const auto& row : kCases) {
        std::size_t whole = 0;
        for (std::size_t length = 0; length <= row.bytes.size(); ++length) {
            const std::string in = dir.write("cut", firstBytes(row.bytes, length));
            try {
                fixMap(row.format, in, target, {});
                ++whole;
                EXPECT_TRUE(dir.has("target"));
                std::filesystem::remove(target);
            } catch (const Failure& failure) {
                EXPECT_THAT(failure.what(), HasSubstr(in));
                EXPECT_FALSE(dir.has("target"));
            }
        }
        EXPECT_GE(whole, 1u);
        EXPECT_LE(whole,
                  25u);  // of a TIFF only what follows the directory's entries can be missing
    }
}

TEST_F(Fix, InAndOutAreTwoFilesOfOneFormat) {
    const std::string in = dir.write("in.bmp", BmpFile(1, 1));
    const std::string older = dir.write("older.bmp", "older");
    const auto fix = [&](const std::string& from, const std::string& to) {
        return quillon({"fix", from, to});
    };
    EXPECT_EQ(fix(in, dir.path("./in.bmp")).err,
              "quillon: " + dir.path("./in.bmp") +
                  " is the map itself; choose another name for the new one\n");
    EXPECT_EQ(fix(in, older).err,
              "quillon: " + older + " exists; choose another name, or replace it with --force\n");
    EXPECT_EQ(readBytes(older).size(), 5u);
    EXPECT_EQ(fix(dir.path("none.bmp"), older).err,
              "quillon: there is no map " + dir.path("none.bmp") + '\n');
    const Ended other = fix(in, "out.tif");
    EXPECT_EQ(other.exitStatus, 2);
    EXPECT_EQ(other.err, "quillon: " + in +
                             " and out.tif are of two formats; fix keeps the format, so give both "
                             "one extension\n");
    EXPECT_EQ(fix("in.png", "out.tif").err,
              "quillon: in.png is no map by its name; maps end in .tif, .tiff, .psd or .bmp\n");
}

TEST_F(Fix, JsonHasTheNewMapsSizeAndTheChanges) {
    const std::string in =
        dir.write("in.psd", PsdFile(2, 1).channels(1).colourMode(1).filled(2, 1));
    const std::string target = dir.path("out.psd");
    EXPECT_EQ(quillon({"fix", in, target, "--json"}).out,
              "{\"success\":true,\"files\":[{\"path\":\"" + target +
                  "\",\"bytes\":44}],\"width\":2,\"height\":1,\"channels\":1,\"bits\":16,"
                  "\"changes\":[\"8 bits per sample -> 16\"]}\n");
    EXPECT_EQ(quillon({"fix", in, target, "--force"}).out,
              target + ": 2 x 1 pixels, 1 channel of 16 bits\n  8 bits per sample -> 16\n");
}

}  // namespace
