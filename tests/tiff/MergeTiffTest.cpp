#include <gmock/gmock.h>
#include <tiffio.h>

#include <algorithm>
#include <limits>
#include <memory>
#include <utility>

#include "support/CaptureStdout.h"
#include "support/Faults.h"
#include "support/PaintedPart.h"
#include "support/TempDir.h"
#include "support/TiffFile.h"
#include "tiff/TiffOps.h"

namespace {

constexpr auto kDirectoryFirst = TiffFile::Order::kDirectoryFirst;

class MergeTiff : public testing::Test {
protected:
    float merge(const ByteList& source, const ByteList& target) const {
        dir.write("tile.tif", source);
        dir.write("all.tif", target);
        return mergeFiles("tile.tif", "all.tif");
    }
    float mergeFiles(std::string_view source, std::string_view target) const {
        return mergeTiff(dir.path(source).c_str(), dir.path(target).c_str());
    }
    void expectMerged(const ByteList& source, const ByteList& target,
                      const ByteList& expected) const {
        EXPECT_EQ(merge(source, target), 0.0f);
        EXPECT_EQ(targetBytes(), expected);
        EXPECT_EQ(readBytes(dir.path("tile.tif")), source);
    }
    ByteList targetBytes() const { return readBytes(dir.path("all.tif")); }

