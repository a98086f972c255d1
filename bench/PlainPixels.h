#pragma once
// The arithmetic of peers, written plainly and left to the compiler.

#include <cstddef>
#include <cstdint>

// Replaces pixels of `map` that equal `background` by those of `tile`; a pixel has 3 or 12 bytes.
void plainMerge(std::uint8_t* map, const std::uint8_t* tile, const std::uint8_t* background,
                std::size_t pixels, std::size_t pixelBytes);

// Exchanges the first and the last of the three bytes of each pixel.
void plainSwap(std::uint8_t* pixels, std::size_t count);
