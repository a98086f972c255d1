#include "pixels/Samples.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>

#include "bytes/Bytes.h"
#include "pixels/Lanes.h"

namespace {

// 0.5 to 65535.5, so that truncating it gives the level.
float heldLevel(float sample) {
    const float scaled = sample * 65535.0f;
    const float notBelow = scaled >= 0.0f ? scaled : 0.0f;  // NaN compares false
    return (notBelow <= 65535.0f ? notBelow : 65535.0f) + 0.5f;
}

// The levels of four samples, each as heldLevel has it before it is truncated.
Lanes<std::int32_t> levelsOf(Lanes<float> samples) {
    const Lanes<float> lowest = {};
    const Lanes<float> highest = lowest + 65535.0f;
    const Lanes<float> scaled = samples * 65535.0f;
    const Lanes<float> notBelow = scaled > lowest ? scaled : lowest;  // NaN compares false
    const Lanes<float> held = notBelow < highest ? notBelow : highest;
    return __builtin_convertvector(held + 0.5f, Lanes<std::int32_t>);
}

Lanes<float> loadSamples(const float* from) {
    Lanes<float> samples;
    std::memcpy(&samples, from, sizeof samples);
    return samples;
}

constexpr std::size_t kRunSamples = 8;

// The levels of eight samples. Put together of the even and the odd ones, since SSE2 has no
// instruction that packs 32 bits into 16 without a sign.
Lanes<std::uint16_t> levelsOfRun(const float* from) {
    const Lanes<float> first = loadSamples(from);
    const Lanes<float> second = loadSamples(from + 4);
    const Lanes<std::int32_t> evens = levelsOf(__builtin_shufflevector(first, second, 0, 2, 4, 6));
    const Lanes<std::int32_t> odds = levelsOf(__builtin_shufflevector(first, second, 1, 3, 5, 7));
    const Lanes<std::int32_t> pairs = evens | odds << 16;
    Lanes<std::uint16_t> levels;
    std::memcpy(&levels, &pairs, sizeof levels);
    return levels;
}

template <ByteOrder kOrder>
void quantise(std::uint8_t* to, const float* from, std::size_t count, std::size_t step) {
    constexpr auto store = kOrder == ByteOrder::kLittle ? storeLe16 : storeBe16;
    std::size_t i = 0;
    for (; step == 1 && i + kRunSamples <= count; i += kRunSamples) {
        const Lanes<std::uint16_t> levels = levelsOfRun(from + i);
        storeLanes<std::uint16_t>(
            to + 2 * i, kOrder == ByteOrder::kLittle ? levels : levels << 8 | levels >> 8);
    }
    for (; i < count; ++i)
        store(to + 2 * i, levelOf(from[i * step]));
}

// Flat parts of a map repeat themselves at this distance, be it with one channel or with three.
constexpr std::size_t kPeriod = 24;

// Whether as many samples as a period has equal those a period before, bit by bit.
bool repeats(const float* samples) {
    Lanes<std::uint32_t> differences = {};
    for (std::size_t i = 0; i < kPeriod; i += kLanes<float>) {
        Lanes<std::uint32_t> now;
        Lanes<std::uint32_t> before;
        std::memcpy(&now, samples + i, sizeof now);
        std::memcpy(&before, samples + i - kPeriod, sizeof before);
        differences |= now ^ before;
    }
    return everyBitIs<std::uint32_t>(0, differences);
}

// Whether as many samples as a period has lie in a range. A NaN does not.
bool within(float from, float below, const float* samples) {
    const Lanes<float> lowest = Lanes<float>{} + from;
    const Lanes<float> end = Lanes<float>{} + below;
    Lanes<std::int32_t> inside = ~Lanes<std::int32_t>{};
    for (std::size_t i = 0; i < kPeriod; i += kLanes<float>) {
        const Lanes<float> four = loadSamples(samples + i);
        inside &= (four >= lowest) & (four < end);
    }
    return everyBitIs<std::int32_t>(~std::uint64_t{0}, inside);
}

void addLevels(LevelSet& levels, const float* samples) {
    const Lanes<std::uint16_t> run = levelsOfRun(samples);
    std::uint64_t halves[2];  // taken apart in registers, faster than by way of memory
    std::memcpy(halves, &run, sizeof halves);
    for (const std::uint64_t half : halves) {
        levels.add(static_cast<std::uint16_t>(half));
        levels.add(static_cast<std::uint16_t>(half >> 16));
        levels.add(static_cast<std::uint16_t>(half >> 32));
        levels.add(static_cast<std::uint16_t>(half >> 48));
    }
}

// The lowest sample that has a level, or one above it.
float lowestSampleOf(std::size_t level) {
    constexpr float kInfinity = std::numeric_limits<float>::infinity();
    if (level == 0) return -kInfinity;
    if (level > 65535) return kInfinity;
    float sample = (static_cast<float>(level) - 0.5f) / 65535.0f;
    while (levelOf(sample) >= level)
        sample = std::nextafter(sample, 0.0f);
    while (levelOf(sample) < level)
        sample = std::nextafter(sample, 1.0f);
    return sample;
}

}  // namespace

