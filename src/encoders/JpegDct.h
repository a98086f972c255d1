#pragma once
// JpegDct: from the samples of a block to its quantised coefficients.
//
// Every result is the same on every machine: all of it is single-precision arithmetic in one fixed
// order, no multiplication joined with an addition, but for the rounding, which adds in double
// precision.

#include <array>
#include <cstdint>

#include "encoders/JpegTables.h"

// Blocks in natural order: 8 rows of 8.
using DataUnit = std::array<std::int8_t, 64>;
using Coefficients = std::array<std::int16_t, 64>;
using DivisorTable = std::array<float, 64>;

// What turns the transform's outputs into quantised coefficients: the reciprocals of the
// quantisation table's entries times the factors by which the transform's outputs are too large.
//
//   quantisers  a quantisation table in zig-zag order, entries of 1 and more
DivisorTable prepare_quant_table(const QuantTable& quantisers);

// The forward DCT of a block, each coefficient multiplied by its entry of `fdtbl` and rounded as
// `quantised` does.
void fdct_and_quantization(const DataUnit& data, const DivisorTable& fdtbl, Coefficients& outdata);

// Rounds to the nearest integer, halves upward: -2.5 to -2, 2.5 to 3. That holds above -16384; the
// value plus 16384.5, truncated, stays within 16 bits, and what is left of it without the 16384 is
// the low 16 bits. No picture comes near these bounds.
inline std::int16_t quantised(float value) {
    const double raised = static_cast<double>(value) + 16384.5;
    const double atLeast = raised > -32768.0 ? raised : -32768.0;  // also NaN
    const double bounded = atLeast < 32767.0 ? atLeast : 32767.0;
    return static_cast<std::int16_t>(static_cast<std::int32_t>(bounded) - 16384);
}
