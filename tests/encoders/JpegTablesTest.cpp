#include "encoders/jpeg/JpegTables.h"

#include <gmock/gmock.h>

#include "support/ScalarJpeg.h"

namespace {

TEST(JpegTables, CodesOfKnownSymbols) {
    const auto code = [](int length, int value) {
        return bitstring{static_cast<std::uint8_t>(length), static_cast<std::uint16_t>(value)};
    };
    EXPECT_EQ(kHuffman.YDC_HT[0], code(2, 0b00));
    EXPECT_EQ(kHuffman.YDC_HT[5], code(3, 0b110));
    EXPECT_EQ(kHuffman.YDC_HT[11], code(9, 0b111111110));
    EXPECT_EQ(kHuffman.CbDC_HT[0], code(2, 0b00));
    EXPECT_EQ(kHuffman.CbDC_HT[11], code(11, 0b11111111110));
    EXPECT_EQ(kHuffman.YAC_HT[0x00], code(4, 0b1010));
    EXPECT_EQ(kHuffman.YAC_HT[0x01], code(2, 0b00));
    EXPECT_EQ(kHuffman.YAC_HT[0xF0], code(11, 0b11111111001));
    EXPECT_EQ(kHuffman.YAC_HT[0xFA], code(16, 0xFFFE));
    EXPECT_EQ(kHuffman.CbAC_HT[0x00], code(2, 0b00));
    EXPECT_EQ(kHuffman.CbAC_HT[0xF0], code(10, 0b1111111010));
    EXPECT_EQ(kHuffman.CbAC_HT[0xFA], code(16, 0xFFFE));
}

TEST(JpegTables, SymbolsWithoutACodeHaveNone) {
    EXPECT_EQ(kHuffman.YDC_HT[12].length, 0);
    EXPECT_EQ(kHuffman.YAC_HT[0x10].length, 0);
    EXPECT_EQ(kHuffman.YAC_HT[0x0B].length, 0);
    EXPECT_EQ(kHuffman.CbAC_HT[0xFB].length, 0);
}

TEST(JpegTables, CategoryAndBitsOfAValue) {
    const struct {
        int value;
        int length;
        int bits;
    } kCases[] = {
        {0, 0, 0},          {1, 1, 1},          {-1, 1, 0},      {2, 2, 2},
        {3, 2, 3},          {-2, 2, 1},         {-3, 2, 0},      {4, 3, 4},
        {-4, 3, 3},         {-7, 3, 0},         {255, 8, 255},   {256, 9, 256},
        {-256, 9, 255},     {32767, 15, 32767}, {-32767, 15, 0}, {-16384, 15, 16383},
        {16384, 15, 16384}, {-16383, 14, 0},
    };
    for (const auto& row : kCases) {
        EXPECT_EQ(category(row.value), row.length) << row.value;
        EXPECT_EQ(bitcode(row.value).length, row.length) << row.value;
        EXPECT_EQ(bitcode(row.value).value, row.bits) << row.value;
    }
}

// Walks the diagonals of a block from one border to the other and back.
TEST(JpegTables, TheZigzagRunsAlongTheDiagonals) {
    int place = 0;
    for (int diagonal = 0; diagonal < 15; ++diagonal) {
        for (int step = 0; step <= diagonal; ++step) {
            const int row = diagonal % 2 == 0 ? diagonal - step : step;
            const int column = diagonal - row;
            if (row > 7 || column > 7) continue;
            EXPECT_EQ(zigzag[static_cast<std::size_t>(8 * row + column)], place);
            ++place;
        }
    }
    EXPECT_EQ(place, 64);
}

// The code of a coefficient and its own bits, by ITU T.81, Annex K: after no zeros category 1 is 00,
// category 2 01; after one zero category 1 is 1100; after 15 category 10 is 1111111111111110.
TEST(JpegTables, CodesAndValuesAddUp) {
    const struct {
        std::size_t zeros;
        std::int32_t value;
        std::uint32_t length;
        std::int32_t bits;
    } kCases[] = {{0, 1, 3, 0b001},        {0, -1, 3, 0b000},         {0, 2, 4, 0b0110},
                  {0, -2, 4, 0b0101},      {0, -3, 4, 0b0100},        {1, 1, 5, 0b11001},
                  {1, -1, 5, 0b11000},     {15, 1023, 26, 0x3FFFBFF}, {15, -1023, 26, 0x3FFF800},
                  {15, 512, 26, 0x3FFFA00}};
    constexpr RunTable table = makeRunTable(kHuffman.YAC_HT);
    for (const auto& row : kCases) {
        const ValueCode& code = table[row.zeros][signedCategory(row.value)];
        EXPECT_EQ(code.length, row.length) << row.value;
        EXPECT_EQ(code.base + row.value, row.bits) << row.value;
    }
}

TEST(JpegTables, AnUnchangedDcCoefficientHasACodeAndNoBits) {
    constexpr ValueCodes codes = makeValueCodes(kHuffman.YDC_HT);
    EXPECT_EQ(codes[signedCategory(0)].length, 2u);
    EXPECT_EQ(codes[signedCategory(0)].base, 0b00);
}

TEST(JpegTables, SignedCategoriesAreLookedUp) {
    for (std::int32_t value = -2047; value <= 2047; ++value)
        EXPECT_EQ(lookUpSignedCategory(value), signedCategory(value)) << value;
    EXPECT_EQ(signedCategory(0), 0);
    EXPECT_EQ(signedCategory(1), 1);
    EXPECT_EQ(signedCategory(-1), 17);
    EXPECT_EQ(signedCategory(2047), 11);
    EXPECT_EQ(signedCategory(-2047), 27);
}

TEST(JpegTables, NaturalOrderIsTheZigzagInverted) {
    EXPECT_EQ(naturalOrder[0], 0);
    EXPECT_EQ(naturalOrder[1], 1);
    EXPECT_EQ(naturalOrder[2], 8);
    EXPECT_EQ(naturalOrder[5], 2);
    EXPECT_EQ(naturalOrder[63], 63);
    EXPECT_EQ(naturalOrder[62], 62);
    EXPECT_EQ(naturalOrder[61], 55);
}

}  // namespace
