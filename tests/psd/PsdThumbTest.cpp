#include <gmock/gmock.h>

#include <utility>

#include "psd/PsdOps.h"
#include "support/Faults.h"
#include "support/PsdFile.h"

namespace {

using testing::ElementsAre;
using testing::ElementsAreArray;

// Three planes whose samples say where they come from, from 1 on: row, column, and both.
PsdFile places(std::uint32_t width, std::uint32_t height) {
    return drawnPsd(width, height, [](auto plane, auto row, auto column) {
        return plane == 0 ? row + 1 : plane == 1 ? column + 1 : 10 * (row + 1) + column + 1;
    });
}

// The third plane of the thumbnail: row and column of the map in decimal, each from 1 on.
std::vector<int> thumbOf(std::uint32_t width, std::uint32_t height, int size) {
    const TempDir dir;
    const std::string map = dir.write("map.psd", places(width, height));
    EXPECT_EQ(createThumb(map.c_str(), size), 0.0f);
    const auto plane = static_cast<std::size_t>(size * size);
    const ByteList third = imageData(map, 40 + 2 * plane);
    EXPECT_EQ(third.size(), plane);
    return {third.begin(), third.end()};
}

TEST(CreateThumb, EveryStepthRowAndColumnIsShown) {
    EXPECT_THAT(thumbOf(4, 4, 2), ElementsAre(11, 13, 31, 33));
    EXPECT_THAT(thumbOf(6, 6, 2), ElementsAre(11, 14, 41, 44));
    EXPECT_THAT(thumbOf(3, 3, 1), ElementsAre(11));
    EXPECT_THAT(thumbOf(2, 2, 2), ElementsAre(11, 12, 21, 22));
}

TEST(CreateThumb, AWidePictureIsBetweenBlackRows) {
    EXPECT_THAT(thumbOf(8, 4, 4), ElementsAreArray({0, 0, 0, 0,      //
                                                    11, 13, 15, 17,  //
                                                    31, 33, 35, 37,  //
                                                    0, 0, 0, 0}));
}

TEST(CreateThumb, AHighPictureIsBetweenBlackColumns) {
    EXPECT_THAT(thumbOf(4, 8, 4), ElementsAreArray({0, 11, 13, 0,  //
                                                    0, 31, 33, 0,  //
                                                    0, 51, 53, 0,  //
                                                    0, 71, 73, 0}));
}

TEST(CreateThumb, ASmallPictureIsNotEnlarged) {
    EXPECT_THAT(thumbOf(2, 1, 4), ElementsAreArray({0, 0, 0, 0,    //
                                                    11, 12, 0, 0,  //
                                                    0, 0, 0, 0,    //
                                                    0, 0, 0, 0}));
    EXPECT_THAT(thumbOf(1, 2, 4), ElementsAreArray({0, 11, 0, 0,  //
                                                    0, 21, 0, 0,  //
                                                    0, 0, 0, 0,   //
                                                    0, 0, 0, 0}));
}

// One more is left out after each place where 8 = 2 x 3 + 2 or 5 = 1 x 3 + 2, after every second
// where 10 = 2 x 4 + 2.
TEST(CreateThumb, WhatTheStepLeavesOverIsSpread) {
    EXPECT_THAT(thumbOf(8, 8, 3), ElementsAre(11, 14, 17, 41, 44, 47, 71, 74, 77));
    EXPECT_THAT(thumbOf(10, 10, 4), ElementsAreArray({11, 13, 16, 18,  //
                                                      31, 33, 36, 38,  //
                                                      61, 63, 66, 68,  //
                                                      81, 83, 86, 88}));
    EXPECT_THAT(thumbOf(5, 5, 3), ElementsAre(11, 13, 15, 31, 33, 35, 51, 53, 55));
}

TEST(CreateThumb, EveryRowShowsTheSameColumns) {
    // 7 = 1 x 5 + 2, one more after every second place, and a row has an odd number of places.
    EXPECT_THAT(thumbOf(7, 7, 5), ElementsAreArray({11, 12, 14, 15, 17,  //
                                                    21, 22, 24, 25, 27,  //
                                                    41, 42, 44, 45, 47,  //
                                                    51, 52, 54, 55, 57,  //
                                                    71, 72, 74, 75, 77}));
}

// 8 = 1 x 5 + 3: one more after each place is more than is left over.
TEST(CreateThumb, PlacesPastTheLastRowOrColumnAreBlack) {
    EXPECT_THAT(thumbOf(8, 8, 5), ElementsAreArray({11, 13, 15, 17, 0,  //
                                                    31, 33, 35, 37, 0,  //
                                                    51, 53, 55, 57, 0,  //
                                                    71, 73, 75, 77, 0,  //
                                                    0,  0,  0,  0,  0}));
}

// With a step of 1 the picture's 6 columns do not fit into 4 places.
TEST(CreateThumb, ThePictureStartsAtTheBorderAtMost) {
    EXPECT_THAT(thumbOf(6, 7, 4), ElementsAreArray({11, 12, 14, 15,  //
                                                    31, 32, 34, 35,  //
                                                    51, 52, 54, 55,  //
                                                    71, 72, 74, 75}));
}

TEST(CreateThumb, OnlyTheSizeChangesInTheHeader) {
    const TempDir dir;
    const std::string map = dir.write(
        "map.psd", PsdFile(2, 2).channels(4).resources(3).layers(2).reserved(7).filled(16, 6));
    EXPECT_EQ(createThumb(map.c_str(), 1), 0.0f);
    EXPECT_EQ(readBytes(map),
              PsdFile(1, 1).channels(4).resources(3).layers(2).reserved(7).filled(3, 6).bytes());
}

TEST(CreateThumb, APictureWithoutPixelsIsBlack) {
    for (const auto& [width, height] : {std::pair{0u, 0u}, {0u, 9u}, {0xFFFFFFFFu, 0u}}) {
        const TempDir dir;
        const std::string map = dir.write("map.psd", PsdFile(width, height));
        EXPECT_EQ(createThumb(map.c_str(), 2), 0.0f);
        EXPECT_EQ(readBytes(map), PsdFile(2, 2).filled(12, 0).bytes());
    }
}

TEST(CreateThumb, SizesOutOfRangeLeaveTheFileAsItWas) {
    const TempDir dir;
    const ByteList bytes = PsdFile(2, 2).filled(12, 6);
    const std::string map = dir.write("map.psd", bytes);
    for (const int size : {0, -1, -2147483647 - 1, 30001, 46341, 2147483647})
        EXPECT_EQ(createThumb(map.c_str(), size), -9.0f) << size;
    EXPECT_EQ(readBytes(map), bytes);
}

// A full disk is not reported: the thumbnail ends where the disk did, at its headers or within its
// first plane.
TEST(CreateThumb, EndsWhereTheDiskIsFull) {
    for (const std::size_t room : {10u, 1000u}) {
        const TempDir dir;
        const std::string map = dir.write("map.psd", PsdFile(2, 2).filled(12, 6));
        {
            const FullDisk disk(room);
            EXPECT_EQ(createThumb(map.c_str(), 600), 0.0f);
        }
        EXPECT_EQ(readBytes(map).size(), room);
    }
}

// Planes of 360000 bytes, larger than the pieces in which they are written. The picture's two rows
// are below 299 black ones.
TEST(CreateThumb, AThumbnailOfManyPiecesIsWrittenWhole) {
    const TempDir dir;
    const std::string map =
        dir.write("map.psd", PsdFile(2, 2).planes({1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12}));
    EXPECT_EQ(createThumb(map.c_str(), 600), 0.0f);
    ByteList expected = PsdFile(600, 600).filled(3 * 360000, 0);
    std::uint8_t sample = 1;
    for (std::size_t plane = 0; plane < 3; ++plane) {
        for (const std::size_t place : {179400u, 179401u, 180000u, 180001u})
            expected[40 + plane * 360000 + place] = sample++;
    }
    EXPECT_TRUE(readBytes(map) == expected);
}

// Rows that are near to each other are read with what is between them, others one by one.
TEST(CreateThumb, ALargeMapShowsTheSamplesOfItsRows) {
    const auto sample = [](auto plane, auto row, auto column) {
        return (row * 7 + column * 13 + plane * 31) % 251;
    };
    const TempDir dir;
    for (const std::uint32_t step : {2u, 100u}) {
        const std::uint32_t size = 1000 / step;
        const std::string map = dir.write("map.psd", drawnPsd(1000, 1000, sample));
        EXPECT_EQ(createThumb(map.c_str(), static_cast<int>(size)), 0.0f);
        const auto shown = [&](auto plane, auto row, auto column) {
            return sample(plane, row * step, column * step);
        };
        EXPECT_TRUE(readBytes(map) == drawnPsd(size, size, shown).bytes()) << step;
    }
}

}  // namespace
