#include "encoders/jpeg/JpegTables.h"

#include <gtest/gtest.h>

namespace {

TEST(JpegTables, CategoryAndBitsOfAValue) {
    const struct {
        int value;
        int length;
        int bits;
    } kCases[] = {
        {0, 0, 0},  {1, 1, 1},  {-1, 1, 0},    {2, 2, 2},      {3, 2, 3},        {-2, 2, 1},
        {-3, 2, 0}, {-4, 3, 3}, {255, 8, 255}, {-256, 9, 255}, {2047, 11, 2047}, {-2047, 11, 0},
    };
    for (const auto& row : kCases) {
        EXPECT_EQ(bitcode(row.value).length, row.length) << row.value;
        EXPECT_EQ(bitcode(row.value).value, row.bits) << row.value;
    }
}

TEST(JpegTables, SignedCategoriesAreLookedUp) {
    for (std::int32_t value = -2047; value <= 2047; ++value)
        EXPECT_EQ(lookUpSignedCategory(value), signedCategory(value)) << value;
    EXPECT_EQ(signedCategory(0), 0);
    EXPECT_EQ(signedCategory(1), 1);
    EXPECT_EQ(signedCategory(-1), 17);
    EXPECT_EQ(signedCategory(-2047), 27);
}

}  // namespace
