#pragma once
// JpegDct: the arithmetic that turns the pixels of a block into quantised coefficients.
//
// Every result is the same on every machine: all of it is single-precision arithmetic in one fixed
// order, no multiplication joined with an addition, but for the rounding, which adds in double
// precision.

#include <array>
#include <cstddef>
#include <cstdint>

#include "encoders/jpeg/JpegTables.h"

// Blocks in natural order: 8 rows of 8.
using DataUnit = std::array<std::int8_t, 64>;
using Coefficients = std::array<std::int16_t, 64>;
using DivisorTable = std::array<float, 64>;

// What turns the transform's outputs into quantised coefficients: the reciprocals of the
// quantisation table's entries times the factors by which the transform's outputs are too large.
//
//   quantisers  a quantisation table in zig-zag order, entries of 1 and more
DivisorTable prepare_quant_table(const QuantTable& quantisers);

// The one-dimensional transform of eight values, by the flow graph of Arai, Agui and Nakajima: five
// multiplications, the outputs scaled. A value is a number or a vector of them.
template <typename Value>
[[gnu::always_inline]] inline void transformLine(Value (&s)[8]) {
    const Value sum07 = s[0] + s[7];
    const Value sum16 = s[1] + s[6];
    const Value sum25 = s[2] + s[5];
    const Value sum34 = s[3] + s[4];
    const Value difference07 = s[0] - s[7];
    const Value difference16 = s[1] - s[6];
    const Value difference25 = s[2] - s[5];
    const Value difference34 = s[3] - s[4];

    const Value outer = sum07 + sum34;
    const Value inner = sum16 + sum25;
    const Value outerSlope = sum07 - sum34;
    const Value innerSlope = sum16 - sum25;
    const Value evenTurn = (innerSlope + outerSlope) * 0.707106781f;
    s[0] = outer + inner;
    s[4] = outer - inner;
    s[2] = outerSlope + evenTurn;
    s[6] = outerSlope - evenTurn;

    const Value low = difference34 + difference25;
    const Value middle = difference25 + difference16;
    const Value high = difference16 + difference07;
    const Value turn = (low - high) * 0.382683433f;
    const Value lowTurned = low * 0.541196100f + turn;
    const Value highTurned = high * 1.306562965f + turn;
    const Value middleTurned = middle * 0.707106781f;
    const Value above = difference07 + middleTurned;
    const Value below = difference07 - middleTurned;
    s[5] = below + lowTurned;
    s[3] = below - lowTurned;
    s[1] = above + highTurned;
    s[7] = above - highTurned;
}

// Below, the plain form of what JpegTransform does with many samples at a time, and its measure.

// Converts a block of 8 x 8 pixels, each blue, green and red.
//
//   pixels    the top left pixel
//   rowStep   bytes from a row to the one below
//   block     all three components centred on 0
struct PictureBlock {
    DataUnit YDU;
    DataUnit CbDU;
    DataUnit CrDU;
};
void load_data_units(const std::uint8_t* pixels, std::ptrdiff_t rowStep, PictureBlock& block);

// The forward DCT of a block, its rows before its columns; each coefficient multiplied by its entry
// of `fdtbl` and rounded as `quantised` does.
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
