#include "pixels/Samples.h"

#include <gmock/gmock.h>

#include <array>
#include <cmath>
#include <limits>
#include <utility>
#include <vector>

namespace {

using testing::ElementsAre;

TEST(LevelOf, ClampsSamplesToTheRangeOfSixteenBits) {
    const float infinity = std::numeric_limits<float>::infinity();
    const float nan = std::numeric_limits<float>::quiet_NaN();
    for (const float below : {0.0f, -0.0f, -0.2f, -infinity, nan, -nan, 1e-45f})
        EXPECT_EQ(levelOf(below), 0) << below;
    for (const float above : {1.0f, 1.5f, 3e38f, infinity})
        EXPECT_EQ(levelOf(above), 65535) << above;
    EXPECT_EQ(levelOf(0.5f), 32768);
    EXPECT_EQ(levelOf(0.25f), 16384);
}

TEST(LevelOf, EveryLevelIsItsOwn) {
    for (int level = 0; level <= 65535; ++level)
        ASSERT_EQ(levelOf(static_cast<float>(level) / 65535.0f), level);
}

// Each border between two levels, and the eight floats on both sides of it. The product is rounded
// to single precision; adding the half is exact in double precision.
TEST(LevelOf, RoundsHalfUpAtEveryBorder) {
    for (int level = 1; level <= 65535; ++level) {
        float sample = static_cast<float>((level - 0.5) / 65535.0);
        for (int i = 0; i < 8; ++i)
            sample = std::nextafter(sample, 0.0f);
        for (int i = 0; i < 17; ++i, sample = std::nextafter(sample, 2.0f)) {
            const double scaled = static_cast<float>(static_cast<double>(sample) * 65535.0);
            ASSERT_EQ(levelOf(sample), std::floor(scaled + 0.5)) << level << ' ' << sample;
        }
    }
}

TEST(Quantise16, WritesTheOrderOfBytesWanted) {
    const float samples[] = {0.5f, 0.25f};
    std::array<std::uint8_t, 4> out{};
    quantise16(out.data(), samples, 2, ByteOrder::kLittle);
    EXPECT_THAT(out, ElementsAre(0x00, 0x80, 0x00, 0x40));
    quantise16(out.data(), samples, 2, ByteOrder::kBig);
    EXPECT_THAT(out, ElementsAre(0x80, 0x00, 0x40, 0x00));
}

// Of 24 samples, 16 are converted at a time where the processor can, and the others 8 at a time.
TEST(Quantise16, HoldsEachLaneToTheRangeOfLevels) {
    const float infinity = std::numeric_limits<float>::infinity();
    const float nan = std::numeric_limits<float>::quiet_NaN();
    const std::pair<float, int> levels[] = {{-infinity, 0}, {-0.2f, 0},       {-0.0f, 0},
                                            {nan, 0},       {0.25f, 16384},   {1.0f, 65535},
                                            {1.5f, 65535},  {infinity, 65535}};
    for (const auto& [sample, level] : levels) {
        for (std::size_t lane = 0; lane < 24; ++lane) {
            std::vector<float> samples(24, 0.5f);
            samples[lane] = sample;
            std::vector<std::uint8_t> out(2 * 24);
            quantise16(out.data(), samples.data(), 24, ByteOrder::kBig);
            for (std::size_t i = 0; i < 24; ++i)
                ASSERT_EQ(out[2 * i] << 8 | out[2 * i + 1], i == lane ? level : 32768)
                    << sample << " in lane " << lane << ", seen in " << i;
        }
    }
}

// Worked on in blocks of 1024 pixels.
TEST(QuantiseFirst16, TakesTheFirstOfThreeSamplesOfEveryPixel) {
    std::vector<float> samples(3 * 2050, 9.0f);
    for (std::size_t pixel = 0; pixel < 2050; ++pixel)
        samples[3 * pixel] = static_cast<float>(pixel) / 65535.0f;
    std::vector<std::uint8_t> out(2 * 2050);
    quantiseFirst16(out.data(), samples.data(), 2050, ByteOrder::kBig);
    for (std::size_t pixel = 0; pixel < 2050; ++pixel)
        ASSERT_EQ(out[2 * pixel] << 8 | out[2 * pixel + 1], static_cast<int>(pixel));
}

}  // namespace
