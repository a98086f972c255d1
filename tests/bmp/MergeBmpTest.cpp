#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>

#include "bmp/BmpHeader.h"
#include "bmp/BmpOps.h"
#include "support/BmpFile.h"
#include "support/Faults.h"

namespace {

using std::filesystem::perms;
using testing::ElementsAre;

constexpr std::int32_t kLargest = 2147483647;

// A tile and a map in a folder of their own.
class MergeBmp : public testing::Test {
protected:
    float merge(const ByteList& tile, const ByteList& map) {
        dir_.write("tile.bmp", tile);
        dir_.write("map.bmp", map);
        return mergeAgain();
    }
    float mergeAgain() const {
        return mergeBMP(dir_.path("tile.bmp").c_str(), dir_.path("map.bmp").c_str());
    }
    std::string map() const { return dir_.path("map.bmp"); }
    std::string tile() const { return dir_.path("tile.bmp"); }

    const TempDir dir_;
};

TEST_F(MergeBmp, FillsOnlyBackgroundPixels) {
    EXPECT_EQ(merge(BmpFile(3, 1).pixels({9, 9, 9, 1, 2, 3, 7, 7, 7}),
                    BmpFile(3, 1).pixels({9, 9, 9, 9, 9, 9, 4, 5, 6})),
              0.0f);
    EXPECT_THAT(bmpPixelsOf(map()), ElementsAre(9, 9, 9, 1, 2, 3, 4, 5, 6));
}

TEST_F(MergeBmp, BackgroundIsTheSourcesBottomLeftPixel) {
    EXPECT_EQ(merge(BmpFile(1, 3).pixels({5, 6, 7, 1, 1, 1, 2, 2, 2}),
                    BmpFile(1, 3).pixels({0, 0, 0, 0, 0, 0, 5, 6, 7})),
              0.0f);
    EXPECT_THAT(bmpPixelsOf(map()), ElementsAre(0, 0, 0, 0, 0, 0, 2, 2, 2));
}

TEST_F(MergeBmp, KeepsAPixelThatMatchesInTwoChannelsOnly) {
    EXPECT_EQ(merge(BmpFile(4, 1).pixels({9, 9, 9, 1, 1, 1, 1, 1, 1, 1, 1, 1}),
                    BmpFile(4, 1).pixels({9, 9, 9, 8, 9, 9, 9, 8, 9, 9, 9, 8})),
              0.0f);
    EXPECT_THAT(bmpPixelsOf(map()), ElementsAre(9, 9, 9, 8, 9, 9, 9, 8, 9, 9, 9, 8));
}

TEST_F(MergeBmp, LeavesAMapWithoutBackgroundAsItIs) {
    const ByteList before = BmpFile(3, 2).plain(4, 5, 6).padding(0xEE);
    EXPECT_EQ(merge(BmpFile(3, 2), before), 0.0f);
    EXPECT_EQ(readBytes(map()), before);
}

TEST_F(MergeBmp, TakesNoPaddingFromTheSource) {
    EXPECT_EQ(merge(BmpFile(1, 2).pixels({9, 9, 9, 1, 2, 3}).padding(0x11),
                    BmpFile(1, 2).plain(9, 9, 9).padding(0x22)),
              0.0f);
    EXPECT_EQ(readBytes(map()), ByteList(BmpFile(1, 2).pixels({9, 9, 9, 1, 2, 3}).padding(0x22)));
}

// Three bytes of padding could be taken for one more pixel; those of a row longer than a piece come
// with the row's end.
TEST_F(MergeBmp, TakesNoPaddingForAPixel) {
    for (const std::int32_t width : {3, 87383}) {
        const auto grey = [&] { return BmpFile(width, 2).plain(7, 7, 7).pixel(2, 1, 1, 2, 3); };
        EXPECT_EQ(merge(grey(), BmpFile(width, 2).plain(7, 7, 7).padding(7)), 0.0f);
        EXPECT_TRUE(readBytes(map()) == ByteList(grey().padding(7))) << width;
    }
}

TEST_F(MergeBmp, KeepsWhatLiesBeforeAndAfterTheRows) {
    ByteList tile = BmpFile(2, 1).pixels({9, 9, 9, 1, 2, 3}).pixelOffset(70, 0x11);
    ByteList before = BmpFile(2, 1).plain(9, 9, 9).pixelOffset(70, 0x22);
    tile.insert(tile.end(), 5, 1);
    before.insert(before.end(), 5, 9);
    EXPECT_EQ(merge(tile, before), 0.0f);

    ByteList after = BmpFile(2, 1).pixels({9, 9, 9, 1, 2, 3}).pixelOffset(70, 0x22);
    after.insert(after.end(), 5, 9);
    EXPECT_EQ(readBytes(map()), after);
}

TEST_F(MergeBmp, NeverChangesTheSource) {
    const ByteList before = BmpFile(5, 5);
    EXPECT_EQ(merge(before, BmpFile(5, 5).plain(1, 2, 3)), 0.0f);
    EXPECT_EQ(readBytes(tile()), before);
}

TEST_F(MergeBmp, AMapMergedWithItselfStaysAsItIs) {
    const ByteList before = BmpFile(5, 5).plain(1, 2, 3);
    dir_.write("map.bmp", before);
    EXPECT_EQ(mergeBMP(map().c_str(), map().c_str()), 0.0f);
    EXPECT_EQ(readBytes(map()), before);
}

// Pieces hold 262144 bytes: whole rows, or parts of one row that is longer. The target is all
// background, so it becomes the source.
TEST_F(MergeBmp, WorksThroughImagesOfManyPieces) {
    const struct {
        std::int32_t width, height;
    } sizes[] = {
        {1000, 300},  // 87 rows a piece
        {87381, 3},   // a row of exactly a piece
        {87382, 2},   // longer by a pixel
        {100001, 2},  // a piece and a bit
        {174762, 2},  // pixels end with the second piece; the third is padding alone
        {1, 100000},  // 65536 rows a piece
    };
    for (const auto& [width, height] : sizes) {
        EXPECT_EQ(merge(BmpFile(width, height), BmpFile(width, height).plain(1, 2, 3).padding(7)),
                  0.0f);
        EXPECT_TRUE(readBytes(map()) == ByteList(BmpFile(width, height).padding(7)))
            << width << " x " << height;
    }
}

TEST_F(MergeBmp, MergingAgainChangesNothing) {
    EXPECT_EQ(merge(BmpFile(50, 50), BmpFile(50, 50).plain(1, 2, 3).pixel(3, 4, 9, 9, 9)), 0.0f);
    const ByteList once = readBytes(map());
    EXPECT_EQ(mergeAgain(), 0.0f);
    EXPECT_EQ(readBytes(map()), once);
}

TEST_F(MergeBmp, DisjointTilesGiveTheSameMapInAnyOrder) {
    const auto empty = [] { return BmpFile(3, 2).plain(0, 0, 0); };
    const ByteList tiles[] = {empty().pixel(1, 0, 1, 1, 1), empty().pixel(2, 0, 2, 2, 2),
                              empty().pixel(0, 1, 3, 3, 3)};
    int order[] = {0, 1, 2};
    do {
        dir_.write("map.bmp", empty());
        for (const int next : order) {
            dir_.write("tile.bmp", tiles[next]);
            EXPECT_EQ(mergeAgain(), 0.0f);
        }
        EXPECT_THAT(bmpPixelsOf(map()),
                    ElementsAre(0, 0, 0, 1, 1, 1, 2, 2, 2, 3, 3, 3, 0, 0, 0, 0, 0, 0));
    } while (std::next_permutation(std::begin(order), std::end(order)));
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

TEST_F(MergeBmp, TellsWhichFileIsMissingTheTargetFirst) {
    const std::string none = dir_.path("none.bmp");
    dir_.write("map.bmp", BmpFile(3, 2));
    dir_.write("text.bmp", std::string_view("no image"));
    EXPECT_EQ(mergeBMP(none.c_str(), none.c_str()), -1760.0f);
    EXPECT_EQ(mergeBMP(map().c_str(), none.c_str()), -1760.0f);
    EXPECT_EQ(mergeBMP(none.c_str(), map().c_str()), -1770.0f);
    EXPECT_EQ(mergeBMP(none.c_str(), dir_.path("text.bmp").c_str()), -7.0f);
    EXPECT_EQ(mergeBMP(nullptr, map().c_str()), -1770.0f);
    EXPECT_EQ(mergeBMP(map().c_str(), nullptr), -1760.0f);
    EXPECT_EQ(mergeBMP(map().c_str(), dir_.path().c_str()), -1760.0f);  // a folder
}

TEST_F(MergeBmp, BothFilesMustBeWritable) {
    const ByteList before = BmpFile(3, 2).plain(1, 2, 3);
    dir_.write("tile.bmp", BmpFile(3, 2));
    dir_.write("map.bmp", before);
    const auto mergeWithRights = [&](unsigned tileRights, unsigned mapRights) {
        permissions(std::filesystem::path(dir_.path()), static_cast<perms>(0755));
        permissions(std::filesystem::path(tile()), static_cast<perms>(tileRights));
        permissions(std::filesystem::path(map()), static_cast<perms>(mapRights));
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
        const ByteList before = BmpFile(3, 2).plain(1, 2, 3).claimSize(width, height);
        EXPECT_EQ(merge(BmpFile(3, 2).claimSize(width, height), before), 0.0f);
        EXPECT_EQ(readBytes(map()), before) << width << " x " << height;
    }
}

// 3 * 1431655766 is 2 more than 2^32.
TEST_F(MergeBmp, SizesBeyondTheFileDoNotWrap) {
    const std::pair<std::int32_t, std::int32_t> sizes[] = {
        {kLargest, kLargest}, {1431655766, 2}, {1431655766, 1}, {65536, 65536}, {4, kLargest}};
    for (const auto& [width, height] : sizes) {
        EXPECT_EQ(
            merge(
                BmpFile(4, 1).pixels({9, 9, 9, 1, 2, 3, 7, 7, 7, 5, 5, 5}).claimSize(width, height),
                BmpFile(4, 1)
                    .pixels({9, 9, 9, 9, 9, 9, 4, 5, 6, 9, 9, 9})
                    .claimSize(width, height)),
            0.0f);
        EXPECT_EQ(readBytes(map()), ByteList(BmpFile(4, 1)
                                                 .pixels({9, 9, 9, 1, 2, 3, 4, 5, 6, 5, 5, 5})
                                                 .claimSize(width, height)))
            << width << " x " << height;
    }
}

TEST_F(MergeBmp, PixelsThatStartBeyondTheFileAreNone) {
    for (const std::uint32_t offset : {66u, 67u, 0x7FFFFFFFu, 0xFFFFFFFFu}) {
        const ByteList before = BmpFile(3, 1).plain(1, 2, 3).claimPixelOffset(offset);
        EXPECT_EQ(merge(BmpFile(3, 1).claimPixelOffset(offset), before), 0.0f);
        EXPECT_EQ(readBytes(map()), before) << offset;
    }
}

// 3 x 3 pixels, rows of 12 bytes from byte 54 on, the target all background.
TEST_F(MergeBmp, MergesThePixelsThatBothFilesHave) {
    const ByteList tile = BmpFile(3, 3).padding(0x11);
    const BmpFile background = BmpFile(3, 3).plain(1, 2, 3).padding(0x22);
    for (std::size_t length = 54; length <= 90; ++length) {
        ByteList expected = background;
        for (std::size_t row = 54; row < 90; row += 12) {
            for (std::size_t at = row; at < row + 9 && at + 3 <= length; at += 3)
                std::copy_n(tile.begin() + static_cast<std::ptrdiff_t>(at), 3,
                            expected.begin() + static_cast<std::ptrdiff_t>(at));
        }
        EXPECT_EQ(merge(BmpFile(3, 3).cut(length), background), 0.0f);
        EXPECT_EQ(readBytes(map()), expected) << "source of " << length;

        expected.resize(length);
        EXPECT_EQ(merge(tile, background.cut(length)), 0.0f);
        EXPECT_EQ(readBytes(map()), expected) << "target of " << length;
    }
}

TEST_F(MergeBmp, AFullDiskEndsTheMergeWithoutAStatus) {
    dir_.write("tile.bmp", BmpFile(4, 3));
    dir_.write("map.bmp", BmpFile(4, 3).plain(1, 2, 3));
    {
        const FullDisk disk(54 + 12);  // one row
        EXPECT_EQ(mergeAgain(), 0.0f);
    }
    EXPECT_THAT(bmpPixelsOf(map()),
                ElementsAre(1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 1, 2, 3, 1, 2, 3, 1, 2, 3, 1, 2,
                            3, 1, 2, 3, 1, 2, 3, 1, 2, 3, 1, 2, 3));
}

TEST_F(MergeBmp, HoldsOnlyTheSourcesFirstBytesAfterwards) {
    EXPECT_EQ(merge(BmpFile(400, 400), BmpFile(400, 400)), 0.0f);
    EXPECT_EQ(bmpV.size, 100u);
    EXPECT_EQ(merge(BmpFile(1, 2), BmpFile(1, 2)), 0.0f);
    EXPECT_EQ(bmpV.size, 62u);
    EXPECT_EQ(bmpHdr.height, 2);
}

TEST_F(MergeBmp, LeavesNoFileOpen) {
    const std::ptrdiff_t before = openFiles();
    EXPECT_EQ(merge(BmpFile(3, 2), BmpFile(3, 2)), 0.0f);
    EXPECT_EQ(merge(BmpFile(3, 2), BmpFile(3, 3)), -30.0f);
    EXPECT_EQ(merge(BmpFile(3, 2), BmpFile(3, 2).cut(20)), -7.0f);
    EXPECT_EQ(openFiles(), before);
}

}  // namespace
