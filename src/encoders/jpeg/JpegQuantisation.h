#pragma once
// JpegQuantisation: the quantisation tables of a file and the divisors made from them.

#include <array>
#include <cstdint>
#include <span>

#include "encoders/jpeg/JpegTables.h"

// The quantisation segment as it is in the file:
//   0   4  FF DB, length 132
//   4   1  0: the luminance table, of single bytes
//   5   64 its entries in zig-zag order
//   69  1  1: the chrominance table
//   70  64 its entries
using QuantSegment = std::array<std::uint8_t, 134>;

// Scales a standard table by a percentage, entries rounded half up and clamped to 1 to 255.
//
//   basic_table  natural order
//   newtable     zig-zag order
void set_quant_table(const QuantTable& basic_table, std::uint8_t scale_factor,
                     std::span<std::uint8_t, 64> newtable);

// The segment with both standard tables scaled by the low 8 bits of `scale_factor`.
QuantSegment set_DQTinfo(int scale_factor);

// What the transform's outputs are multiplied by, natural order: the reciprocals of a quantisation
// table's entries, divided by the factors by which the outputs are too large. fdtbl_Cb serves Cb and
// Cr.
using DivisorTable = std::array<float, 64>;
struct Divisors {
    alignas(32) DivisorTable fdtbl_Y{};
    alignas(32) DivisorTable fdtbl_Cb{};
};

// The divisors for a segment's tables, all entries of which are 1 or more.
Divisors prepare_quant_tables(const QuantSegment& DQTinfo);
