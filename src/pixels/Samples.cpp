#include "pixels/Samples.h"

#include "bytes/Bytes.h"

namespace {

// 0.5 to 65535.5, so that truncating it gives the level.
float heldLevel(float sample) {
    const float scaled = sample * 65535.0f;
    const float notBelow = scaled >= 0.0f ? scaled : 0.0f;  // NaN compares false
    return (notBelow <= 65535.0f ? notBelow : 65535.0f) + 0.5f;
}

template <void kStore(std::uint8_t*, std::uint16_t)>
void quantise(std::uint8_t* to, const float* from, std::size_t count, std::size_t step) {
    for (std::size_t i = 0; i < count; ++i)
        kStore(to + 2 * i, levelOf(from[i * step]));
}

}  // namespace

void takeFirstSamples(std::uint8_t* to, const float* from, std::size_t pixels) {
    for (std::size_t i = 0; i < pixels; ++i)
        storeLeFloat(to + 4 * i, from[3 * i]);
}

std::uint16_t levelOf(float sample) {
    return static_cast<std::uint16_t>(static_cast<std::int32_t>(heldLevel(sample)));
}

void quantise16(std::uint8_t* to, const float* from, std::size_t count, std::size_t step,
                ByteOrder order) {
    if (order == ByteOrder::kLittle)
        quantise<storeLe16>(to, from, count, step);
    else
        quantise<storeBe16>(to, from, count, step);
}

void markLevels(LevelSet& levels, const float* samples, std::size_t count) {
    for (std::size_t i = 0; i < count; ++i)
        levels.set(levelOf(samples[i]));
}
