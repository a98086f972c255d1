#pragma once
// Samples of any image, turned into those of the maps that the exports take.

#include <cstdint>
#include <span>
#include <vector>

// Unsigned integers and floats; in memory little-endian.
enum class SampleKind { kByte, kShort, kLong, kHalf, kFloat, kDouble };

std::size_t bytesOf(SampleKind kind);

// Fills `values` with numbers of 1, 2, 4 or 8 bits each; the first is in the highest bits of the
// first byte.
void unpackBits(std::span<const std::uint8_t> packed, unsigned bits,
                std::span<std::uint8_t> values);

// 0 to 65535 as 0 to 255, rounded to the nearest.
std::uint8_t byteOfShort(std::uint16_t level);

// 0 to `max` as 0 to 255, rounded to the nearest; 0 if `max` is 0.
std::uint8_t byteOfLevel(std::uint32_t level, std::uint32_t max);

// Turns samples into integers of 8 or 16 bits or floats of 32. The largest integer of one kind
// becomes that of another, or 1.0. Floats remain what they are, NaN included, where 32 bits can
// hold them; no float becomes an integer, nor an integer of 32 bits a shorter one.
//
//   returns  the samples, little-endian, which `converted` holds unless they are the same
std::span<const std::uint8_t> convertSamples(std::span<const std::uint8_t> samples, SampleKind kind,
                                             unsigned bits, std::vector<std::uint8_t>& converted);
