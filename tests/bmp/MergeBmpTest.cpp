#include <gmock/gmock.h>

#include <algorithm>
#include <filesystem>
#include <utility>

#include "bmp/BmpOps.h"
#include "support/Append.h"
#include "support/BmpFile.h"
#include "support/Faults.h"
#include "support/PaintedPart.h"

namespace {

using std::filesystem::perms;

constexpr std::int32_t kLargest = 2147483647;

// A tile and a map in a folder of their own.
class MergeBmp : public testing::Test {
protected:
    float merge(const ByteList& tile, const ByteList& map) const {
        dir_.write("tile.bmp", tile);
        dir_.write("map.bmp", map);
        return mergeAgain();
    }
    float mergeAgain() const { return mergeBMP(tile().c_str(), map().c_str()); }
    void expectMerged(const ByteList& tile, const ByteList& map, const ByteList& expected) const {
        EXPECT_EQ(merge(tile, map), 0.0f);
        EXPECT_EQ(readBytes(dir_.path("map.bmp")), expected);
        EXPECT_EQ(readBytes(dir_.path("tile.bmp")), tile);
    }
    std::string map() const { return dir_.path("map.bmp"); }
    std::string tile() const { return dir_.path("tile.bmp"); }

    const TempDir dir_;
};

TEST_F(MergeBmp, FillsOnlyBackgroundPixels) {
    expectMerged(BmpFile(3, 1).pixels({9, 9, 9, 1, 2, 3, 7, 7, 7}),
                 BmpFile(3, 1).pixels({9, 9, 9, 9, 9, 9, 4, 5, 6}),
                 BmpFile(3, 1).pixels({9, 9, 9, 1, 2, 3, 4, 5, 6}));
}

TEST_F(MergeBmp, BackgroundIsTheSourcesBottomLeftPixel) {
    expectMerged(BmpFile(1, 3).pixels({5, 6, 7, 1, 1, 1, 2, 2, 2}),
                 BmpFile(1, 3).pixels({0, 0, 0, 0, 0, 0, 5, 6, 7}),
                 BmpFile(1, 3).pixels({0, 0, 0, 0, 0, 0, 2, 2, 2}));
}

TEST_F(MergeBmp, KeepsAPixelThatMatchesInTwoChannelsOnly) {
    const ByteList map = BmpFile(4, 1).pixels({9, 9, 9, 8, 9, 9, 9, 8, 9, 9, 9, 8});
    expectMerged(BmpFile(4, 1).pixels({9, 9, 9, 1, 1, 1, 1, 1, 1, 1, 1, 1}), map, map);
}

TEST_F(MergeBmp, TakesNoPaddingFromTheSource) {
    expectMerged(BmpFile(1, 2).pixels({9, 9, 9, 1, 2, 3}).padding(0x11),
                 BmpFile(1, 2).plain(9, 9, 9).padding(0x22),
                 BmpFile(1, 2).pixels({9, 9, 9, 1, 2, 3}).padding(0x22));
}

// Three bytes of padding could be taken for one more pixel; those of a row longer than a piece come
// with the row's end.
TEST_F(MergeBmp, TakesNoPaddingForAPixel) {
    for (const std::int32_t width : {3, 87383}) {
        SCOPED_TRACE(width);
        const auto grey = [&] { return BmpFile(width, 2).plain(7, 7, 7).pixel(2, 1, 1, 2, 3); };
        expectMerged(grey(), BmpFile(width, 2).plain(7, 7, 7).padding(7), grey().padding(7));
    }
}

TEST_F(MergeBmp, KeepsWhatIsBeforeAndAfterTheRows) {
    const auto file = [](BmpFile image, std::uint8_t gap, std::uint8_t rest) {
        ByteList bytes = image.pixelOffset(70, gap);
        append(bytes, ByteList(5, rest));
        return bytes;
    };
    const BmpFile tile = BmpFile(2, 1).pixels({9, 9, 9, 1, 2, 3});
    expectMerged(file(tile, 0x11, 1), file(BmpFile(2, 1).plain(9, 9, 9), 0x22, 9),
                 file(tile, 0x22, 9));
}

// Pieces hold 262144 bytes: whole rows, or parts of one row that is longer. The target is all
// background, so it becomes the source.
TEST_F(MergeBmp, WorksThroughImagesOfManyPieces) {
    const std::pair<std::int32_t, std::int32_t> sizes[] = {
        {1000, 300},  // 87 rows a piece
        {87381, 3},   // a row of exactly a piece
        {87382, 2},   // longer by a pixel
        {100001, 2},  // a piece and a bit
        {174762, 2},  // pixels end with the second piece; the third is padding alone
        {1, 100000},  // 65536 rows a piece
    };
    for (const auto& [width, height] : sizes) {
        SCOPED_TRACE(testing::Message() << width << " x " << height);
        expectMerged(BmpFile(width, height), BmpFile(width, height).plain(1, 2, 3).padding(7),
                     BmpFile(width, height).padding(7));
    }
}

// A piece holds 87380 pixels of rows of four, and 217 rows of 401, which have a byte of padding.
TEST_F(MergeBmp, APaintedPartIsExactWhereverItBeginsAndEnds) {
    const struct {
        std::int32_t width;
        std::size_t border;
    } images[] = {{4, 87380}, {401, 217 * 401}};
    for (const auto& image : images) {
        const auto check = [&](std::size_t pixels, std::size_t start, std::size_t end) {
            const PaintedPart part = paintedPart(pixels, start, end);
            const auto file = [&](const ByteList& map) -> ByteList {
                return BmpFile(image.width, static_cast<std::int32_t>(pixels) / image.width)
                    .pixels(repeatedEach(map, 3))
                    .padding(9);
            };
            EXPECT_EQ(merge(file(part.tile), file(part.map)), 0.0f);
            EXPECT_TRUE(readBytes(map()) == file(part.filled)) << start << " to " << end;
        };
        forEachPaintedPart(static_cast<std::size_t>(image.width), image.border, check);
    }
}

TEST_F(MergeBmp, ASourceThatIsAllBackgroundWritesNoPixel) {
    const ByteList painted = BmpFile(2, 3);
    dir_.write("tile.bmp", BmpFile(2, 3).plain(1, 2, 3));
    makeOld(dir_.write("map.bmp", painted));
    {
        const FullDisk nothingFits(0);
        EXPECT_EQ(mergeAgain(), 0.0f);
    }
    EXPECT_EQ(readBytes(map()), painted);
    EXPECT_FALSE(isOld(map()));
}

TEST_F(MergeBmp, RefusesPairsThatDoNotMatchAndLeavesThemAsTheyAre) {
    const struct {
        const char* what;
        ByteList tile, map;
        float status;
    } rows[] = {
        {"width", BmpFile(3, 2), BmpFile(2, 2), -30.0f},
        {"height", BmpFile(3, 2), BmpFile(3, 3), -30.0f},
        {"sides exchanged", BmpFile(3, 2), BmpFile(2, 3), -30.0f},
        {"offset", BmpFile(3, 2).pixelOffset(56), BmpFile(3, 2), -40.0f},
        {"depth", BmpFile(3, 2), BmpFile(3, 2).bitsPerPixel(32), -40.0f},
        {"width and depth", BmpFile(3, 2), BmpFile(2, 2).bitsPerPixel(32), -30.0f},
        {"source no BMP", BmpFile(3, 2).signature('B', 'A'), BmpFile(3, 2), -7.0f},
        {"target no BMP", BmpFile(3, 2), BmpFile(3, 2).signature('P', 'M'), -7.0f},
        {"target no BMP, sizes differ", BmpFile(3, 2), BmpFile(2, 2).signature('P', 'M'), -7.0f},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(merge(row.tile, row.map), row.status) << row.what;
        EXPECT_EQ(readBytes(tile()), row.tile) << row.what;
        EXPECT_EQ(readBytes(map()), row.map) << row.what;
    }
}

TEST_F(MergeBmp, SaysWhichFileIsMissingTheTargetFirst) {
    const std::string none = dir_.path("none.bmp");
    dir_.write("map.bmp", BmpFile(3, 2));
    dir_.write("text.bmp", std::string_view("no image"));
    EXPECT_EQ(mergeBMP(none.c_str(), none.c_str()), -1760.0f);
    EXPECT_EQ(mergeBMP(map().c_str(), none.c_str()), -1760.0f);
    EXPECT_EQ(mergeBMP(none.c_str(), map().c_str()), -1770.0f);
    EXPECT_EQ(mergeBMP(none.c_str(), dir_.path("text.bmp").c_str()), -7.0f);
    EXPECT_EQ(mergeBMP(nullptr, map().c_str()), -1770.0f);
    EXPECT_EQ(mergeBMP(map().c_str(), nullptr), -1760.0f);
}

TEST_F(MergeBmp, BothFilesMustBeWritable) {
    const ByteList before = BmpFile(3, 2).plain(1, 2, 3);
    dir_.write("tile.bmp", BmpFile(3, 2));
    dir_.write("map.bmp", before);
    const auto mergeWithRights = [&](unsigned tileRights, unsigned mapRights) {
        std::filesystem::permissions(dir_.path(), perms{0755});
        std::filesystem::permissions(tile(), perms{tileRights});
        std::filesystem::permissions(map(), perms{mapRights});
        const WithoutRoot user;
        return mergeAgain();
    };
    EXPECT_EQ(mergeWithRights(0444, 0666), -101.0f);
    EXPECT_EQ(mergeWithRights(0666, 0444), -201.0f);
    EXPECT_EQ(mergeWithRights(0444, 0444), -101.0f);
    EXPECT_EQ(readBytes(map()), before);
    EXPECT_EQ(mergeWithRights(0666, 0666), 0.0f);
}

TEST_F(MergeBmp, TopDownAndEmptyImagesHaveNoRows) {
    const std::pair<std::int32_t, std::int32_t> sizes[] = {
        {3, -2}, {3, 0}, {0, 2}, {-3, 2}, {-kLargest - 1, kLargest}, {kLargest, -kLargest - 1}};
    for (const auto& [width, height] : sizes) {
        SCOPED_TRACE(testing::Message() << width << " x " << height);
        const ByteList map = BmpFile(3, 2).plain(1, 2, 3).claimSize(width, height);
        expectMerged(BmpFile(3, 2).claimSize(width, height), map, map);
    }
}

// 3 * 1431655766 is 2 more than 2^32.
TEST_F(MergeBmp, SizesBeyondTheFileDoNotWrap) {
    const std::pair<std::int32_t, std::int32_t> sizes[] = {
        {kLargest, kLargest}, {1431655766, 2}, {1431655766, 1}, {65536, 65536}, {4, kLargest}};
    for (const auto& size : sizes) {
        SCOPED_TRACE(testing::Message() << size.first << " x " << size.second);
        const auto file = [&](const ByteList& pixels) -> ByteList {
            return BmpFile(4, 1).pixels(pixels).claimSize(size.first, size.second);
        };
        expectMerged(file({9, 9, 9, 1, 2, 3, 7, 7, 7, 5, 5, 5}),
                     file({9, 9, 9, 9, 9, 9, 4, 5, 6, 9, 9, 9}),
                     file({9, 9, 9, 1, 2, 3, 4, 5, 6, 5, 5, 5}));
    }
}

TEST_F(MergeBmp, PixelsThatStartBeyondTheFileAreNone) {
    for (const std::uint32_t offset : {66u, 67u, 0x7FFFFFFFu, 0xFFFFFFFFu}) {
        SCOPED_TRACE(offset);
        const ByteList map = BmpFile(3, 1).plain(1, 2, 3).claimPixelOffset(offset);
        expectMerged(BmpFile(3, 1).claimPixelOffset(offset), map, map);
    }
}

// 3 x 3 pixels, rows of 12 bytes from byte 54 on, the target all background.
TEST_F(MergeBmp, MergesThePixelsThatBothFilesHave) {
    const ByteList tile = BmpFile(3, 3).padding(0x11);
    const BmpFile background = BmpFile(3, 3).plain(1, 2, 3).padding(0x22);
    for (std::size_t length = 54; length <= 90; ++length) {
        SCOPED_TRACE(length);
        ByteList expected = background;
        for (std::size_t row = 54; row < 90; row += 12) {
            for (std::size_t at = row; at < row + 9 && at + 3 <= length; at += 3)
                std::copy_n(&tile[at], 3, &expected[at]);
        }
        expectMerged(BmpFile(3, 3).cut(length), background, expected);
        expectMerged(tile, background.cut(length), firstBytes(expected, length));
    }
}

TEST_F(MergeBmp, AFullDiskEndsTheMergeWithoutAStatus) {
    dir_.write("tile.bmp", BmpFile(2, 3));
    dir_.write("map.bmp", BmpFile(2, 3).plain(1, 2, 3));
    {
        const FullDisk disk(54 + 8);  // one row
        EXPECT_EQ(mergeAgain(), 0.0f);
    }
    EXPECT_THAT(bmpPixelsOf(map()), testing::ElementsAre(1, 2, 3, 4, 5, 6, 1, 2, 3, 1, 2, 3,  //
                                                         1, 2, 3, 1, 2, 3));
}

TEST_F(MergeBmp, LeavesNoFileOpen) {
    const std::ptrdiff_t before = openFiles();
    EXPECT_EQ(merge(BmpFile(3, 2), BmpFile(3, 2)), 0.0f);
    EXPECT_EQ(merge(BmpFile(3, 2), BmpFile(3, 3)), -30.0f);
    EXPECT_EQ(merge(BmpFile(3, 2), BmpFile(3, 2).cut(20)), -7.0f);
    EXPECT_EQ(openFiles(), before);
}

}  // namespace