void takeFirstSamples(std::uint8_t* to, const float* from, std::size_t pixels) {
    std::size_t i = 0;
    for (; i + 4 <= pixels; i += 4) {
        // Of these twelve samples those at 0, 3, 6 and 9.
        const Lanes<float> samples0 = loadSamples(from + 3 * i);
        const Lanes<float> samples4 = loadSamples(from + 3 * i + 4);
        const Lanes<float> samples8 = loadSamples(from + 3 * i + 8);
        const Lanes<float> samples6699 = __builtin_shufflevector(samples4, samples8, 2, 2, 5, 5);
        storeLanes<float>(to + 4 * i, __builtin_shufflevector(samples0, samples6699, 0, 3, 4, 6));
    }
    for (; i < pixels; ++i)
        storeLeFloat(to + 4 * i, from[3 * i]);
}

std::uint16_t levelOf(float sample) {
    return static_cast<std::uint16_t>(static_cast<std::int32_t>(heldLevel(sample)));
}

void quantise16(std::uint8_t* to, const float* from, std::size_t count, std::size_t step,
                ByteOrder order) {
    if (order == ByteOrder::kLittle)
        quantise<ByteOrder::kLittle>(to, from, count, step);
    else
        quantise<ByteOrder::kBig>(to, from, count, step);
}

std::size_t LevelSet::count() const {
    return static_cast<std::size_t>(std::count(seen_.begin(), seen_.end(), 1));
}

LevelSet::Run LevelSet::longestRun() const {
    const auto* const start = seen_.begin();
    Run longest;
    for (const auto* from = start; from != seen_.end();) {
        from = std::find(from, seen_.end(), 1);
        const auto* const gap = std::find(from, seen_.end(), 0);
        const Run run = {static_cast<std::size_t>(from - start),
                         static_cast<std::size_t>(gap - start)};
        if (run.end - run.first > longest.end - longest.first) longest = run;
        from = gap;
    }
    return longest;
}

// The whole set is looked through only when it has been added to as often as before the last look;
// in between, the run that is known grows at its ends.
void LevelSet::extendKnown() {
    if (added_ >= addedAtNextLook_) {
        known_ = longestRun();
        addedAtNextLook_ = 2 * added_;
    }
    if (known_.first == known_.end) return;
    while (known_.first > 0 && seen_[known_.first - 1] != 0)
        --known_.first;
    while (known_.end < seen_.size() && seen_[known_.end] != 0)
        ++known_.end;
}

void markLevels(LevelSet& levels, const float* samples, std::size_t count) {
    levels.extendKnown();
    const float knownFrom = lowestSampleOf(levels.known_.first);
    const float knownBelow = lowestSampleOf(levels.known_.end);
    std::size_t i = 0;
    for (; i + kPeriod <= count; i += kPeriod) {
        if (within(knownFrom, knownBelow, samples + i)) continue;
        if (i > 0 && repeats(samples + i)) continue;
        for (std::size_t run = 0; run < kPeriod; run += kRunSamples)
            addLevels(levels, samples + i + run);
        levels.added_ += kPeriod;
    }
    for (; i < count; ++i)
        levels.add(levelOf(samples[i]));
}
