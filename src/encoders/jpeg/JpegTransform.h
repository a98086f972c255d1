#pragma once
// JpegTransform: from pixels to quantised coefficients, several rows or columns of a block at a time.
// Every result is the same on every machine: all of it is single-precision arithmetic in one fixed
// order, and no multiplication is fused with an addition.

#include <array>
#include <cstddef>
#include <cstdint>

#include "encoders/jpeg/JpegQuantisation.h"

// The coefficients of a data unit, and which of them are not 0.
struct QuantisedUnit {
    alignas(32) std::array<std::int32_t, 64> values;  // natural order
    // For each column of coefficients one bit a row, the lowest for row 0.
    alignas(32) std::array<std::int32_t, 8> nonzeroRows;
};

// A block of a picture: luminance, Cb and Cr.
using QuantisedBlock = std::array<QuantisedUnit, 3>;

// Converts, transforms and quantises a block of 8 x 8 pixels, each blue, green and red.
//
//   pixels    the top left pixel; kBytesBehindRow bytes behind each row's last pixel are readable
//   rowStep   bytes from a row to the one below; negative where the lowest row comes first
//   divisors  made from quantisation tables with entries of 1 and more
using TransformPixels = void(const std::uint8_t* pixels, std::ptrdiff_t rowStep,
                             const Divisors& divisors, QuantisedBlock& block);
inline constexpr std::size_t kBytesBehindRow = 4;

TransformPixels transformPixels;

// The same with vectors twice as wide, or null on a processor that does not have them.
TransformPixels* wideTransform();
