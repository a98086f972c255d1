// The scalar transform against its definition, and the divisors. JpegTransformTest holds the library's
// vectors to the scalar one.

#include <gmock/gmock.h>

#include <cmath>
#include <numbers>

#include "support/ScalarJpeg.h"

namespace {

using namespace scalar_jpeg;
using testing::Each;

QuantSegment segmentOfOnes() {
    QuantSegment DQTinfo;
    DQTinfo.fill(1);
    return DQTinfo;
}

Coefficients transformed(const DataUnit& data) {
    return fdct_and_quantization(data, prepare_quant_tables(segmentOfOnes()).fdtbl_Y);
}

// The transform by its definition.
double exactCoefficient(const DataUnit& data, std::size_t v, std::size_t u) {
    const auto wave = [](std::size_t at, std::size_t frequency) {
        return std::cos(static_cast<double>((2 * at + 1) * frequency) * std::numbers::pi / 16);
    };
    const auto norm = [](std::size_t frequency) { return frequency == 0 ? std::sqrt(0.5) : 1.0; };
    double sum = 0;
    for (std::size_t y = 0; y < 8; ++y) {
        for (std::size_t x = 0; x < 8; ++x)
            sum += data[8 * y + x] * wave(x, u) * wave(y, v);
    }
    return sum * norm(u) * norm(v) / 4;
}

TEST(JpegDct, AFlatBlockHasOnlyADcCoefficient) {
    for (const int level : {-128, -1, 0, 1, 100, 127}) {
        DataUnit flat;
        flat.fill(static_cast<std::int8_t>(level));
        Coefficients out = transformed(flat);
        EXPECT_EQ(out[0], 8 * level);
        out[0] = 0;
        EXPECT_THAT(out, Each(0));
    }
}

TEST(JpegDct, RowsOfTheBlockAreRowsOfCoefficients) {
    DataUnit rises;
    for (std::size_t i = 0; i < 64; ++i)
        rises[i] = static_cast<std::int8_t>(20 * (i % 8) - 70);
    const Coefficients out = transformed(rises);
    EXPECT_EQ(out[0], 0);
    EXPECT_EQ(out[1], -364);  // along the row; by the definition -364.43
    for (std::size_t i = 8; i < 64; ++i)
        EXPECT_EQ(out[i], 0) << i;
}

TEST(JpegDct, IsTheTransformOfItsDefinition) {
    std::uint32_t state = 1;
    for (int round = 0; round < 200; ++round) {
        DataUnit block;
        for (std::int8_t& sample : block) {
            state = state * 1664525 + 1013904223;
            const bool extreme = round % 2 == 0;
            sample = static_cast<std::int8_t>(extreme ? (state >> 31 ? 127 : -128)
                                                      : static_cast<int>(state >> 24) - 128);
        }
        const Coefficients out = transformed(block);
        for (std::size_t i = 0; i < 64; ++i)
            ASSERT_NEAR(out[i], exactCoefficient(block, i / 8, i % 8), 0.501) << i;
    }
}

TEST(JpegDct, DivisorsFollowTheZigzag) {
    QuantSegment DQTinfo = segmentOfOnes();
    DQTinfo[5 + 2] = 10;  // the third of the zig-zag: row 1, column 0
    DQTinfo[70 + 1] = 10;
    const auto [luminance, chrominance] = prepare_quant_tables(DQTinfo);
    EXPECT_EQ(luminance[0], 0.125f);
    EXPECT_EQ(luminance[1], 0.0901199803f);   // 1 / (8 * 1.387039845)
    EXPECT_EQ(luminance[8], 0.00901199784f);  // the tenth part
    EXPECT_EQ(luminance[63], 1.64213395f);    // 1 / (8 * 0.275899379 squared)
    EXPECT_EQ(chrominance[1], 0.00901199784f);
    EXPECT_EQ(chrominance[8], 0.0901199803f);
}

TEST(JpegDct, RoundsHalvesUpward) {
    const struct {
        float value;
        int integer;
    } kCases[] = {
        {0.0f, 0},           {0.5f, 1},
        {-0.5f, 0},          {0.49999997f, 0},
        {-0.50000006f, -1},  {2.5f, 3},
        {-2.5f, -2},         {-2.4999998f, -2},
        {-2.5000002f, -3},   {1023.5f, 1024},
        {-1023.5f, -1023},   {16383.0f, 16383},
        {-16383.5f, -16383}, {-16383.75f, -16384},
    };
    for (const auto& row : kCases)
        EXPECT_EQ(rounded(row.value), row.integer) << row.value;
}

// Beyond what a picture can give, bits are lost the same way on every machine.
TEST(JpegDct, RoundingIsBoundedTo16Bits) {
    EXPECT_EQ(rounded(20000.0f), 16383);
    EXPECT_EQ(rounded(1e30f), 16383);
    EXPECT_EQ(rounded(-16386.0f), -16385);  // toward zero down here
    EXPECT_EQ(rounded(-40000.0f), 25537);   // -39999
    EXPECT_EQ(rounded(-60000.0f), 16384);   // -49152
    EXPECT_EQ(rounded(-1e30f), 16384);
    EXPECT_EQ(rounded(NAN), 16384);
}

}  // namespace
