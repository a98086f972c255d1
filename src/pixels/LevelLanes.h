#pragma once
// LevelLanes: the levels of several samples at a time.

#include <cstddef>
#include <cstdint>
#include <cstring>

#include "pixels/Lanes.h"

// The levels of four samples, see levelOf in Samples.h.
inline Lanes<std::int32_t> levelsOf(Lanes<float> samples) {
    const Lanes<float> lowest = {};
    const Lanes<float> highest = lowest + 65535.0f;
    const Lanes<float> scaled = samples * 65535.0f;
    const Lanes<float> notBelow = scaled > lowest ? scaled : lowest;  // NaN compares false
    const Lanes<float> held = notBelow < highest ? notBelow : highest;
    return __builtin_convertvector(held + 0.5f, Lanes<std::int32_t>);
}

inline Lanes<float> loadSamples(const float* from) {
    Lanes<float> samples;
    std::memcpy(&samples, from, sizeof samples);
    return samples;
}

inline constexpr std::size_t kRunSamples = 8;

// The levels of eight samples. Put together of the even and the odd ones, since SSE2 has no
// instruction that packs 32 bits into 16 without a sign.
inline Lanes<std::uint16_t> levelsOfRun(const float* from) {
    const Lanes<float> first = loadSamples(from);
    const Lanes<float> second = loadSamples(from + 4);
    const Lanes<std::int32_t> evens = levelsOf(__builtin_shufflevector(first, second, 0, 2, 4, 6));
    const Lanes<std::int32_t> odds = levelsOf(__builtin_shufflevector(first, second, 1, 3, 5, 7));
    const Lanes<std::int32_t> pairs = evens | odds << 16;
    Lanes<std::uint16_t> levels;
    std::memcpy(&levels, &pairs, sizeof levels);
    return levels;
}
