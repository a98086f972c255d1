#pragma once
// The arithmetic of peers, written plainly and left to the compiler.

#include <cstddef>
#include <cstdint>

// Replaces pixels of `map` that equal `background` by those of `tile`; a pixel has 3 or 12 bytes.
void plainMerge(std::uint8_t* map, const std::uint8_t* tile, const std::uint8_t* background,
                std::size_t pixels, std::size_t pixelBytes);

// Exchanges two of the three bytes of each pixel.
void plainSwap(std::uint8_t* pixels, std::size_t count, std::size_t first, std::size_t second);

// Stores the 16-bit levels of float samples, or marks in `seen`, of 65,536 bytes, which there are.
void plainLevels(std::uint8_t* to, const std::uint8_t* samples, std::size_t count);
void plainMark(std::uint8_t* seen, const std::uint8_t* samples, std::size_t count);
