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
//   pixelBytes   1, 2, 3, 4, 6 or 12; for any other the row stays as it is
void fillBackground(std::uint8_t* row, const std::uint8_t* source, const std::uint8_t* background,
                    std::size_t pixels, std::size_t pixelBytes);

// Two of the three bytes of a pixel, counted from 0, that change places. The same one twice: none
// do.
struct Exchange {
    std::size_t first;
    std::size_t second;
};
inline constexpr Exchange kNoExchange = {0, 0};

void exchangeSamples(std::uint8_t* row, std::size_t pixels, const Exchange& exchange);

// Copies pixels of three bytes with the first and the third exchanged.
void copyReversed(std::uint8_t* to, const std::uint8_t* from, std::size_t pixels);

// Writes each grey sample three times.
void greyToColour(std::uint8_t* to, const std::uint8_t* from, std::size_t pixels);
