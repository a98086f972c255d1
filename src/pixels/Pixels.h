#pragma once
// Pixels: what operations do to pixels in memory, unknown to any file format.

#include <cstddef>
#include <cstdint>

inline constexpr std::size_t kLargestPixelBytes = 12;  // three 32-bit samples

// Replaces each pixel of `row` that equals `background` by the pixel at the same place in `source`.
// Pixels are compared as raw bytes.
//
//   row, source  pixels * pixelBytes bytes each
//   background   one pixel
//   pixelBytes   1, 2, 3, 4, 6 or 12
void fillBackground(std::uint8_t* row, const std::uint8_t* source, const std::uint8_t* background,
                    std::size_t pixels, std::size_t pixelBytes);

// Exchanges two bytes of each pixel of three 8-bit samples.
//
//   row            pixels * 3 bytes
//   first, second  0 to 2
void exchangeSamples(std::uint8_t* row, std::size_t pixels, std::size_t first, std::size_t second);
