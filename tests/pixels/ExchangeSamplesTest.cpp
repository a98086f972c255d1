#include <gtest/gtest.h>

#include "pixels/Pixels.h"
#include "support/TempDir.h"

namespace {

TEST(ExchangeSamples, ExchangesTwoBytesOfEachPixel) {
    const struct {
        std::size_t first, second;
        ByteList after;
    } rows[] = {{0, 1, {2, 1, 3, 5, 4, 6, 7}},
                {0, 2, {3, 2, 1, 6, 5, 4, 7}},
                {1, 2, {1, 3, 2, 4, 6, 5, 7}}};
    for (const auto& row : rows) {
        ByteList pixels = {1, 2, 3, 4, 5, 6, 7};
        exchangeSamples(pixels.data(), 2, {row.first, row.second});
        EXPECT_EQ(pixels, row.after);
    }
}

TEST(ExchangeSamples, NoPixelsAreNoWork) {
    ByteList pixels = {1, 2, 3};
    exchangeSamples(pixels.data(), 0, {0, 2});
    EXPECT_EQ(pixels, (ByteList{1, 2, 3}));
}

}  // namespace
