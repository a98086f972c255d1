#include "pixels/Pixels.h"

#include <gtest/gtest.h>

#include "support/TempDir.h"

namespace {

TEST(FillBackground, ReplacesPixelsThatEqualTheBackgroundInEveryByte) {
    const struct {
        std::size_t pixelBytes;
        ByteList row, source, background, expected;
    } kCases[] = {
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
    for (const auto& test : kCases) {
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

TEST(ExchangeSamples, ExchangesTwoBytesOfEachPixel) {
    const struct {
        Exchange exchange;
        ByteList after;
    } kCases[] = {{{0, 1}, {2, 1, 3, 5, 4, 6, 7}},
                  {{0, 2}, {3, 2, 1, 6, 5, 4, 7}},
                  {{1, 2}, {1, 3, 2, 4, 6, 5, 7}}};
    for (const auto& test : kCases) {
        ByteList pixels = {1, 2, 3, 4, 5, 6, 7};
        exchangeSamples(pixels.data(), 2, test.exchange);
        EXPECT_EQ(pixels, test.after);
    }
}

}  // namespace
