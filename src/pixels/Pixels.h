#pragma once
// Pixels: what operations do to pixels in memory, unknown to any file format.

#include <bitset>
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

// Copies the first of each pixel's three float samples, little-endian.
void takeFirstSamples(std::uint8_t* to, const float* from, std::size_t pixels);

// The 16-bit level of a sample, where 0 to 1 becomes 0 to 65535: times 65535, held in that range
// (NaN is 0), plus 0.5, truncated; all in single precision.
std::uint16_t levelOf(float sample);

enum class ByteOrder { kLittle, kBig };

// Writes the levels of `count` samples, each `step` floats after the one before.
void quantise16(std::uint8_t* to, const float* from, std::size_t count, std::size_t step,
                ByteOrder order);

// Adds the levels of samples to a set of levels.
using LevelSet = std::bitset<65536>;
void markLevels(LevelSet& levels, const float* samples, std::size_t count);
