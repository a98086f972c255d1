#pragma once
// Samples: what operations do to the 32-bit float samples of maps in memory, unknown to any file
// format.

#include <array>
#include <cstddef>
#include <cstdint>

// Copies the first of each pixel's three float samples, little-endian.
void takeFirstSamples(std::uint8_t* to, const float* from, std::size_t pixels);

// The 16-bit level of a sample, where 0 to 1 becomes 0 to 65535: times 65535, held in that range
// (NaN is 0), plus 0.5, truncated; all in single precision.
std::uint16_t levelOf(float sample);

enum class ByteOrder { kLittle, kBig };

// Writes the levels of all samples, or of the first of each pixel's three.
void quantise16(std::uint8_t* to, const float* from, std::size_t count, ByteOrder order);
void quantiseFirst16(std::uint8_t* to, const float* from, std::size_t pixels, ByteOrder order);
