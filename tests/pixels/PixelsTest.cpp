#include "pixels/Pixels.h"

#include <gtest/gtest.h>

#include <vector>

namespace {

using ByteList = std::vector<std::uint8_t>;

struct FillCase {
    std::size_t pixelBytes;
    ByteList row, source, background, expected;
};

TEST(FillBackground, ReplacesPixelsThatEqualTheBackgroundInEveryByte) {
    const FillCase cases[] = {
        {1, {9, 5, 9}, {1, 2, 3}, {9}, {1, 5, 3}},
        {2, {9, 8, 9, 9, 8, 9}, {1, 2, 3, 4, 5, 6}, {9, 8}, {1, 2, 9, 9, 8, 9}},
        {3, {9, 8, 7, 9, 8, 6}, {1, 2, 3, 4, 5, 6}, {9, 8, 7}, {1, 2, 3, 9, 8, 6}},
        {4,
         {0, 0, 0, 0, 0, 0, 0, 128},
         {1, 2, 3, 4, 5, 6, 7, 8},
         {0, 0, 0, 0},
         {1, 2, 3, 4, 0, 0, 0, 128}},
        {6,
         {1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 2},
         ByteList(12, 5),
         ByteList(6, 1),
         {5, 5, 5, 5, 5, 5, 1, 1, 1, 1, 1, 2}},
        {12, ByteList(12, 1), ByteList(12, 5), ByteList(12, 1), ByteList(12, 5)},
    };
    for (const FillCase& test : cases) {
        ByteList row = test.row;
        fillBackground(row.data(), test.source.data(), test.background.data(),
                       row.size() / test.pixelBytes, test.pixelBytes);
        EXPECT_EQ(row, test.expected) << test.pixelBytes;
    }
}

TEST(FillBackground, LeavesPixelsOfAnotherSizeAlone) {
    for (const std::size_t pixelBytes : {0u, 5u, 8u, 24u}) {
        ByteList row(24, 7);
        const ByteList source(24, 1);
        fillBackground(row.data(), source.data(), ByteList(24, 7).data(), 1, pixelBytes);
        EXPECT_EQ(row, ByteList(24, 7)) << pixelBytes;
    }
}

}  // namespace
