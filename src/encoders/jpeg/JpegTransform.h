#pragma once
// JpegTransform: from pixels to quantised coefficients, several rows or columns of a block at a time,
// as JpegDct.h defines it. Every result is the same on every machine: all of it is single-precision
// arithmetic in one fixed order, and no multiplication is fused with an addition.

#include <array>
#include <cstddef>
#include <cstdint>

#include "encoders/jpeg/JpegQuantisation.h"

// The coefficients of a data unit, and which of them are not 0.
struct QuantisedUnit {
    alignas(32) std::array<std::int32_t, 64> DU_DCT;  // natural order
    // For each column of coefficients one bit a row, the lowest for row 0.
    alignas(32) std::array<std::int32_t, 8> nonzeroRows;
};

struct QuantisedBlock {
    QuantisedUnit Y;
    QuantisedUnit Cb;
    QuantisedUnit Cr;
};

// Converts, transforms and quantises a block of 8 x 8 pixels, each blue, green and red.
//
//   pixels   the top left pixel; kBytesAfterRow bytes after each row's last pixel are readable
//   rowStep  bytes from a row to the one below; negative where the lowest row comes first
using TransformBlock = void(const std::uint8_t* pixels, std::ptrdiff_t rowStep,
                            const Divisors& divisors, QuantisedBlock& block);
inline constexpr std::size_t kBytesAfterRow = 4;

TransformBlock transformBlock;

// The same for processors with AVX2; null on any other.
TransformBlock* avx2Transform();
