#include <gmock/gmock.h>
#include <tiffio.h>

#include <cstring>
#include <limits>
#include <memory>

#include "support/CaptureStdout.h"
#include "support/Faults.h"
#include "support/TempDir.h"
#include "support/TiffFile.h"
#include "tiff/TiffOps.h"

namespace {

using testing::ElementsAre;

class MergeTiff : public testing::Test {
protected:
    float merge(const TiffFile& source, const TiffFile& target) {
        return merge(source.bytes(), target.bytes());
    }
    float merge(const ByteList& source, const ByteList& target) {
        dir.write("tile.tif", source);
        dir.write("all.tif", target);
        return mergeFiles("tile.tif", "all.tif");
    }
    float mergeFiles(std::string_view source, std::string_view target) const {
        return mergeTiff(dir.path(source).c_str(), dir.path(target).c_str());
    }
    ByteList merged(const TiffFile& built) const { return pixelsOf(dir.path("all.tif"), built); }
    ByteList targetBytes() const { return readBytes(dir.path("all.tif")); }

    const TempDir dir;
};

TEST_F(MergeTiff, FillsOnlyBackgroundPixels) {
    const TiffFile tile = TiffFile(3, 1).rgb8({9, 9, 9, 1, 2, 3, 7, 7, 7});
    const TiffFile all = TiffFile(3, 1).rgb8({9, 9, 9, 9, 9, 9, 4, 5, 6});
    EXPECT_EQ(merge(tile, all), 0.0f);
    EXPECT_THAT(merged(all), ElementsAre(9, 9, 9, 1, 2, 3, 4, 5, 6));
    EXPECT_EQ(readBytes(dir.path("tile.tif")), tile.bytes());
}

TEST_F(MergeTiff, ChangesNothingOutsideTheStrip) {
    const TiffFile tile = TiffFile(9, 1).grey8({9, 1, 9, 9, 2, 9, 9, 9, 3});
    const TiffFile all = TiffFile(9, 1).grey8({9, 9, 9, 9, 9, 9, 9, 9, 9});
    EXPECT_EQ(merge(tile, all), 0.0f);
    ByteList expected = all.bytes();
    expected[8 + 1] = 1;
    expected[8 + 4] = 2;
    expected[8 + 8] = 3;
    EXPECT_EQ(targetBytes(), expected);
}

TEST_F(MergeTiff, AWholePixelMustMatch) {
    const TiffFile tile = TiffFile(3, 1).rgb8({9, 9, 9, 1, 1, 1, 2, 2, 2});
    const TiffFile all = TiffFile(3, 1).rgb8({9, 9, 9, 9, 9, 8, 8, 9, 9});
    EXPECT_EQ(merge(tile, all), 0.0f);
    EXPECT_THAT(merged(all), ElementsAre(9, 9, 9, 9, 9, 8, 8, 9, 9));
}

TEST_F(MergeTiff, TheBackgroundIsTheSourcesFirstPixel) {
    const TiffFile tile = TiffFile(3, 4).grey8({9, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1});
    const TiffFile all = TiffFile(3, 4).grey8({5, 5, 5, 5, 5, 5, 5, 5, 5, 5, 5, 9});
    EXPECT_EQ(merge(tile, all), 0.0f);
    EXPECT_THAT(merged(all), ElementsAre(5, 5, 5, 5, 5, 5, 5, 5, 5, 5, 5, 1));
}

TEST_F(MergeTiff, IdenticalMapsStayAsTheyAre) {
    const TiffFile map = TiffFile(3, 3).grey8({9, 1, 9, 2, 9, 3, 9, 4, 9});
    EXPECT_EQ(merge(map, map), 0.0f);
    EXPECT_EQ(targetBytes(), map.bytes());
}

TEST_F(MergeTiff, AMapMayBeMergedIntoItself) {
    const TiffFile map = TiffFile(3, 3).grey8({9, 1, 9, 2, 9, 3, 9, 4, 9});
    dir.write("all.tif", map.bytes());
    EXPECT_EQ(mergeFiles("all.tif", "all.tif"), 0.0f);
    EXPECT_EQ(targetBytes(), map.bytes());
}

TEST_F(MergeTiff, SixteenBitPixelsMatchByBothBytes) {
    const TiffFile tile = TiffFile(5, 1).grey16({0x0900, 1, 2, 3, 4});
    const TiffFile all = TiffFile(5, 1).grey16({7, 0x0900, 0x0901, 0x0009, 0x0900});
    EXPECT_EQ(merge(tile, all), 0.0f);
    EXPECT_EQ(merged(all), (ByteList{7, 0, 1, 0, 1, 9, 9, 0, 4, 0}));
}

TEST_F(MergeTiff, NegativeZeroIsNotTheBackgroundZero) {
    const TiffFile tile = TiffFile(3, 1).grey32({0.0f, 1.0f, 1.0f});
    const TiffFile all = TiffFile(3, 1).grey32({0.0f, -0.0f, 0.0f});
    EXPECT_EQ(merge(tile, all), 0.0f);
    EXPECT_EQ(merged(all), (ByteList{0, 0, 0, 0, 0, 0, 0, 0x80, 0, 0, 0x80, 0x3F}));
}

TEST_F(MergeTiff, ANotANumberBackgroundMatchesItsOwnBits) {
    const float nan = std::numeric_limits<float>::quiet_NaN();
    const TiffFile tile = TiffFile(3, 1).grey32({nan, 1.0f, 1.0f});
    const TiffFile all = TiffFile(3, 1).grey32({0.5f, nan, -nan});
    EXPECT_EQ(merge(tile, all), 0.0f);
    EXPECT_EQ(merged(all), (ByteList{0, 0, 0, 0x3F, 0, 0, 0x80, 0x3F, 0, 0, 0xC0, 0xFF}));
}

TEST_F(MergeTiff, AMapOfManyPiecesIsMergedWhole) {
    constexpr std::size_t kPixels = 400 * 300;
    std::vector<float> tileSamples(3 * kPixels, 0.5f);
    std::vector<float> allSamples(3 * kPixels, 0.5f);
    std::vector<float> expected(3 * kPixels, 0.5f);
    for (std::size_t i = 3; i < 3 * kPixels; ++i) {
        if (i / 3 % 3 == 1) tileSamples[i] = expected[i] = static_cast<float>(i);
        if (i / 3 % 3 == 2) allSamples[i] = expected[i] = -static_cast<float>(i);
    }
    const auto order = TiffFile::Order::kDirectoryFirst;
    const TiffFile tile = TiffFile(400, 300, order).rgb32(tileSamples);
    EXPECT_EQ(merge(tile, TiffFile(400, 300, order).rgb32(allSamples)), 0.0f);
    EXPECT_EQ(targetBytes(), TiffFile(400, 300, order).rgb32(expected).bytes());
}

TEST_F(MergeTiff, SizesThatDifferAreRefused) {
    const TiffFile map = TiffFile(4, 3).grey8(ByteList(12, 9));
    EXPECT_EQ(merge(map, TiffFile(4, 2).grey8(ByteList(8, 9))), -30.0f);
    EXPECT_EQ(merge(map, TiffFile(3, 3).grey8(ByteList(9, 9))), -30.0f);
    EXPECT_EQ(merge(map, TiffFile(map).claimEntries(0)), -30.0f);
    EXPECT_EQ(merge(TiffFile(map).claimEntries(0), TiffFile(map).claimEntries(0)), -30.0f);
}

TEST_F(MergeTiff, SamplesThatDifferAreRefused) {
    const TiffFile grey = TiffFile(4, 3).grey8(ByteList(12, 9));
    EXPECT_EQ(merge(grey, TiffFile(4, 3).rgb8(ByteList(36, 9))), -40.0f);
    EXPECT_EQ(merge(grey, TiffFile(4, 3).grey16(std::vector<std::uint16_t>(12, 9))), -40.0f);
    EXPECT_EQ(targetBytes(), TiffFile(4, 3).grey16(std::vector<std::uint16_t>(12, 9)).bytes());
}

TEST_F(MergeTiff, TheSourceIsRefusedBeforeTheTarget) {
    const TiffFile map = TiffFile(4, 3).grey8(ByteList(12, 9));
    EXPECT_EQ(merge(TiffFile(map).entry(259, 1, 5), TiffFile(map).entry(262, 1, 3)), -259.0f);
    EXPECT_EQ(merge(map, TiffFile(map).entry(262, 1, 3)), -262.0f);
    EXPECT_EQ(merge(map, TiffFile(map).entry(258, 4, 8)), 258.0f);
}

TEST_F(MergeTiff, AMissingSourceIsNotPrinted) {
    dir.write("all.tif", TiffFile(4, 3).grey8(ByteList(12, 9)).bytes());
    CaptureStdout captured;
    EXPECT_EQ(mergeFiles("missing", "all.tif"), -10.0f);
    EXPECT_EQ(captured.text(), "");
}

TEST_F(MergeTiff, AMissingTargetIsPrinted) {
    dir.write("tile.tif", TiffFile(4, 3).grey8(ByteList(12, 9)).bytes());
    CaptureStdout captured;
    EXPECT_EQ(mergeFiles("tile.tif", "missing"), -20.0f);
    EXPECT_EQ(captured.text(), "-20\n");
    EXPECT_FALSE(dir.has("missing"));
}

TEST_F(MergeTiff, AStripThatDoesNotStartBelowItsByteCountIsLeftUnmerged) {
    const TiffFile tile = TiffFile(4, 2).grey8({9, 1, 1, 1, 1, 1, 1, 1});  // at byte 8, 8 bytes
    const TiffFile all = TiffFile(4, 2).grey8(ByteList(8, 9));
    EXPECT_EQ(merge(tile, all), 0.0f);
    EXPECT_EQ(targetBytes(), all.bytes());
}

TEST_F(MergeTiff, OtherDepthsAreLeftUnmerged) {
    const TiffFile tile = TiffFile(4, 3).grey8({9, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1});
    const TiffFile all = TiffFile(4, 3).grey8(ByteList(12, 9));
    for (const std::uint32_t bits : {0u, 1u, 4u, 24u, 64u, 0xFFFFFFF8u}) {
        EXPECT_EQ(merge(TiffFile(tile).entry(258, 1, bits), TiffFile(all).entry(258, 1, bits)),
                  0.0f);
        EXPECT_EQ(targetBytes(), TiffFile(all).entry(258, 1, bits).bytes());
    }
}

TEST_F(MergeTiff, SizesBelowOneAreLeftUnmerged) {
    const TiffFile tile = TiffFile(4, 3).grey8({9, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1});
    const TiffFile all = TiffFile(4, 3).grey8(ByteList(12, 9));
    for (const std::uint16_t tag : {std::uint16_t{256}, std::uint16_t{257}}) {
        for (const std::uint32_t size : {0u, 0xFFFFFFFFu, 0x80000000u}) {
            EXPECT_EQ(merge(TiffFile(tile).entry(tag, 1, size), TiffFile(all).entry(tag, 1, size)),
                      0.0f);
            EXPECT_EQ(targetBytes(), TiffFile(all).entry(tag, 1, size).bytes());
        }
    }
}

TEST_F(MergeTiff, TheSourcesStripCountsForBothFiles) {
    const TiffFile tile = TiffFile(4, 3).grey8({9, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1});
    const TiffFile all = TiffFile(4, 3).grey8(ByteList(12, 9)).entry(273, 1, 4000000);
    EXPECT_EQ(merge(tile, all), 0.0f);
    EXPECT_THAT(merged(all), ElementsAre(9, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1));
}

// The strip claims 25 bytes for 2 rows of 4: three walks reach the byte count, over six rows.
TEST_F(MergeTiff, RowsAreWalkedAgainUntilTheByteCountIsReached) {
    const ByteList ones = {9, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1,
                           1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1};
    const TiffFile tile = TiffFile(4, 2).grey8(ones).entry(279, 1, 25);
    const TiffFile all = TiffFile(4, 2).grey8(ByteList(28, 9)).entry(279, 1, 25);
    EXPECT_EQ(merge(tile, all), 0.0f);
    ByteList expected(28, 1);
    expected[0] = 9;
    for (std::size_t i = 24; i < 28; ++i)
        expected[i] = 9;
    EXPECT_EQ(merged(all), expected);
}

TEST_F(MergeTiff, OnlyRowsThatBothFilesHaveAreMerged) {
    const TiffFile tile = TiffFile(4, 3).grey8({9, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1});
    ByteList shortTile = TiffFile(4, 3, TiffFile::Order::kDirectoryFirst)
                             .grey8({9, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1})
                             .entry(279, 1, 1000)
                             .bytes();
    const ByteList all = TiffFile(4, 3, TiffFile::Order::kDirectoryFirst)
                             .grey8(ByteList(12, 9))
                             .entry(279, 1, 1000)
                             .bytes();
    shortTile.resize(shortTile.size() - 5);  // the last row, and a byte of the one before
    EXPECT_EQ(merge(shortTile, all), 0.0f);
    ByteList expected = all;
    for (std::size_t i = 1; i < 4; ++i)
        expected[all.size() - 12 + i] = 1;
    EXPECT_EQ(targetBytes(), expected);
}

TEST_F(MergeTiff, NoHeaderMakesTheTargetLongerOrTheMergeEndless) {
    const TiffFile tile = TiffFile(4, 3).grey8({9, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1});
    const TiffFile all = TiffFile(4, 3).grey8(ByteList(12, 9));
    for (const std::uint32_t size : {0x7FFFFFFFu, 0x10000u, 13u}) {
        for (const std::uint32_t byteCount : {0x7FFFFFFFu, 9u, 0xFFFFFFFFu}) {
            const auto bend = [&](TiffFile file) {
                return file.entry(256, 1, size).entry(257, 1, size).entry(279, 1, byteCount);
            };
            EXPECT_EQ(merge(bend(tile), bend(all)), 0.0f);
            EXPECT_EQ(targetBytes().size(), bend(all).bytes().size());
        }
    }
}

TEST_F(MergeTiff, AStripBeyondTheFileIsLeftUnmerged) {
    const TiffFile tile = TiffFile(4, 3).grey8(ByteList(12, 9));
    for (const std::uint32_t offset : {5000u, 0x7FFFFFF0u, 0x80000000u, 0xFFFFFFFFu}) {
        const TiffFile bent = TiffFile(tile).entry(273, 1, offset).entry(279, 1, 0x7FFFFFFF);
        EXPECT_EQ(merge(bent, bent), 0.0f);
        EXPECT_EQ(targetBytes(), bent.bytes());
    }
}

TEST_F(MergeTiff, ATargetThatTakesNoMoreBytesIsTold) {
    const TiffFile map = TiffFile(4, 3).grey8({9, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1});
    dir.write("tile.tif", map.bytes());
    dir.write("all.tif", map.bytes());
    const FullDisk full(8);
    EXPECT_EQ(mergeFiles("tile.tif", "all.tif"), -201.0f);
}

TEST_F(MergeTiff, ATruncatedMapIsNeverReadPastItsEndOrMadeLonger) {
    const ByteList whole =
        TiffFile(4, 4)
            .rgb8({9, 9, 9, 1, 1, 1, 2, 2, 2, 3, 3, 3, 9, 9, 9, 1, 1, 1, 2, 2, 2, 3, 3, 3,
                   9, 9, 9, 1, 1, 1, 2, 2, 2, 3, 3, 3, 9, 9, 9, 1, 1, 1, 2, 2, 2, 3, 3, 3})
            .bytes();
    for (std::size_t length = 0; length <= whole.size(); ++length) {
        const ByteList bytes(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(length));
        merge(bytes, whole);
        EXPECT_EQ(readBytes(dir.path("tile.tif")), bytes) << length;
        EXPECT_EQ(targetBytes(), whole) << length;
        merge(whole, bytes);
        EXPECT_EQ(targetBytes().size(), length);
        EXPECT_EQ(readBytes(dir.path("tile.tif")), whole) << length;
    }
}

// Maps written and read back by libtiff, which knows nothing of Quillon's reader. It writes the
// directory behind the pixels, so these maps are small enough for it to lie in the first 1000
// bytes.
struct CloseTiff {
    void operator()(TIFF* tiff) const { TIFFClose(tiff); }
};
using Tiff = std::unique_ptr<TIFF, CloseTiff>;

struct Samples {
    std::uint16_t bits;
    std::uint16_t channels;
};

constexpr std::uint32_t kSide = 8;

void writeWithLibtiff(const std::string& path, Samples samples, const ByteList& pixels) {
    const Tiff tiff(TIFFOpen(path.c_str(), "wl"));
    ASSERT_NE(tiff, nullptr);
    TIFFSetField(tiff.get(), TIFFTAG_IMAGEWIDTH, kSide);
    TIFFSetField(tiff.get(), TIFFTAG_IMAGELENGTH, kSide);
    TIFFSetField(tiff.get(), TIFFTAG_BITSPERSAMPLE, samples.bits);
    TIFFSetField(tiff.get(), TIFFTAG_SAMPLESPERPIXEL, samples.channels);
    TIFFSetField(tiff.get(), TIFFTAG_ROWSPERSTRIP, kSide);
    TIFFSetField(tiff.get(), TIFFTAG_COMPRESSION, COMPRESSION_NONE);
    TIFFSetField(tiff.get(), TIFFTAG_PHOTOMETRIC,
                 samples.channels == 3 ? PHOTOMETRIC_RGB : PHOTOMETRIC_MINISBLACK);
    TIFFSetField(tiff.get(), TIFFTAG_PLANARCONFIG, PLANARCONFIG_CONTIG);
    TIFFSetField(tiff.get(), TIFFTAG_SAMPLEFORMAT,
                 samples.bits == 32 ? SAMPLEFORMAT_IEEEFP : SAMPLEFORMAT_UINT);
    ByteList copy = pixels;
    ASSERT_EQ(TIFFWriteEncodedStrip(tiff.get(), 0, copy.data(), static_cast<tmsize_t>(copy.size())),
              static_cast<tmsize_t>(copy.size()));
}

ByteList readWithLibtiff(const std::string& path) {
    const Tiff tiff(TIFFOpen(path.c_str(), "r"));
    EXPECT_NE(tiff, nullptr);
    if (tiff == nullptr) return {};
    ByteList pixels(static_cast<std::size_t>(TIFFStripSize(tiff.get())));
    TIFFReadEncodedStrip(tiff.get(), 0, pixels.data(), -1);
    return pixels;
}

TEST_F(MergeTiff, MergesMapsThatLibtiffWroteAndReads) {
    for (const Samples samples : {Samples{8, 1}, {8, 3}, {16, 1}, {16, 3}, {32, 1}, {32, 3}}) {
        const std::size_t pixelBytes = samples.bits / 8u * samples.channels;
        ByteList tile(kSide * kSide * pixelBytes, 0x11);
        ByteList all = tile;
        ByteList expected = tile;
        const auto paint = [&](ByteList& pixels, std::size_t pixel, std::uint8_t value) {
            std::memset(&pixels[pixel * pixelBytes], value, pixelBytes);
        };
        for (std::size_t pixel = 1; pixel < kSide * kSide; ++pixel) {
            const auto value = static_cast<std::uint8_t>(0x40 + pixel);
            if (pixel % 4 == 1) paint(tile, pixel, value), paint(expected, pixel, value);
            if (pixel % 4 == 2) paint(all, pixel, value), paint(expected, pixel, value);
            if (pixel % 4 == 3) paint(tile, pixel, 0x22), paint(all, pixel, value);
            if (pixel % 4 == 3) paint(expected, pixel, value);
        }
        writeWithLibtiff(dir.path("tile.tif"), samples, tile);
        writeWithLibtiff(dir.path("all.tif"), samples, all);
        EXPECT_EQ(mergeFiles("tile.tif", "all.tif"), 0.0f);
        EXPECT_EQ(readWithLibtiff(dir.path("all.tif")), expected)
            << samples.bits << " bits, " << samples.channels << " channels";
        EXPECT_EQ(readWithLibtiff(dir.path("tile.tif")), tile);
    }
}

}  // namespace
