#include "tiff/TiffScale.h"

#include <gtest/gtest.h>
#include <zlib.h>

#include <bit>
#include <cmath>
#include <limits>

#include "support/Append.h"
#include "support/TempDir.h"
#include "support/TiffFile.h"
#include "tiff/TiffOps.h"

namespace {

std::uint32_t bitsOf(float value) {
    return std::bit_cast<std::uint32_t>(value);
}

// Worked out with decimal arithmetic of 60 digits, rounded to single precision step by step.
TEST(ScaleOfLevels, IsExactToTheBit) {
    const struct {
        std::size_t levels;
        std::uint32_t bits;
    } cases[] = {
        {1, 0x7F800000},     {2, 0x7F800000},     {12, 0x7F800000},    {13, 0x7BC4F534},
        {100, 0x492128C6},   {255, 0x448ADCC2},   {256, 0x4488A39B},   {1000, 0x4244B9FC},
        {4096, 0x418F0B11},  {10000, 0x412200EE}, {32768, 0x3FF0DE25}, {65535, 0x3E3AEDD5},
        {65536, 0x3E3AEA6E},
    };
    for (const auto& test : cases)
        EXPECT_EQ(bitsOf(scaleOfLevels(test.levels)), test.bits) << test.levels;
}

// The same arithmetic gave the checksum of all 65,536 scales, little-endian one after the other.
TEST(ScaleOfLevels, IsExactToTheBitForEveryCount) {
    ByteList scales;
    for (std::size_t levels = 1; levels <= 65536; ++levels)
        appendLeFloat(scales, scaleOfLevels(levels));
    EXPECT_EQ(crc32(0, scales.data(), static_cast<uInt>(scales.size())), 0x3683E1A3u);
}

class GetScale : public testing::Test {
protected:
    float scale(const TiffFile& map, int channels) const {
        return getScaleTiff(dir.write("map.tif", map.bytes()).c_str(), channels);
    }
    const TempDir dir;
};

constexpr float kInfinity = std::numeric_limits<float>::infinity();

// `count` samples, the first `levels` of them of different levels.
std::vector<float> samplesOf(std::size_t levels, std::size_t count) {
    std::vector<float> samples(count, 0.0f);
    for (std::size_t i = 0; i < levels; ++i)
        samples[i] = static_cast<float>(i) / 65535.0f;
    return samples;
}

TEST_F(GetScale, AFlatMapsScaleIsInfinite) {
    EXPECT_EQ(scale(TiffFile(4, 4).grey32(std::vector<float>(16, 0.3f)), 1), kInfinity);
}

TEST_F(GetScale, CountsTheDifferentLevels) {
    EXPECT_EQ(bitsOf(scale(TiffFile(40, 25).grey32(samplesOf(1000, 1000)), 1)), 0x4244B9FCu);
    EXPECT_EQ(bitsOf(scale(TiffFile(40, 25).grey32(samplesOf(100, 1000)), 1)), 0x492128C6u);
    EXPECT_EQ(bitsOf(scale(TiffFile(256, 256).grey32(samplesOf(65536, 65536)), 1)), 0x3E3AEA6Eu);
}

TEST_F(GetScale, SamplesOutsideZeroToOneCountAsItsEnds) {
    const float nan = std::numeric_limits<float>::quiet_NaN();
    std::vector<float> samples = samplesOf(13, 20);
    samples[13] = nan;
    samples[14] = -5.0f;
    samples[15] = -kInfinity;
    samples[16] = -0.0f;
    EXPECT_EQ(bitsOf(scale(TiffFile(20, 1).grey32(samples), 1)), 0x7BC4F534u);
    samples[12] = 1.0f;
    samples[17] = kInfinity;
    samples[18] = 1.5f;
    samples[19] = 3e38f;
    EXPECT_EQ(bitsOf(scale(TiffFile(20, 1).grey32(samples), 1)), 0x7BC4F534u);
}

TEST_F(GetScale, AllThreeChannelsCount) {
    EXPECT_EQ(bitsOf(scale(TiffFile(10, 10).rgb32(samplesOf(256, 300)), 3)), 0x4488A39Bu);
}

// One channel of a colour map is taken as it lies: the first third of the samples.
TEST_F(GetScale, TheCallersChannelCountIsTheOneThatCounts) {
    EXPECT_EQ(bitsOf(scale(TiffFile(10, 10).rgb32(samplesOf(256, 300)), 1)), 0x492128C6u);
}

TEST_F(GetScale, FindsADirectoryBehindLongPixels) {
    EXPECT_EQ(bitsOf(scale(TiffFile(1000, 300).grey32(samplesOf(1000, 300000)), 1)), 0x4244B9FCu);
}

TEST_F(GetScale, RefusesWhatItCannotMeasure) {
    const TiffFile map = TiffFile(2, 2).grey32({0, 1, 2, 3});
    EXPECT_EQ(getScaleTiff(dir.path("missing").c_str(), 1), -10.0f);
    EXPECT_EQ(scale(TiffFile(2, 1).grey16({1, 2}), 1), -32.0f);
    EXPECT_EQ(scale(TiffFile(map).entry(258, 2, 32), 1), -258.0f);
    EXPECT_EQ(scale(TiffFile(map).entry(273, 2, 8), 1), -273.0f);
    EXPECT_EQ(scale(TiffFile(map).claimEntries(0), 1), -1.0f);
    EXPECT_EQ(scale(TiffFile(map).entry(256, 1, 0), 1), -1.0f);
    EXPECT_EQ(scale(TiffFile(map).entry(273, 1, 4000), 1), -279.0f);
    EXPECT_EQ(scale(TiffFile(map).entry(273, 1, 0x80000000), 1), -274.0f);
    EXPECT_EQ(scale(TiffFile(map).entry(257, 1, 60000), 3), -279.0f);
}

// The file ends within its directory's width of 0x0101: what is missing is 0, not the last byte, and
// the map has no length.
TEST_F(GetScale, WhatIsBehindTheEndOfTheFileIsZero) {
    ByteList bytes = {'I', 'I', 42, 0, 8, 0, 0, 0, 1, 0, 0, 1, 3, 0, 1, 0, 0, 0, 1, 1};
    EXPECT_EQ(getScaleTiff(dir.write("map.tif", bytes).c_str(), 1), -1.0f);
    bytes[8] = 200;  // as many entries as reach beyond the first 1000 bytes
    EXPECT_EQ(getScaleTiff(dir.write("map.tif", bytes).c_str(), 1), -1.0f);
}

TEST_F(GetScale, LeavesTheMapAsItIs) {
    const TiffFile map = TiffFile(2, 2).grey32({0, 1, 2, 3});
    scale(map, 1);
    EXPECT_EQ(readBytes(dir.path("map.tif")), map.bytes());
}

}  // namespace
