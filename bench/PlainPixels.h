#pragma once
// The arithmetic of peers, written plainly and left to the compiler.

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <utility>

// Replaces pixels of `map` that equal `background` by those of `tile`.
template <std::size_t kPixelBytes>
void plainMerge(std::uint8_t* map, const std::uint8_t* tile, const std::uint8_t* background,
                std::size_t pixels) {
    std::array<std::uint8_t, kPixelBytes> key;
    std::memcpy(key.data(), background, kPixelBytes);
    for (std::size_t i = 0; i < pixels * kPixelBytes; i += kPixelBytes) {
        if (std::memcmp(map + i, key.data(), kPixelBytes) == 0)
            std::memcpy(map + i, tile + i, kPixelBytes);
    }
}

// Exchanges the first and the last of the three bytes of each pixel.
inline void plainSwap(std::uint8_t* pixels, std::size_t count) {
    for (std::size_t i = 0; i < count; ++i, pixels += 3)
        std::swap(pixels[0], pixels[2]);
}
