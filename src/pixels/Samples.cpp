#include "pixels/Samples.h"

#include <algorithm>
#include <array>

#include "bytes/Bytes.h"
#include "pixels/Avx2Kernels.h"
#include "pixels/Lanes.h"
#include "pixels/LevelLanes.h"

namespace {

// 0.5 to 65535.5, so that truncating it gives the level.
float heldLevel(float sample) {
    const float scaled = sample * 65535.0f;
    const float notBelow = scaled >= 0.0f ? scaled : 0.0f;  // NaN compares false
    return (notBelow <= 65535.0f ? notBelow : 65535.0f) + 0.5f;
}

template <ByteOrder kOrder>
void quantise(std::uint8_t* to, const float* from, std::size_t count) {
    constexpr auto store = kOrder == ByteOrder::kLittle ? storeLe16 : storeBe16;
    std::size_t i = quantiseAvx2(to, from, count, kOrder);
    for (; i + kRunSamples <= count; i += kRunSamples) {
        const Lanes<std::uint16_t> levels = levelsOfRun(from + i);
        storeLanes<std::uint16_t>(
            to + 2 * i, kOrder == ByteOrder::kLittle ? levels : levels << 8 | levels >> 8);
    }
    for (; i < count; ++i)
        store(to + 2 * i, levelOf(from[i]));
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

void quantise16(std::uint8_t* to, const float* from, std::size_t count, ByteOrder order) {
    if (order == ByteOrder::kLittle)
        quantise<ByteOrder::kLittle>(to, from, count);
    else
        quantise<ByteOrder::kBig>(to, from, count);
}

void quantiseFirst16(std::uint8_t* to, const float* from, std::size_t pixels, ByteOrder order) {
    constexpr std::size_t kBlock = 1024;
    std::array<float, kBlock> samples;
    for (std::size_t done = 0; done < pixels; done += kBlock) {
        const std::size_t count = std::min(kBlock, pixels - done);
        takeFirstSamples(reinterpret_cast<std::uint8_t*>(samples.data()), from + 3 * done, count);
        quantise16(to + 2 * done, samples.data(), count, order);
    }
}
