#include <gmock/gmock.h>

#include "psd/PsdOps.h"
#include "support/PaintedPart.h"
#include "support/PsdFile.h"

namespace {

using testing::ElementsAre;

class MergePsd : public testing::Test {
protected:
    float merge(const ByteList& source, const ByteList& target) const {
        const std::string tile = dir.write("1001.psd", source);
        return mergePSD(tile.c_str(), dir.write("all.psd", target).c_str());
    }
    void expectMerged(const ByteList& source, const ByteList& target,
                      const ByteList& expected) const {
        EXPECT_EQ(merge(source, target), 0.0f);
        EXPECT_EQ(readBytes(dir.path("all.psd")), expected);
        EXPECT_EQ(readBytes(dir.path("1001.psd")), source);
    }

    const TempDir dir;
};

TEST_F(MergePsd, PaintedSourcePixelsReplaceTheTargets) {
    expectMerged(PsdFile(4, 1).pixels({{9, 9, 9}, {1, 2, 3}, {9, 9, 9}, {4, 5, 6}}),
                 PsdFile(4, 1).pixels({{9, 9, 9}, {9, 9, 9}, {7, 7, 7}, {8, 8, 8}}),
                 PsdFile(4, 1).pixels({{9, 9, 9}, {1, 2, 3}, {7, 7, 7}, {4, 5, 6}}));
}

TEST_F(MergePsd, OneDifferingChannelCopiesAllThree) {
    const ByteList tile = PsdFile(4, 1).pixels({{9, 9, 9}, {0, 9, 9}, {9, 0, 9}, {9, 9, 0}});
    expectMerged(tile, PsdFile(4, 1).pixels({{9, 9, 9}, {5, 5, 5}, {5, 5, 5}, {5, 5, 5}}), tile);
}

TEST_F(MergePsd, TheTargetsFirstPixelIsTheBackground) {
    expectMerged(PsdFile(3, 1).pixels({{9, 9, 9}, {1, 2, 3}, {4, 5, 6}}),
                 PsdFile(3, 1).pixels({{1, 2, 3}, {7, 7, 7}, {8, 8, 8}}),
                 PsdFile(3, 1).pixels({{9, 9, 9}, {7, 7, 7}, {4, 5, 6}}));
}

// The target's first pixel is overwritten on the way; its old value is the background.
TEST_F(MergePsd, TheBackgroundOfA16BitMapIsReadOnce) {
    expectMerged(PsdFile(3, 1).grey16().planes({1, 2, 0, 9, 1, 2}),
                 PsdFile(3, 1).grey16().planes({0, 9, 5, 5, 6, 6}),
                 PsdFile(3, 1).grey16().planes({1, 2, 5, 5, 1, 2}));
}

TEST_F(MergePsd, SixteenBitGreyIsMergedTwoBytesAtATime) {
    expectMerged(PsdFile(4, 1).grey16().planes({1, 2, 1, 0, 0, 2, 1, 2}),
                 PsdFile(4, 1).grey16().planes({1, 2, 5, 5, 6, 6, 7, 7}),
                 PsdFile(4, 1).grey16().planes({1, 2, 1, 0, 0, 2, 7, 7}));
}

// A piece holds 65536 bytes of each plane.
TEST_F(MergePsd, AMapOfManyPiecesIsMergedWhole) {
    std::vector<std::array<std::uint8_t, 3>> tile(90000, {9, 9, 9});
    std::vector<std::array<std::uint8_t, 3>> map(90000, {9, 9, 9});
    std::vector<std::array<std::uint8_t, 3>> expected(90000, {9, 9, 9});
    for (std::size_t i = 1; i < 90000; ++i) {
        const auto value = static_cast<std::uint8_t>(i % 251);
        if (i % 3 == 1) map[i] = expected[i] = {value, 1, 2};
        if (i % 3 == 2) tile[i] = expected[i] = {3, value, 4};
    }
    expectMerged(PsdFile(300, 300).pixels(tile), PsdFile(300, 300).pixels(map),
                 PsdFile(300, 300).pixels(expected));
}

// A piece holds 65536 bytes of each plane: as many pixels, or half as many of 16 bits.
TEST_F(MergePsd, APaintedPartIsExactWhereverItBeginsAndEnds) {
    for (const bool grey16 : {false, true}) {
        const auto check = [&](std::size_t pixels, std::size_t start, std::size_t end) {
            const PaintedPart part = paintedPart(pixels, start, end);
            const auto file = [&](const ByteList& map) {
                PsdFile psd(4, static_cast<std::uint32_t>(pixels / 4));
                if (grey16) return psd.grey16().planes(repeatedEach(map, 2)).bytes();
                ByteList planes = map;
                planes.insert(planes.end(), map.begin(), map.end());
                planes.insert(planes.end(), map.begin(), map.end());
                return psd.planes(planes).bytes();
            };
            EXPECT_EQ(merge(file(part.tile), file(part.map)), 0.0f);
            EXPECT_TRUE(readBytes(dir.path("all.psd")) == file(part.laidOver))
                << start << " to " << end;
        };
        forEachPaintedPart(4, grey16 ? 32768 : 65536, check);
    }
}

// The background is the target's first pixel. A source that has nothing else changes no byte, yet the
// target counts as rewritten.
TEST_F(MergePsd, ASourceThatIsAllBackgroundLeavesTheTargetsBytes) {
    const ByteList painted = PsdFile(4, 1).pixels({{9, 9, 9}, {1, 2, 3}, {7, 7, 7}, {4, 5, 6}});
    const std::string tile = dir.write("1001.psd", PsdFile(4, 1).filled(12, 9));
    const std::string all = dir.write("all.psd", painted);
    makeOld(all);
    EXPECT_EQ(mergePSD(tile.c_str(), all.c_str()), 0.0f);
    EXPECT_EQ(readBytes(all), painted);
    EXPECT_FALSE(isOld(all));
}

// A pixel of the background within a painted part shows what the target has there.
TEST_F(MergePsd, AHoleInAPaintedPartIsNotLaidOver) {
    ByteList tile(300, 5);
    tile[0] = tile[100] = tile[200] = 9;
    tile[77] = tile[177] = tile[277] = 9;
    ByteList map(300, 7);
    map[0] = map[100] = map[200] = 9;
    ByteList expected = tile;
    expected[77] = expected[177] = expected[277] = 7;
    expectMerged(PsdFile(10, 10).planes(tile), PsdFile(10, 10).planes(map),
                 PsdFile(10, 10).planes(expected));
}

TEST_F(MergePsd, HeaderFurtherPlanesAndBytesStayTheTargets) {
    const auto target = [](const ByteList& planes) {
        return PsdFile(2, 1).channels(4).resources(3).layers(2).reserved(5).planes(planes).bytes();
    };
    expectMerged(
        PsdFile(2, 1).channels(4).resources(3).layers(2).planes({9, 1, 9, 2, 9, 3, 80, 81}),
        target({9, 9, 9, 9, 9, 9, 70, 71, 99}), target({9, 1, 9, 2, 9, 3, 70, 71, 99}));
}

// Both files are read where one of them has its image data: RGB where the target has it, grey where
// the source has it.
TEST_F(MergePsd, PlanesAreWhereTheTargetHasThemInRgbAndTheSourceInGrey) {
    EXPECT_EQ(merge(PsdFile(1, 1).resources(2).planes({7, 8, 9}), PsdFile(1, 1).filled(3, 5)),
              0.0f);
    EXPECT_THAT(imageData(dir.path("all.psd")), ElementsAre(0, 0, 7));
    EXPECT_EQ(merge(PsdFile(1, 1).grey16().planes({7, 8}),
                    PsdFile(1, 1).grey16().resources(2).planes({5, 5})),
              0.0f);
    EXPECT_THAT(imageData(dir.path("all.psd"), 36), ElementsAre(0, 0, 0, 0, 7, 8, 5, 5));
}

TEST_F(MergePsd, AnotherKindIsRefused) {
    const struct {
        std::uint16_t depth, mode;
        float status;
    } kinds[] = {{8, 1, 36.0f}, {16, 3, 36.0f}, {32, 1, 36.0f},
                 {8, 4, 36.0f}, {1, 0, 36.0f},  {8, 3, 0.0f}};
    for (const auto& [depth, mode, status] : kinds) {
        const ByteList file = PsdFile(2, 1).depth(depth).colourMode(mode).filled(48, 3);
        EXPECT_EQ(merge(file, file), status) << depth << " bits, mode " << mode;
        EXPECT_EQ(readBytes(dir.path("all.psd")), file);
    }
}

TEST_F(MergePsd, TheKindIsTheSources) {
    expectMerged(PsdFile(2, 1).grey16().planes({5, 5, 1, 2}),
                 PsdFile(2, 1).planes({5, 5, 6, 6, 7, 7}),
                 PsdFile(2, 1).planes({5, 5, 1, 2, 7, 7}));
}

TEST_F(MergePsd, DifferentSizesAreRefused) {
    const ByteList target = PsdFile(2, 3).filled(18, 9);
    EXPECT_EQ(merge(PsdFile(3, 3).filled(27, 1), target), -6.0f);
    EXPECT_EQ(merge(PsdFile(2, 2).filled(12, 1), target), -6.0f);
    EXPECT_EQ(merge(PsdFile(3, 2).filled(18, 1), target), -6.0f);
    EXPECT_EQ(readBytes(dir.path("all.psd")), target);
}

TEST_F(MergePsd, APictureWithoutPixelsIsMerged) {
    const ByteList file = PsdFile(0, 5);
    expectMerged(file, file, file);
}

}  // namespace
