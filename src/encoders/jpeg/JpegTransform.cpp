#include "encoders/jpeg/JpegTransform.h"

#include <cstring>
#include <utility>

#include "bytes/Bytes.h"
#include "encoders/jpeg/JpegDct.h"
#include "pixels/Avx2.h"
#include "pixels/Lanes.h"

#if defined(__x86_64__)
#include <immintrin.h>
#endif

// Each function below is inlined into its caller, which decides what processor it is compiled for,
// and takes vectors by reference: how they are passed by value differs between processors.
#define QUILLON_PART [[gnu::always_inline]] inline

namespace {

constexpr std::size_t kSide = 8;
constexpr std::size_t kPixelBytes = 3;

// Vectors of `kBytes`, 16 or 32, and how many of them make up a line of a block.
template <std::size_t kBytes>
using Floats = Lanes<float, kBytes>;
template <std::size_t kBytes>
using Ints = Lanes<std::int32_t, kBytes>;
template <std::size_t kBytes>
constexpr std::size_t kParts = kSide * sizeof(float) / kBytes;

// Samples of a component: lane j of vector [0][i] is the one in row j, column i; [1][i] continues
// the column where a vector has four lanes.
template <std::size_t kBytes>
using DataUnit = Ints<kBytes>[kSide * sizeof(float) / kBytes][kSide];

template <std::size_t kBytes>
struct DataUnits {
    DataUnit<kBytes> YDU;
    DataUnit<kBytes> CbDU;
    DataUnit<kBytes> CrDU;
};

// The parts of blue, green and red in a component, in 65536ths, and the middle of its range.
struct Weights {
    std::int32_t blue;
    std::int32_t green;
    std::int32_t red;
    std::int32_t middle;
};
constexpr Weights kY = {7471, 38470, 19595, 128};
constexpr Weights kCb = {32768, -21708, -11058, 0};
constexpr Weights kCr = {-5328, -27438, 32768, 0};

// From rows to columns and back: lane j of vector i becomes lane i of vector j.
QUILLON_PART void transpose4x4(Floats<16>* lines) {
    const Floats<16> low01 = __builtin_shufflevector(lines[0], lines[1], 0, 4, 1, 5);
    const Floats<16> high01 = __builtin_shufflevector(lines[0], lines[1], 2, 6, 3, 7);
    const Floats<16> low23 = __builtin_shufflevector(lines[2], lines[3], 0, 4, 1, 5);
    const Floats<16> high23 = __builtin_shufflevector(lines[2], lines[3], 2, 6, 3, 7);
    lines[0] = __builtin_shufflevector(low01, low23, 0, 1, 4, 5);
    lines[1] = __builtin_shufflevector(low01, low23, 2, 3, 6, 7);
    lines[2] = __builtin_shufflevector(high01, high23, 0, 1, 4, 5);
    lines[3] = __builtin_shufflevector(high01, high23, 2, 3, 6, 7);
}

QUILLON_PART void transpose(Floats<16> (&lines)[2][kSide]) {
    for (auto& half : lines) {
        transpose4x4(&half[0]);
        transpose4x4(&half[4]);
    }
    for (std::size_t i = 0; i < kSide / 2; ++i)
        std::swap(lines[0][4 + i], lines[1][i]);
}

#if defined(__x86_64__)
QUILLON_PART void transpose(Floats<32> (&lines)[1][kSide]) {
    Floats<32>(&s)[kSide] = lines[0];
    Floats<32> pairs[kSide];
    for (std::size_t i = 0; i < kSide; i += 2) {
        pairs[i] = __builtin_shufflevector(s[i], s[i + 1], 0, 8, 1, 9, 4, 12, 5, 13);
        pairs[i + 1] = __builtin_shufflevector(s[i], s[i + 1], 2, 10, 3, 11, 6, 14, 7, 15);
    }
    Floats<32> fours[kSide];
    for (std::size_t i = 0; i < kSide; i += 4) {
        for (std::size_t j = 0; j < 2; ++j) {
            const Floats<32>& above = pairs[i + j];
            const Floats<32>& below = pairs[i + j + 2];
            fours[i + 2 * j] = __builtin_shufflevector(above, below, 0, 1, 8, 9, 4, 5, 12, 13);
            fours[i + 2 * j + 1] =
                __builtin_shufflevector(above, below, 2, 3, 10, 11, 6, 7, 14, 15);
        }
    }
    for (std::size_t i = 0; i < kSide / 2; ++i) {
        s[i] = __builtin_shufflevector(fours[i], fours[i + 4], 0, 1, 2, 3, 8, 9, 10, 11);
        s[i + 4] = __builtin_shufflevector(fours[i], fours[i + 4], 4, 5, 6, 7, 12, 13, 14, 15);
    }
}
#endif

// Multiplies coefficients by their entries of a divisor table and rounds them to the nearest
// integer, halves upward. The sum with kUnits has no bits for a fraction: adding rounds to the
// nearest, halves to even, so the remainder shows which halves went down.
template <std::size_t kBytes>
QUILLON_PART void quantise(Ints<kBytes>& rounded, const Floats<kBytes>& coefficients,
                           const float* fdtbl) {
    constexpr float kUnits = 12582912.0f;  // 1.5 * 2^23
    constexpr std::int32_t kUnitsBits = 0x4B400000;
    Floats<kBytes> factors;
    std::memcpy(&factors, fdtbl, sizeof factors);
    const Floats<kBytes> value = coefficients * factors;
    const Floats<kBytes> raised = value + kUnits;
    const auto wentDown = reinterpret_cast<Ints<kBytes>>(value - (raised - kUnits) >= 0.5f);
    rounded = reinterpret_cast<Ints<kBytes>>(raised) - kUnitsBits - wentDown;
}

// The forward DCT, rows before columns, and quantisation of one component.
template <std::size_t kBytes>
QUILLON_PART void fdct_and_quantization(const DataUnit<kBytes>& data, const DivisorTable& fdtbl,
                                        QuantisedUnit& outdata) {
    using Values = Ints<kBytes>;
    constexpr std::size_t kCount = kParts<kBytes>;
    Floats<kBytes> lines[kCount][kSide];
    for (std::size_t part = 0; part < kCount; ++part) {
        for (std::size_t i = 0; i < kSide; ++i)
            lines[part][i] = __builtin_convertvector(data[part][i], Floats<kBytes>);
        transformLine(lines[part]);
    }
    transpose(lines);
    for (std::size_t part = 0; part < kCount; ++part) {
        transformLine(lines[part]);
        const std::size_t column = kSide / kCount * part;
        Values nonzeroRows{};
        for (std::size_t row = 0; row < kSide; ++row) {
            const std::size_t at = kSide * row + column;
            Values values;
            quantise<kBytes>(values, lines[part][row], &fdtbl[at]);
            std::memcpy(&outdata.DU_DCT[at], &values, sizeof values);
            const std::int32_t bit = 1 << row;
            nonzeroRows |= reinterpret_cast<Values>(values != 0) & bit;
        }
        std::memcpy(&outdata.nonzeroRows[column], &nonzeroRows, sizeof nonzeroRows);
    }
}

template <std::size_t kBytes>
QUILLON_PART void transformUnits(const DataUnits<kBytes>& units, const Divisors& divisors,
                                 QuantisedBlock& block) {
    fdct_and_quantization<kBytes>(units.YDU, divisors.fdtbl_Y, block.Y);
    fdct_and_quantization<kBytes>(units.CbDU, divisors.fdtbl_Cb, block.Cb);
    fdct_and_quantization<kBytes>(units.CrDU, divisors.fdtbl_Cb, block.Cr);
}

// Below, `pixels` has one in each lane: blue in the lowest byte, then green and red. What is in the
// highest does not matter. The weighted sums are rounded down, below 0 too.

#if defined(__x86_64__)

// These processors multiply 16-bit halves and add the products in pairs: blue with red, and green.
// Weights that are too large for that are halved, and their samples doubled; green's always are.
constexpr std::int32_t kBlueRed = 0x00FF00FF;
constexpr std::int32_t kDoubledGreen = 0x000001FE;

constexpr int halvings(const Weights& weights) {
    return weights.blue > INT16_MAX || weights.red > INT16_MAX ? 1 : 0;
}
constexpr std::int32_t pairOf(std::int32_t low, std::int32_t high) {
    return (low & 0xFFFF) | high * 65536;
}
constexpr std::int32_t blueRedPair(const Weights& weights) {
    return pairOf(weights.blue >> halvings(weights), weights.red >> halvings(weights));
}
constexpr std::int32_t greenPair(const Weights& weights) {
    return pairOf(weights.green >> 1, 0);
}

QUILLON_PART void weigh(Ints<16>& sample, const Ints<16>& pixels, const Weights& weights) {
    const Ints<16> blueRed = (pixels & kBlueRed) << halvings(weights);
    const Ints<16> green = pixels >> 7 & kDoubledGreen;
    const auto sum =
        reinterpret_cast<Ints<16>>(_mm_madd_epi16(reinterpret_cast<__m128i>(blueRed),
                                                  _mm_set1_epi32(blueRedPair(weights)))) +
        reinterpret_cast<Ints<16>>(
            _mm_madd_epi16(reinterpret_cast<__m128i>(green), _mm_set1_epi32(greenPair(weights))));
    sample = (sum >> 16) - weights.middle;
}

[[gnu::target("avx2")]] QUILLON_PART void weigh(Ints<32>& sample, const Ints<32>& pixels,
                                                const Weights& weights) {
    const Ints<32> blueRed = (pixels & kBlueRed) << halvings(weights);
    const Ints<32> green = pixels >> 7 & kDoubledGreen;
    const auto sum =
        reinterpret_cast<Ints<32>>(_mm256_madd_epi16(reinterpret_cast<__m256i>(blueRed),
                                                     _mm256_set1_epi32(blueRedPair(weights)))) +
        reinterpret_cast<Ints<32>>(_mm256_madd_epi16(reinterpret_cast<__m256i>(green),
                                                     _mm256_set1_epi32(greenPair(weights))));
    sample = (sum >> 16) - weights.middle;
}

// A row of eight pixels.
[[gnu::target("avx2")]] QUILLON_PART void loadRow(Floats<32>& row, const std::uint8_t* pixels) {
    const __m256i spread = _mm256_broadcastsi128_si256(
        _mm_setr_epi8(0, 1, 2, -1, 3, 4, 5, -1, 6, 7, 8, -1, 9, 10, 11, -1));
    const auto half = [&](std::size_t at) {
        return _mm_loadu_si128(reinterpret_cast<const __m128i*>(pixels + at));
    };
    row = reinterpret_cast<Floats<32>>(
        _mm256_shuffle_epi8(_mm256_set_m128i(half(4 * kPixelBytes), half(0)), spread));
}

[[gnu::target("avx2")]] QUILLON_PART void load_data_units_from_RGB_buffer(
    const std::uint8_t* pixels, std::ptrdiff_t rowStep, DataUnits<32>& units) {
    Floats<32> lines[1][kSide];
    for (std::size_t row = 0; row < kSide; ++row)
        loadRow(lines[0][row], pixels + static_cast<std::ptrdiff_t>(row) * rowStep);
    transpose(lines);
    for (std::size_t column = 0; column < kSide; ++column) {
        const auto rows = reinterpret_cast<Ints<32>>(lines[0][column]);
        weigh(units.YDU[0][column], rows, kY);
        weigh(units.CbDU[0][column], rows, kCb);
        weigh(units.CrDU[0][column], rows, kCr);
    }
}

[[gnu::target("avx2")]] void transformBlockAvx2(const std::uint8_t* pixels, std::ptrdiff_t rowStep,
                                                const Divisors& divisors, QuantisedBlock& block) {
    DataUnits<32> units;
    load_data_units_from_RGB_buffer(pixels, rowStep, units);
    transformUnits<32>(units, divisors, block);
}

#else

QUILLON_PART void weigh(Ints<16>& sample, const Ints<16>& pixels, const Weights& weights) {
    sample = (((pixels & 0xFF) * weights.blue + (pixels >> 8 & 0xFF) * weights.green +
               (pixels >> 16 & 0xFF) * weights.red) >>
              16) -
             weights.middle;
}

#endif

QUILLON_PART void load_data_units_from_RGB_buffer(const std::uint8_t* pixels,
                                                  std::ptrdiff_t rowStep, DataUnits<16>& units) {
    for (std::size_t part = 0; part < kParts<16>; ++part) {
        const std::uint8_t* const first = pixels + static_cast<std::ptrdiff_t>(4 * part) * rowStep;
        for (std::size_t column = 0; column < kSide; ++column) {
            const auto pixel = [&](int row) {
                return static_cast<std::int32_t>(
                    loadLe32(first + row * rowStep + kPixelBytes * column));
            };
            const Ints<16> rows = {pixel(0), pixel(1), pixel(2), pixel(3)};
            weigh(units.YDU[part][column], rows, kY);
            weigh(units.CbDU[part][column], rows, kCb);
            weigh(units.CrDU[part][column], rows, kCr);
        }
    }
}

}  // namespace

void transformBlock(const std::uint8_t* pixels, std::ptrdiff_t rowStep, const Divisors& divisors,
                    QuantisedBlock& block) {
    DataUnits<16> units;
    load_data_units_from_RGB_buffer(pixels, rowStep, units);
    transformUnits<16>(units, divisors, block);
}

TransformBlock* avx2Transform() {
#if defined(__x86_64__)
    return hasAvx2() ? transformBlockAvx2 : nullptr;
#else
    return nullptr;
#endif
}
