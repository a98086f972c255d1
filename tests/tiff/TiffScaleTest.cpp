#include "tiff/TiffScale.h"

#include <gtest/gtest.h>
#include <zlib.h>

#include <bit>
#include <limits>

#include "support/Append.h"
#include "support/TempDir.h"
#include "support/TiffFile.h"
#include "tiff/TiffOps.h"

namespace {

std::uint32_t bitsOf(float value) {
    return std::bit_cast<std::uint32_t>(value);
}

// Worked out with decimal arithmetic of 60 digits, rounded to single precision step by step: the
// checksum of all 65,536 scales, little-endian one after the other.
TEST(ScaleOfLevels, IsExactToTheBitForEveryCount) {
    ByteList scales;
    for (std::size_t levels = 1; levels <= 65536; ++levels)
        appendLeFloat(scales, scaleOfLevels(levels));
    EXPECT_EQ(crc32(0, scales.data(), static_cast<uInt>(scales.size())), 0x3683E1A3u);
}

class GetScale : public testing::Test {
protected:
    float scale(const ByteList& map, int channels) const {
        return getScaleTiff(dir.write("map.tif", map).c_str(), channels);
    }
    const TempDir dir;
};

constexpr float kInfinity = std::numeric_limits<float>::infinity();

// `count` samples of as many different levels.
std::vector<float> samplesOf(std::size_t levels, std::size_t count) {
    std::vector<float> samples(count);
    for (std::size_t i = 0; i < count; ++i)
        samples[i] = static_cast<float>(i % levels) / 65535.0f;
    return samples;
}

// The scales of the same decimal arithmetic. All but the first map have their directory after
// byte 1000, the last two are read in several pieces.
TEST_F(GetScale, CountsTheDifferentLevels) {
    EXPECT_EQ(scale(TiffFile(4, 4).grey32(samplesOf(1, 16)), 1), kInfinity);
    EXPECT_EQ(bitsOf(scale(TiffFile(40, 25).grey32(samplesOf(100, 1000)), 1)), 0x492128C6u);
    EXPECT_EQ(bitsOf(scale(TiffFile(1000, 300).grey32(samplesOf(1000, 300000)), 1)), 0x4244B9FCu);
    EXPECT_EQ(bitsOf(scale(TiffFile(400, 300).grey32(samplesOf(65536, 120000)), 1)), 0x3E3AEA6Eu);
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

// One channel of a colour map is the first third of its samples, whatever their channels.
TEST_F(GetScale, TheCallersChannelCountIsTheOneThatCounts) {
    const TiffFile map = TiffFile(10, 10).rgb32(samplesOf(256, 300));
    EXPECT_EQ(bitsOf(scale(map, 3)), 0x4488A39Bu);
    EXPECT_EQ(bitsOf(scale(map, 1)), 0x492128C6u);
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

// The file ends within its directory's width of 0x0101: what is missing is 0, not the last byte,
// and the map has no length.
TEST_F(GetScale, WhatIsPastTheEndOfTheFileIsZero) {
    ByteList bytes = {'I', 'I', 42, 0, 8, 0, 0, 0, 1, 0, 0, 1, 3, 0, 1, 0, 0, 0, 1, 1};
    EXPECT_EQ(scale(bytes, 1), -1.0f);
    bytes[8] = 200;  // as many entries as reach beyond the first 1000 bytes
    EXPECT_EQ(scale(bytes, 1), -1.0f);
}

}  // namespace
