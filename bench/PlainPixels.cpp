#include "PlainPixels.h"

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

}  // namespace

void plainMerge(std::uint8_t* map, const std::uint8_t* tile, const std::uint8_t* background,
                std::size_t pixels, std::size_t pixelBytes) {
    if (pixelBytes == 3) merge<3>(map, tile, background, pixels);
    if (pixelBytes == 12) merge<12>(map, tile, background, pixels);
}

void plainSwap(std::uint8_t* pixels, std::size_t count) {
    for (std::size_t i = 0; i < count; ++i, pixels += 3)
        std::swap(pixels[0], pixels[2]);
}