    const TempDir dir;
    const TiffFile tile = TiffFile(4, 3).grey8({9, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1});
    const TiffFile empty = TiffFile(4, 3).grey8(ByteList(12, 9));
};

TEST_F(MergeTiff, FillsOnlyBackgroundPixels) {
    expectMerged(TiffFile(3, 1).rgb8({9, 9, 9, 1, 2, 3, 7, 7, 7}),
                 TiffFile(3, 1).rgb8({9, 9, 9, 9, 9, 9, 4, 5, 6}),
                 TiffFile(3, 1).rgb8({9, 9, 9, 1, 2, 3, 4, 5, 6}));
}

TEST_F(MergeTiff, AWholePixelMustMatch) {
    const TiffFile all = TiffFile(3, 1).rgb8({9, 9, 9, 9, 9, 8, 8, 9, 9});
    expectMerged(TiffFile(3, 1).rgb8({9, 9, 9, 1, 1, 1, 2, 2, 2}), all, all);
}

TEST_F(MergeTiff, TheBackgroundIsTheSourcesFirstPixel) {
    expectMerged(TiffFile(3, 4).grey8({9, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1}),
                 TiffFile(3, 4).grey8({5, 5, 5, 5, 5, 5, 5, 5, 5, 5, 5, 9}),
                 TiffFile(3, 4).grey8({5, 5, 5, 5, 5, 5, 5, 5, 5, 5, 5, 1}));
}

TEST_F(MergeTiff, SixteenBitPixelsMatchByBothBytes) {
    expectMerged(TiffFile(5, 1).grey16({0x0900, 1, 2, 3, 4}),
                 TiffFile(5, 1).grey16({7, 0x0900, 0x0901, 0x0009, 0x0900}),
                 TiffFile(5, 1).grey16({7, 1, 0x0901, 0x0009, 4}));
}

TEST_F(MergeTiff, FloatPixelsMatchByTheirBits) {
    const float nan = std::numeric_limits<float>::quiet_NaN();
    expectMerged(TiffFile(3, 1).grey32({0.0f, 1.0f, 1.0f}),
                 TiffFile(3, 1).grey32({0.0f, -0.0f, 0.0f}),
                 TiffFile(3, 1).grey32({0.0f, -0.0f, 1.0f}));
    expectMerged(TiffFile(3, 1).grey32({nan, 1.0f, 1.0f}), TiffFile(3, 1).grey32({0.5f, nan, -nan}),
                 TiffFile(3, 1).grey32({0.5f, 1.0f, -nan}));
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
    const auto map = [](const std::vector<float>& samples) -> ByteList {
        return TiffFile(400, 300, kDirectoryFirst).rgb32(samples);
    };
    EXPECT_EQ(merge(map(tileSamples), map(allSamples)), 0.0f);
    EXPECT_TRUE(targetBytes() == map(expected));
}

// A piece holds 87381 pixels of three bytes.
TEST_F(MergeTiff, APaintedPartIsExactWhereverItBeginsAndEnds) {
    forEachPaintedPart(4, 87381, [&](std::size_t pixels, std::size_t start, std::size_t end) {
        const PaintedPart part = paintedPart(pixels, start, end);
        const auto file = [&](const ByteList& map) -> ByteList {
            return TiffFile(static_cast<std::uint32_t>(pixels / 4), 4, kDirectoryFirst)
                .rgb8(repeatedEach(map, 3));
        };
        EXPECT_EQ(merge(file(part.tile), file(part.map)), 0.0f);
        EXPECT_TRUE(targetBytes() == file(part.filled)) << start << " to " << end;
    });
}

// The key is the source's first pixel, whatever the target has: of a source of one colour not a byte is
// written, though the target counts as rewritten.
TEST_F(MergeTiff, ASourceThatIsAllBackgroundWritesNoPixel) {
    const TiffFile painted = TiffFile(4, 3).grey8({9, 1, 5, 5, 5, 5, 5, 5, 5, 5, 5, 9});
    dir.write("tile.tif", TiffFile(4, 3).grey8(ByteList(12, 9)).bytes());
    makeOld(dir.write("all.tif", painted.bytes()));
    {
        const FullDisk nothingFits(0);
        EXPECT_EQ(mergeFiles("tile.tif", "all.tif"), 0.0f);
    }
    EXPECT_EQ(targetBytes(), painted.bytes());
    EXPECT_FALSE(isOld(dir.path("all.tif")));
}

TEST_F(MergeTiff, PairsThatDoNotMatchAreRefusedTheSourceFirst) {
    const auto bent = [&](std::uint16_t tag, std::uint32_t count, std::uint32_t value) {
        return TiffFile(empty).entry(tag, count, value);
    };
    const struct {
        const char* what;
        TiffFile source, target;
        float status;
    } rows[] = {
        {"length", empty, TiffFile(4, 2).grey8(ByteList(8, 9)), -30.0f},
        {"width", empty, TiffFile(3, 3).grey8(ByteList(9, 9)), -30.0f},
        {"target without a directory", empty, TiffFile(empty).claimEntries(0), -30.0f},
        {"neither with a directory", TiffFile(empty).claimEntries(0),
         TiffFile(empty).claimEntries(0), -30.0f},
        {"channels", empty, TiffFile(4, 3).rgb8(ByteList(36, 9)), -40.0f},
        {"depth", empty, TiffFile(4, 3).grey16(std::vector<std::uint16_t>(12, 9)), -40.0f},
        {"both refused", bent(259, 1, 5), bent(262, 1, 3), -259.0f},
        {"target refused", empty, bent(262, 1, 3), -262.0f},
        {"target's channels", empty, bent(258, 4, 8), 258.0f},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(merge(row.source, row.target), row.status) << row.what;
        EXPECT_EQ(targetBytes(), row.target.bytes()) << row.what;
    }
}

TEST_F(MergeTiff, OfMissingFilesOnlyTheTargetIsPrinted) {
    dir.write("map.tif", empty);
    const CaptureStdout captured;
    EXPECT_EQ(mergeFiles("missing", "map.tif"), -10.0f);
    EXPECT_EQ(captured.text(), "");
    EXPECT_EQ(mergeFiles("map.tif", "missing"), -20.0f);
    EXPECT_EQ(captured.text(), "-20\n");
    EXPECT_FALSE(dir.has("missing"));
}

TEST_F(MergeTiff, AStripThatDoesNotStartBelowItsByteCountIsLeftUnmerged) {
    const TiffFile all = TiffFile(4, 2).grey8(ByteList(8, 9));  // at byte 8, 8 bytes
    expectMerged(TiffFile(4, 2).grey8({9, 1, 1, 1, 1, 1, 1, 1}), all, all);
}

TEST_F(MergeTiff, OtherDepthsAndSizesBelowOneAreLeftUnmerged) {
    const std::pair<std::uint16_t, std::vector<std::uint32_t>> rows[] = {
        {258, {0, 1, 4, 24, 64, 0xFFFFFFF8}},
        {256, {0, 0xFFFFFFFF, 0x80000000}},
        {257, {0, 0xFFFFFFFF, 0x80000000}},
    };
    for (const auto& [tag, values] : rows) {
        for (const std::uint32_t value : values) {
            SCOPED_TRACE(testing::Message() << tag << ' ' << value);
            const ByteList all = TiffFile(empty).entry(tag, 1, value);
            expectMerged(TiffFile(tile).entry(tag, 1, value), all, all);
        }
    }
}

TEST_F(MergeTiff, AStripBeyondTheFileIsLeftUnmerged) {
    for (const std::uint32_t offset : {5000u, 0x7FFFFFF0u, 0x80000000u, 0xFFFFFFFFu}) {
        const ByteList map = TiffFile(tile).entry(273, 1, offset).entry(279, 1, 0x7FFFFFFF);
        expectMerged(map, map, map);
    }
}

TEST_F(MergeTiff, TheSourcesStripCountsForBothFiles) {
    expectMerged(tile, TiffFile(empty).entry(273, 1, 4000000),
                 TiffFile(tile).entry(273, 1, 4000000));
}

// The strip claims 25 bytes for 2 rows of 4: its rows are passed over three times, which is six
// rows, before the byte count is reached.
TEST_F(MergeTiff, RowsAreRepeatedUntilTheByteCountIsReached) {
    const auto map = [](std::uint8_t first, std::uint8_t upTo24, std::uint8_t last) -> ByteList {
        ByteList pixels(28, upTo24);
        pixels[0] = first;
        std::fill(pixels.begin() + 24, pixels.end(), last);
        return TiffFile(4, 2).grey8(pixels).entry(279, 1, 25);
    };
    expectMerged(map(9, 1, 1), map(9, 9, 9), map(9, 1, 9));
}

TEST_F(MergeTiff, OnlyRowsThatBothFilesHaveAreMerged) {
    const auto map = [](const ByteList& pixels) -> ByteList {
        return TiffFile(4, 3, kDirectoryFirst).grey8(pixels).entry(279, 1, 1000);
    };
    ByteList shortTile = map({9, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1});
    shortTile.resize(shortTile.size() - 5);  // the last row, and a byte of the one before
    expectMerged(shortTile, map(ByteList(12, 9)), map({9, 1, 1, 1, 9, 9, 9, 9, 9, 9, 9, 9}));
}

TEST_F(MergeTiff, ATargetThatTakesNoMoreBytesIsReported) {
    dir.write("tile.tif", tile);
    dir.write("all.tif", empty);
    const FullDisk full(8);
    EXPECT_EQ(mergeFiles("tile.tif", "all.tif"), -201.0f);
}

TEST_F(MergeTiff, ATruncatedMapIsNeverReadPastItsEndOrMadeLonger) {
    const ByteList whole = TiffFile(4, 4).rgb8({9, 9, 9, 1, 1, 1, 2, 2, 2, 3, 3, 3, 9, 9, 9, 1,
                                                1, 1, 2, 2, 2, 3, 3, 3, 9, 9, 9, 1, 1, 1, 2, 2,
                                                2, 3, 3, 3, 9, 9, 9, 1, 1, 1, 2, 2, 2, 3, 3, 3});
    for (std::size_t length = 0; length <= whole.size(); ++length) {
        const ByteList cut = firstBytes(whole, length);
        merge(cut, whole);
        EXPECT_EQ(readBytes(dir.path("tile.tif")), cut) << length;
        EXPECT_EQ(targetBytes(), whole) << length;
        merge(whole, cut);
        EXPECT_EQ(targetBytes().size(), length);
        EXPECT_EQ(readBytes(dir.path("tile.tif")), whole) << length;
    }
}

// Maps written and read back by libtiff. It writes the directory after the pixels, so these maps
// are small enough for it to be in the first 1000 bytes.
struct CloseTiff {
    void operator()(TIFF* tiff) const { TIFFClose(tiff); }
};
using Tiff = std::unique_ptr<TIFF, CloseTiff>;

struct Samples {
    std::uint16_t bits;
    std::uint16_t channels;
};

constexpr std::uint32_t kSide = 8;

void writeWithLibtiff(const std::string& path, Samples samples, ByteList pixels) {
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
    const auto size = static_cast<tmsize_t>(pixels.size());
    ASSERT_EQ(TIFFWriteEncodedStrip(tiff.get(), 0, pixels.data(), size), size);
}

ByteList readWithLibtiff(const std::string& path) {
    const Tiff tiff(TIFFOpen(path.c_str(), "r"));
    EXPECT_NE(tiff, nullptr);
    if (tiff == nullptr) return {};
    ByteList pixels(static_cast<std::size_t>(TIFFStripSize(tiff.get())));
    TIFFReadEncodedStrip(tiff.get(), 0, pixels.data(), -1);
    return pixels;
}

// Of four pixels one is background in both maps, one is painted in the tile, one in the target and
// one in both, where the target's stays.
TEST_F(MergeTiff, MergesMapsThatLibtiffWroteAndReads) {
    for (const Samples samples : {Samples{8, 1}, {8, 3}, {16, 1}, {16, 3}, {32, 1}, {32, 3}}) {
        ByteList source, target, expected;
        const auto append = [&](ByteList& pixels, std::size_t value) {
            pixels.insert(pixels.end(), samples.bits / 8u * samples.channels,
                          static_cast<std::uint8_t>(value));
        };
        for (std::size_t pixel = 0; pixel < kSide * kSide; ++pixel) {
            const bool inSource = pixel % 4 == 1 || pixel % 4 == 3;
            const bool inTarget = pixel % 4 >= 2;
            append(source, inSource ? 0x80 + pixel : 0x11);
            append(target, inTarget ? 0x20 + pixel : 0x11);
            append(expected, inTarget ? 0x20 + pixel : inSource ? 0x80 + pixel : 0x11);
        }
        writeWithLibtiff(dir.path("tile.tif"), samples, source);
        writeWithLibtiff(dir.path("all.tif"), samples, target);
        EXPECT_EQ(mergeFiles("tile.tif", "all.tif"), 0.0f);
        EXPECT_EQ(readWithLibtiff(dir.path("all.tif")), expected)
            << samples.bits << " bits, " << samples.channels << " channels";
        EXPECT_EQ(readWithLibtiff(dir.path("tile.tif")), source);
    }
}

}  // namespace
