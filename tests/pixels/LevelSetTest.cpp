#include "pixels/LevelSet.h"

#include <gtest/gtest.h>

#include <bit>
#include <cstring>
#include <limits>
#include <memory>
#include <random>
#include <set>
#include <vector>

#include "pixels/Samples.h"
#include "support/SomeSamples.h"

namespace {

constexpr float kInfinity = std::numeric_limits<float>::infinity();
constexpr float kNan = std::numeric_limits<float>::quiet_NaN();

void add(LevelSet& levels, const std::vector<float>& samples) {
    levels.addSamples(samples.data(), samples.size());
}

// A map of `count` samples that go through levels, from the first on and before the end.
std::vector<float> throughLevels(int first, int end, std::size_t count) {
    std::vector<float> samples(count);
    for (std::size_t i = 0; i < count; ++i) {
        const int level = first + static_cast<int>(i) % (end - first);
        samples[i] = static_cast<float>(level) / 65535.0f;
    }
    return samples;
}

TEST(LevelSet, HasTheLevelsOfTheSamplesAdded) {
    const auto levels = std::make_unique<LevelSet>();
    add(*levels, {0.0f, 0.5f});
    EXPECT_EQ(levels->count(), 2u);
    add(*levels, {0.5f, 7.0f});
    EXPECT_EQ(levels->count(), 3u);
    EXPECT_TRUE(levels->test(0) && levels->test(32768) && levels->test(65535));
}

TEST(LevelSet, HasTheLevelOfEachSampleAndNoOther) {
    std::mt19937 random(1);
    for (const std::size_t channels : {1u, 3u}) {
        for (std::size_t count = 0; count <= 280; ++count) {
            const std::vector<float> samples = someSamples(random, count, channels);
            const auto levels = std::make_unique<LevelSet>();
            add(*levels, samples);
            std::set<std::uint16_t> expected;
            for (const float sample : samples)
                expected.insert(levelOf(sample));
            ASSERT_EQ(levels->count(), expected.size());
            for (const std::uint16_t level : expected)
                ASSERT_TRUE(levels->test(level)) << level;
        }
    }
}

// The first run of levels to be known must not be taken for one that starts with level 0.
TEST(LevelSet, HasTheLevelOfAMapThatIsOneValue) {
    for (const float value : {-1.0f, -kInfinity, kNan, 0.0f, 0.5f, 1.0f, kInfinity}) {
        const auto levels = std::make_unique<LevelSet>();
        add(*levels, std::vector<float>(4800, value));
        EXPECT_EQ(levels->count(), 1u) << value;
        EXPECT_TRUE(levels->test(levelOf(value))) << value;
    }
}

// Each channel goes through levels of its own, which grow from row to row.
TEST(LevelSet, HasTheLevelsOfChannelsThatDiffer) {
    const auto levels = std::make_unique<LevelSet>();
    std::set<std::uint16_t> expected;
    for (int row = 0; row < 60; ++row) {
        std::vector<float> samples;
        for (int x = 0; x < 1000; ++x) {
            for (const int level : {5000 + x, 20000 + 7 * row + x % 13, 40000 + 9 * x + row}) {
                samples.push_back(static_cast<float>(level) / 65535.0f);
                expected.insert(static_cast<std::uint16_t>(level));
            }
        }
        add(*levels, samples);
    }
    EXPECT_EQ(levels->count(), expected.size());
    for (const std::uint16_t level : expected)
        ASSERT_TRUE(levels->test(level)) << level;
}

// Flat maps of more levels than runs are remembered, one after the other and back again.
TEST(LevelSet, HasTheLevelsOfManyRuns) {
    const auto levels = std::make_unique<LevelSet>();
    for (int time = 0; time < 2; ++time) {
        for (int level = 1000; level < 65536; level += 1000)
            add(*levels, throughLevels(level, level + 30 * (time + 1), 2400));
    }
    EXPECT_EQ(levels->count(), 65u * 60u);
}

// Samples within a run of levels that are all there are skipped: a set that is added to for so
// long that it knows such a run, then samples right at its ends.
TEST(LevelSet, SkipsNoSampleOfAnotherLevel) {
    const auto levels = std::make_unique<LevelSet>();
    add(*levels, throughLevels(20000, 23000, 240000));
    add(*levels, throughLevels(20000, 23000, 240000));
    ASSERT_EQ(levels->count(), 3000u);

    // The last of the run, then one that is new, over and over: 22999.4 is its own, 22999.6 is not.
    std::size_t expected = 3000;
    for (const float scaled : {22999.4f, 22999.6f, 19999.6f, 19999.4f, 23005.0f, 23001.0f}) {
        add(*levels, std::vector<float>(48, scaled / 65535.0f));
        const auto level = static_cast<std::uint16_t>(scaled + 0.5f);
        expected += level > 22999 || level < 20000 ? 1 : 0;
        EXPECT_TRUE(levels->test(level)) << scaled;
        EXPECT_EQ(levels->count(), expected) << scaled;
    }
}

// A run ends where a level is missing, however many there are behind it.
TEST(LevelSet, SkipsNoSampleOfALevelBetweenKnownOnes) {
    const auto levels = std::make_unique<LevelSet>();
    std::vector<float> samples;
    for (int i = 0; i < 240000; ++i) {
        const int level = 1000 + i % 32;
        if (level != 1016 && level != 1024) samples.push_back(static_cast<float>(level) / 65535.0f);
    }
    add(*levels, samples);
    ASSERT_EQ(levels->count(), 30u);

    add(*levels, std::vector<float>(48, 1016.0f / 65535.0f));
    add(*levels, std::vector<float>(48, 1024.0f / 65535.0f));
    EXPECT_TRUE(levels->test(1016) && levels->test(1024));
    EXPECT_EQ(levels->count(), 32u);
}

// 0.50195312 is the lowest sample of level 32896, although (32896 - 0.5) / 65535 is, in single
// precision, the next float above it.
TEST(LevelSet, KnowsTheLowestSampleOfALevel) {
    const auto levels = std::make_unique<LevelSet>();
    add(*levels, throughLevels(32000, 32896, 240000));
    add(*levels, throughLevels(32000, 32896, 240000));
    add(*levels, std::vector<float>(48, std::bit_cast<float>(0x3F008000u)));
    EXPECT_TRUE(levels->test(32896));
    EXPECT_EQ(levels->count(), 897u);
}

TEST(LevelSet, KnowsThatTheHighestLevelIsMissing) {
    const auto levels = std::make_unique<LevelSet>();
    add(*levels, throughLevels(65000, 65535, 240000));
    add(*levels, throughLevels(65000, 65535, 240000));
    ASSERT_EQ(levels->count(), 535u);
    add(*levels, std::vector<float>(48, 1.0f));
    EXPECT_TRUE(levels->test(65535));
    EXPECT_EQ(levels->count(), 536u);
}

TEST(LevelSet, HasAllLevelsThereAre) {
    const auto levels = std::make_unique<LevelSet>();
    std::vector<float> samples = throughLevels(0, 65536, 4 * 65536);
    samples[0] = kNan;
    samples[1] = kInfinity;
    for (int time = 0; time < 3; ++time)
        add(*levels, samples);
    EXPECT_EQ(levels->count(), 65536u);
}

// A period of 24 samples is skipped only if all of them are in their channels' runs.
TEST(LevelSet, HasANewLevelAtAnyPlaceOfAPeriod) {
    const auto known = std::make_unique<LevelSet>();
    add(*known, throughLevels(30000, 31000, 24000));
    add(*known, throughLevels(30000, 31000, 24000));
    for (std::size_t place = 0; place < 24; ++place) {
        for (const float sample : {kNan, 29999.0f / 65535.0f, 31000.0f / 65535.0f}) {
            const auto levels = std::make_unique<LevelSet>(*known);
            std::vector<float> samples = throughLevels(30500, 30501, 72);
            samples[24 + place] = sample;
            add(*levels, samples);
            EXPECT_EQ(levels->count(), 1001u) << place << ' ' << sample;
            EXPECT_TRUE(levels->test(levelOf(sample))) << place << ' ' << sample;
        }
    }
}

// The address sanitizer sees a step beyond the samples.
TEST(LevelSet, LooksAtNoMoreThanTheSamplesGiven) {
    const auto levels = std::make_unique<LevelSet>();
    for (std::size_t count = 0; count < 72; ++count)
        add(*levels, std::vector<float>(count));
    EXPECT_EQ(levels->count(), 1u);
}

}  // namespace
