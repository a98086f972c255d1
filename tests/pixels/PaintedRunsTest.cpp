#include "pixels/PaintedRuns.h"

#include <gtest/gtest.h>

#include <utility>
#include <vector>

#include "support/TempDir.h"

namespace {

using Runs = std::vector<std::pair<std::size_t, std::size_t>>;

const ByteList kBackground = {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12};

ByteList emptyRow(std::size_t bytes, std::size_t pixelBytes) {
    ByteList row(bytes);
    for (std::size_t i = 0; i < bytes; ++i)
        row[i] = kBackground[i % pixelBytes];
    return row;
}

Runs runsOf(const ByteList& row, std::size_t pixelBytes = 3) {
    Runs runs;
    forEachRun(PaintedRuns<1>({kBackground.data()}, pixelBytes), {row.data()}, row.size(),
               [&](const PaintedRun& run) {
                   runs.emplace_back(run.start, run.end);
                   return true;
               });
    return runs;
}

TEST(PaintedRuns, BackgroundHasNone) {
    for (const std::size_t pixelBytes : {1u, 2u, 3u, 4u, 6u, 12u}) {
        for (std::size_t pixels = 0; pixels < 50; ++pixels)
            EXPECT_EQ(runsOf(emptyRow(pixels * pixelBytes, pixelBytes), pixelBytes), Runs{});
    }
}

// Blocks have 48 bytes. A row of 600 has twelve, and half a one.
TEST(PaintedRuns, AByteAnywhereMakesItsBlockARun) {
    for (const std::size_t pixelBytes : {1u, 2u, 3u, 4u, 6u, 12u}) {
        for (std::size_t at = 0; at < 600; ++at) {
            ByteList row = emptyRow(600, pixelBytes);
            row[at] ^= 1;
            const std::size_t start = at / 48 * 48;
            EXPECT_EQ(runsOf(row, pixelBytes), (Runs{{start, at < 576 ? start + 48 : 600}})) << at;
        }
    }
}

// 4800 bytes of background are left out, 4752 are not.
TEST(PaintedRuns, ALongGapSeparatesTwoRunsAShortOneDoesNot) {
    ByteList row = emptyRow(9000, 3);
    row[100] = row[100 + 48 + 4752] = 0;
    EXPECT_EQ(runsOf(row), (Runs{{96, 4944}}));
    row = emptyRow(9000, 3);
    row[100] = row[100 + 48 + 4800] = 0;
    EXPECT_EQ(runsOf(row), (Runs{{96, 144}, {4944, 4992}}));
}

TEST(PaintedRuns, APaintedRowIsOneRun) {
    EXPECT_EQ(runsOf(ByteList(10000, 0)), (Runs{{0, 10000}}));
}

TEST(PaintedRuns, EndWhenTheirUserSaysSo) {
    ByteList row = emptyRow(9000, 3);
    row[0] = row[6000] = 0;
    int runs = 0;
    EXPECT_FALSE(forEachRun(PaintedRuns<1>({kBackground.data()}, 3), {row.data()}, row.size(),
                            [&](const PaintedRun&) { return ++runs < 1; }));
    EXPECT_EQ(runs, 1);
}

// Three planes of a byte a sample, whose background is 1, 2, 3.
class PaintedPlanes : public testing::Test {
protected:
    using Places = PaintedRuns<3>::Places;

    PaintedPlanes() {
        for (std::size_t i = 0; i < 3; ++i)
            planes[i].assign(200, kBackground[i]);
    }
    Places places() const { return {planes[0].data(), planes[1].data(), planes[2].data()}; }
    void paint(std::size_t start, std::size_t end) {
        for (std::size_t at = start; at < end; ++at)
            planes[at % 3][at] = 0;
    }

    ByteList planes[3];
    const PaintedRuns<3> painted{{&kBackground[0], &kBackground[1], &kBackground[2]}, 1};
};

TEST_F(PaintedPlanes, AnyPlaneMakesARun) {
    for (ByteList& plane : planes) {
        plane[100] = 0;
        const PaintedRun run = painted.next(places(), 0, 200);
        EXPECT_EQ(std::pair(run.start, run.end), std::pair(std::size_t{96}, std::size_t{144}));
        plane[100] = kBackground[static_cast<std::size_t>(&plane - planes)];
    }
    EXPECT_TRUE(painted.next(places(), 0, 200).isEmpty());
}

TEST_F(PaintedPlanes, ARunIsTrimmedToThePaintedPixels) {
    paint(50, 90);
    const PaintedRun run = painted.trimmed(places(), {48, 144});
    EXPECT_EQ(std::pair(run.start, run.end), std::pair(std::size_t{50}, std::size_t{90}));
}

TEST_F(PaintedPlanes, OneBackgroundPixelAnywhereMakesARunNotSolid) {
    paint(5, 190);
    for (std::size_t hole = 5; hole < 190; ++hole) {
        const std::uint8_t colour = std::exchange(planes[hole % 3][hole], kBackground[hole % 3]);
        EXPECT_FALSE(painted.isSolid(places(), {5, 190})) << hole;
        planes[hole % 3][hole] = colour;
    }
    EXPECT_TRUE(painted.isSolid(places(), {5, 190}));
}

// A sample is background only if both its bytes are.
TEST(PaintedShorts, OneBackgroundSampleAnywhereMakesARunNotSolid) {
    const PaintedRuns<1> painted({kBackground.data()}, 2);
    ByteList row(100);
    for (std::size_t at = 0; at < row.size(); at += 2)
        row[at + at / 2 % 2] = kBackground[at / 2 % 2];
    EXPECT_TRUE(painted.isSolid({row.data()}, {0, 100}));
    for (std::size_t hole = 0; hole < row.size(); hole += 2) {
        ByteList holed = row;
        holed[hole] = 1;
        holed[hole + 1] = 2;
        EXPECT_FALSE(painted.isSolid({holed.data()}, {0, 100})) << hole;
    }
}

}  // namespace
