#include <gmock/gmock.h>

#include <algorithm>

#include "psd/PsdOps.h"
#include "support/PsdFile.h"

namespace {

using testing::ElementsAre;

// Merges `source` over `target` and returns the status.
struct Merge {
    Merge(const ByteList& source, const ByteList& target)
        : sourcePath(dir.write("1001.psd", source)), targetPath(dir.write("all.psd", target)) {
        status = mergePSD(sourcePath.c_str(), targetPath.c_str());
    }

    TempDir dir;
    std::string sourcePath;
    std::string targetPath;
    float status;
};

TEST(MergePsd, PaintedSourcePixelsReplaceTheTargets) {
    const Merge merge(PsdFile(4, 1).pixels({{9, 9, 9}, {1, 2, 3}, {9, 9, 9}, {4, 5, 6}}),
                      PsdFile(4, 1).pixels({{9, 9, 9}, {9, 9, 9}, {7, 7, 7}, {8, 8, 8}}));
    EXPECT_EQ(merge.status, 0.0f);
    EXPECT_THAT(imageData(merge.targetPath), ElementsAre(9, 1, 7, 4, 9, 2, 7, 5, 9, 3, 7, 6));
}

TEST(MergePsd, OneDifferingChannelCopiesAllThree) {
    const Merge merge(PsdFile(4, 1).pixels({{9, 9, 9}, {0, 9, 9}, {9, 0, 9}, {9, 9, 0}}),
                      PsdFile(4, 1).pixels({{9, 9, 9}, {5, 5, 5}, {5, 5, 5}, {5, 5, 5}}));
    EXPECT_EQ(merge.status, 0.0f);
    EXPECT_THAT(imageData(merge.targetPath), ElementsAre(9, 0, 9, 9, 9, 9, 0, 9, 9, 9, 9, 0));
}

TEST(MergePsd, TheTargetsFirstPixelIsTheBackground) {
    const Merge merge(PsdFile(3, 1).pixels({{9, 9, 9}, {1, 2, 3}, {4, 5, 6}}),
                      PsdFile(3, 1).pixels({{1, 2, 3}, {7, 7, 7}, {8, 8, 8}}));
    EXPECT_EQ(merge.status, 0.0f);
    EXPECT_THAT(imageData(merge.targetPath), ElementsAre(9, 7, 4, 9, 7, 5, 9, 7, 6));
}

// The target's first pixel is overwritten on the way; what counts is what it was.
TEST(MergePsd, TheBackgroundOfA16BitMapIsReadOnce) {
    const Merge merge(PsdFile(3, 1).grey16().planes({1, 2, 0, 9, 1, 2}),
                      PsdFile(3, 1).grey16().planes({0, 9, 5, 5, 6, 6}));
    EXPECT_EQ(merge.status, 0.0f);
    EXPECT_THAT(imageData(merge.targetPath), ElementsAre(1, 2, 5, 5, 1, 2));
}

TEST(MergePsd, SixteenBitGreyIsMergedTwoBytesAtATime) {
    const Merge merge(PsdFile(4, 1).grey16().planes({1, 2, 1, 0, 0, 2, 1, 2}),
                      PsdFile(4, 1).grey16().planes({1, 2, 5, 5, 6, 6, 7, 7}));
    EXPECT_EQ(merge.status, 0.0f);
    EXPECT_THAT(imageData(merge.targetPath), ElementsAre(1, 2, 1, 0, 0, 2, 7, 7));
}

TEST(MergePsd, ASourceOfBackgroundRewritesTheSameBytes) {
    const ByteList target =
        PsdFile(2, 1).resources(3).layers(2).reserved(5).pixels({{9, 9, 9}, {1, 2, 3}});
    const Merge merge(PsdFile(2, 1).resources(3).layers(2).pixels({{9, 9, 9}, {9, 9, 9}}), target);
    EXPECT_EQ(merge.status, 0.0f);
    EXPECT_EQ(readBytes(merge.targetPath), target);
}

TEST(MergePsd, FurtherPlanesAndBytesStayTheTargets) {
    const Merge merge(PsdFile(2, 1).channels(4).planes({9, 1, 9, 2, 9, 3, 80, 81}),
                      PsdFile(2, 1).channels(4).planes({9, 9, 9, 9, 9, 9, 70, 71, 99}));
    EXPECT_EQ(merge.status, 0.0f);
    EXPECT_THAT(imageData(merge.targetPath), ElementsAre(9, 1, 9, 2, 9, 3, 70, 71, 99));
}

TEST(MergePsd, TheSourceIsOnlyRead) {
    const ByteList source = PsdFile(2, 1).pixels({{9, 9, 9}, {1, 2, 3}});
    const Merge merge(source, PsdFile(2, 1).filled(6, 9));
    EXPECT_EQ(readBytes(merge.sourcePath), source);
}

// Both files are read where one of them has its image data: RGB where the target has it.
TEST(MergePsd, RgbPlanesLieWhereTheTargetHasThem) {
    const Merge merge(PsdFile(1, 1).resources(2).planes({7, 8, 9}),
                      PsdFile(1, 1).planes({5, 5, 5}));
    EXPECT_EQ(merge.status, 0.0f);
    EXPECT_THAT(imageData(merge.targetPath), ElementsAre(0, 0, 7));
}

TEST(MergePsd, GreyPlanesLieWhereTheSourceHasThem) {
    const Merge merge(PsdFile(1, 1).grey16().planes({7, 8}),
                      PsdFile(1, 1).grey16().resources(2).planes({5, 5}));
    EXPECT_EQ(merge.status, 0.0f);
    EXPECT_THAT(imageData(merge.targetPath, 36), ElementsAre(0, 0, 0, 0, 7, 8, 5, 5));
}

TEST(MergePsd, AnotherKindIsRefused) {
    struct Kind {
        std::uint16_t depth, mode;
        float status;
    };
    for (const auto& [depth, mode, status] :
         {Kind{8, 1, 36.0f}, Kind{16, 3, 36.0f}, Kind{32, 1, 36.0f}, Kind{8, 4, 36.0f},
          Kind{1, 0, 36.0f}, Kind{8, 3, 0.0f}}) {
        const ByteList file = PsdFile(2, 1).depth(depth).colourMode(mode).filled(48, 3);
        const Merge merge(file, file);
        EXPECT_EQ(merge.status, status) << depth << " bits, mode " << mode;
        EXPECT_EQ(readBytes(merge.targetPath), file);
    }
}

TEST(MergePsd, TheKindIsTheSources) {
    const Merge merge(PsdFile(2, 1).grey16().planes({5, 5, 1, 2}),
                      PsdFile(2, 1).planes({5, 5, 6, 6, 7, 7}));
    EXPECT_EQ(merge.status, 0.0f);
    EXPECT_THAT(imageData(merge.targetPath), ElementsAre(5, 5, 1, 2, 7, 7));
}

TEST(MergePsd, DifferentSizesAreRefused) {
    const ByteList target = PsdFile(2, 3).filled(18, 9);
    EXPECT_EQ(Merge(PsdFile(3, 3).filled(27, 1), target).status, -6.0f);
    EXPECT_EQ(Merge(PsdFile(2, 2).filled(12, 1), target).status, -6.0f);
    const Merge exchanged(PsdFile(3, 2).filled(18, 1), target);
    EXPECT_EQ(exchanged.status, -6.0f);
    EXPECT_EQ(readBytes(exchanged.targetPath), target);
}

TEST(MergePsd, EachHeaderGivesItsStatusTheTargetsFirst) {
    const ByteList good = PsdFile(1, 1).planes({1, 2, 3});
    const ByteList large = PsdFile(1, 1).version(2);
    const ByteList packed = PsdFile(1, 1).compression(1);
    EXPECT_EQ(Merge(good, large).status, -2.0f);
    EXPECT_EQ(Merge(packed, good).status, -4.0f);
    EXPECT_EQ(Merge(packed, large).status, -2.0f);
    EXPECT_EQ(Merge(PsdFile(1, 1).colourTable(768), good).status, -3.0f);
    EXPECT_EQ(Merge(ByteList{}, good).status, -1.0f);
}

TEST(MergePsd, MissingFilesAreRefused) {
    const TempDir dir;
    const std::string map = dir.write("map.psd", PsdFile(1, 1).planes({1, 2, 3}));
    EXPECT_EQ(mergePSD(dir.path("no.psd").c_str(), map.c_str()), -1.0f);
    EXPECT_EQ(mergePSD(map.c_str(), dir.path("no.psd").c_str()), -1.0f);
    EXPECT_THAT(dir.names(), ElementsAre("map.psd"));
}

TEST(MergePsd, AMapMergedWithItselfStaysAsItWas) {
    const TempDir dir;
    const ByteList bytes = PsdFile(2, 1).pixels({{9, 9, 9}, {1, 2, 3}});
    const std::string map = dir.write("map.psd", bytes);
    EXPECT_EQ(mergePSD(map.c_str(), map.c_str()), 0.0f);
    EXPECT_EQ(readBytes(map), bytes);
}

TEST(MergePsd, APictureWithoutPixelsIsMerged) {
    const ByteList file = PsdFile(0, 5);
    EXPECT_EQ(Merge(file, file).status, 0.0f);
}

// A map of 100 x 90 in three strips of thirty rows, each a tile of its own: more pixels than one
// block of the merge, and not a whole number of blocks.
std::vector<std::array<std::uint8_t, 3>> strip(std::size_t tile) {
    std::vector<std::array<std::uint8_t, 3>> pixels(9000, {128, 128, 128});
    for (std::size_t i = tile * 3000 + 1; i < (tile + 1) * 3000; ++i)
        pixels[i] = {static_cast<std::uint8_t>(i % 100), static_cast<std::uint8_t>(i / 100),
                     static_cast<std::uint8_t>(200 + tile)};
    return pixels;
}

TEST(MergePsd, DisjointTilesInAnyOrderGiveTheSameMap) {
    std::vector<std::array<std::uint8_t, 3>> all(9000, {128, 128, 128});
    for (std::size_t i = 0; i < all.size(); ++i)
        if (i % 3000 != 0) all[i] = strip(i / 3000)[i];
    const ByteList expected = PsdFile(100, 90).pixels(all);

    const TempDir dir;
    std::vector<std::string> tiles;
    for (const std::size_t tile : {0u, 1u, 2u})
        tiles.push_back(dir.write(std::to_string(tile), PsdFile(100, 90).pixels(strip(tile))));
    std::vector<std::size_t> order = {0, 1, 2};
    do {
        const std::string map = dir.write("map.psd", PsdFile(100, 90).filled(27000, 128));
        for (const std::size_t tile : order)
            EXPECT_EQ(mergePSD(tiles[tile].c_str(), map.c_str()), 0.0f);
        EXPECT_TRUE(readBytes(map) == expected) << testing::PrintToString(order);
    } while (std::next_permutation(order.begin(), order.end()));
}

TEST(MergePsd, MergingATileAgainChangesNothing) {
    const TempDir dir;
    const std::string tile = dir.write("tile", PsdFile(100, 90).pixels(strip(1)));
    const std::string map = dir.write("map", PsdFile(100, 90).filled(27000, 128));
    EXPECT_EQ(mergePSD(tile.c_str(), map.c_str()), 0.0f);
    const ByteList once = readBytes(map);
    EXPECT_EQ(mergePSD(tile.c_str(), map.c_str()), 0.0f);
    EXPECT_TRUE(readBytes(map) == once);
}

}  // namespace
