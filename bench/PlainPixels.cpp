#include "PlainPixels.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <utility>

namespace {

template <std::size_t kBytes>
void merge(std::uint8_t* map, const std::uint8_t* tile, const std::uint8_t* key,
           std::size_t pixels) {
    std::array<std::uint8_t, kBytes> background;
    std::memcpy(background.data(), key, kBytes);
    for (std::size_t i = 0; i < pixels * kBytes; i += kBytes) {
        if (std::memcmp(map + i, background.data(), kBytes) == 0)
            std::memcpy(map + i, tile + i, kBytes);
    }
}

float levelOf(const std::uint8_t* sample) {
    float value = 0.0f;
    std::memcpy(&value, sample, sizeof(value));
    const float q = value * 65535.0f;
    return (q >= 0.0f ? std::min(q, 65535.0f) : 0.0f) + 0.5f;
}

}  // namespace

void plainMerge(std::uint8_t* map, const std::uint8_t* tile, const std::uint8_t* background,
                std::size_t pixels, std::size_t pixelBytes) {
    if (pixelBytes == 3) merge<3>(map, tile, background, pixels);
    if (pixelBytes == 12) merge<12>(map, tile, background, pixels);
}

void plainSwap(std::uint8_t* pixels, std::size_t count, std::size_t first, std::size_t second) {
    for (std::size_t i = 0; i < count; ++i, pixels += 3)
        std::swap(pixels[first], pixels[second]);
}

void plainLevels(std::uint8_t* to, const std::uint8_t* samples, std::size_t count) {
    for (std::size_t i = 0; i < count; ++i) {
        const auto level = static_cast<std::uint16_t>(static_cast<int>(levelOf(samples + 4 * i)));
        std::memcpy(to + 2 * i, &level, sizeof(level));
    }
}

void plainMark(std::uint8_t* seen, const std::uint8_t* samples, std::size_t count) {
    for (std::size_t i = 0; i < count; ++i)
        seen[static_cast<int>(levelOf(samples + 4 * i))] = 1;
}
