#pragma once
// ScalarJpeg: the transform of a block sample by sample. The library's vectors must give the same
// coefficients, bit for bit.

#include <array>
#include <cstddef>
#include <cstdint>

#include "encoders/jpeg/JpegQuantisation.h"

// Only tests compare codes.
inline bool operator==(const bitstring& one, const bitstring& other) {
    return one.length == other.length && one.value == other.value;
}

namespace scalar_jpeg {

// Natural order: 8 rows of 8.
using DataUnit = std::array<std::int8_t, 64>;
using Coefficients = std::array<std::int16_t, 64>;

// The samples of a block's components, all centred on 0.
struct DataUnits {
    DataUnit YDU;
    DataUnit CbDU;
    DataUnit CrDU;
};

// Converts a block of 8 x 8 pixels, each blue, green and red.
//
//   pixels    the top left pixel
//   rowStep   bytes from a row to the one below
DataUnits load_data_units(const std::uint8_t* pixels, std::ptrdiff_t rowStep);

// The forward DCT of a component, rows before columns; each coefficient is multiplied by its entry
// of `fdtbl` and rounded.
Coefficients fdct_and_quantization(const DataUnit& data, const DivisorTable& fdtbl);

// Rounds to the nearest integer, halves upward: -2.5 to -2, 2.5 to 3. That holds above -16384; the
// value plus 16384.5, truncated, is clamped to 16 bits, and the result is the low 16 bits of the
// rest. No picture comes near these bounds.
std::int16_t rounded(float value);

}  // namespace scalar_jpeg
