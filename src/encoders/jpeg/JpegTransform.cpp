#include "encoders/jpeg/JpegTransform.h"

#include <cstring>
#include <utility>

#include "bytes/Bytes.h"
#include "encoders/jpeg/JpegDct.h"
#include "pixels/WideVectors.h"

#if defined(__x86_64__)
#include <immintrin.h>
#endif

// Each function below becomes a part of its caller, which decides what processor it is made for,
// and takes vectors by reference: how a function of its own would be handed one differs between
// processors.
#define QUILLON_PART [[gnu::always_inline]] inline

namespace {

constexpr std::size_t kSide = 8;
constexpr std::size_t kPixelBytes = 3;

// Samples that are worked on at once.
template <std::size_t kLanes>
struct Lanes {
    typedef float Floats __attribute__((vector_size(4 * kLanes)));
    typedef std::int32_t Ints __attribute__((vector_size(4 * kLanes)));
};

// The samples of a data unit: lane j of line i is the one in row j, column i.
template <std::size_t kLanes>
using Samples = typename Lanes<kLanes>::Ints[kSide / kLanes][kSide];

// The parts of blue, green and red in a component, in 65536ths, and the middle of its range.
struct Weights {
    std::int32_t blue;
    std::int32_t green;
    std::int32_t red;
    std::int32_t middle;
};
constexpr Weights kWeights[] = {
    {7471, 38470, 19595, 128}, {32768, -21708, -11058, 0}, {-5328, -27438, 32768, 0}};

// Multiplies a row of coefficients and rounds them to the nearest integer, halves upward. The sum
// with kUnits has no bits for a fraction: adding rounds to the nearest, halves to even, so the
// remainder shows which halves went down.
template <typename Floats, typename Ints>
QUILLON_PART void quantise(Ints& rounded, const Floats& coefficients, const float* divisors) {
    constexpr float kUnits = 12582912.0f;  // 1.5 * 2^23
    constexpr std::int32_t kUnitsBits = 0x4B400000;
    Floats factors;
    std::memcpy(&factors, divisors, sizeof factors);
    const Floats value = coefficients * factors;
    const Floats raised = value + kUnits;
    const Ints wentDown = reinterpret_cast<Ints>(value - (raised - kUnits) >= 0.5f);
    rounded = reinterpret_cast<Ints>(raised) - kUnitsBits - wentDown;
}

// From rows to columns and back: lane j of line i becomes lane i of line j.
QUILLON_PART void turnQuarter(Lanes<4>::Floats* lines) {
    typedef Lanes<4>::Floats Floats;
    const Floats low01 = __builtin_shufflevector(lines[0], lines[1], 0, 4, 1, 5);
    const Floats high01 = __builtin_shufflevector(lines[0], lines[1], 2, 6, 3, 7);
    const Floats low23 = __builtin_shufflevector(lines[2], lines[3], 0, 4, 1, 5);
    const Floats high23 = __builtin_shufflevector(lines[2], lines[3], 2, 6, 3, 7);
    lines[0] = __builtin_shufflevector(low01, low23, 0, 1, 4, 5);
    lines[1] = __builtin_shufflevector(low01, low23, 2, 3, 6, 7);
    lines[2] = __builtin_shufflevector(high01, high23, 0, 1, 4, 5);
    lines[3] = __builtin_shufflevector(high01, high23, 2, 3, 6, 7);
}

QUILLON_PART void turn(Lanes<4>::Floats (&lines)[2][kSide]) {
    for (auto& half : lines) {
        turnQuarter(&half[0]);
        turnQuarter(&half[4]);
    }
    for (std::size_t i = 0; i < kSide / 2; ++i)
        std::swap(lines[0][4 + i], lines[1][i]);
}

#if defined(__x86_64__)
QUILLON_PART void turn(Lanes<8>::Floats (&lines)[1][kSide]) {
    typedef Lanes<8>::Floats Floats;
    Floats(&s)[kSide] = lines[0];
    Floats pairs[kSide];
    for (std::size_t i = 0; i < kSide; i += 2) {
        pairs[i] = __builtin_shufflevector(s[i], s[i + 1], 0, 8, 1, 9, 4, 12, 5, 13);
        pairs[i + 1] = __builtin_shufflevector(s[i], s[i + 1], 2, 10, 3, 11, 6, 14, 7, 15);
    }
    Floats fours[kSide];
    for (std::size_t i = 0; i < kSide; i += 4) {
        for (std::size_t j = 0; j < 2; ++j) {
            const Floats& above = pairs[i + j];
            const Floats& below = pairs[i + j + 2];
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

template <std::size_t kLanes>
QUILLON_PART void transformUnit(const Samples<kLanes>& samples, const DivisorTable& divisors,
                                QuantisedUnit& unit) {
    typedef typename Lanes<kLanes>::Floats Floats;
    typedef typename Lanes<kLanes>::Ints Ints;
    constexpr std::size_t kParts = kSide / kLanes;
    Floats lines[kParts][kSide];
    for (std::size_t part = 0; part < kParts; ++part) {
        for (std::size_t i = 0; i < kSide; ++i)
            lines[part][i] = __builtin_convertvector(samples[part][i], Floats);
        transformLine(lines[part]);
    }
    turn(lines);
    for (std::size_t part = 0; part < kParts; ++part) {
        transformLine(lines[part]);
        Ints nonzeroRows{};
        for (std::size_t row = 0; row < kSide; ++row) {
            const std::size_t at = kSide * row + kLanes * part;
            Ints values;
            quantise(values, lines[part][row], &divisors[at]);
            std::memcpy(&unit.values[at], &values, sizeof values);
            const std::int32_t bit = 1 << row;
            nonzeroRows |= reinterpret_cast<Ints>(values != 0) & bit;
        }
        std::memcpy(&unit.nonzeroRows[kLanes * part], &nonzeroRows, sizeof nonzeroRows);
    }
}

template <std::size_t kLanes>
QUILLON_PART void transformUnits(const Samples<kLanes> (&samples)[3], const Divisors& divisors,
                                 QuantisedBlock& block) {
    transformUnit<kLanes>(samples[0], divisors.fdtbl_Y, block[0]);
    transformUnit<kLanes>(samples[1], divisors.fdtbl_Cb, block[1]);
    transformUnit<kLanes>(samples[2], divisors.fdtbl_Cb, block[2]);
}

// Below, `pixels` has one in each lane: blue in the lowest byte, then green and red. What is in the
// highest does not matter. The weighted sums are rounded down, below 0 too.

#if defined(__x86_64__)

// These processors multiply halves of 16 bits and add the products up in pairs: blue with red, and
// green. Weights that are too large are halved; what they weigh is then doubled.
constexpr std::int32_t kBlueRed = 0x00FF00FF;
constexpr std::int32_t kDoubledGreen = 0x000001FE;

struct PairWeights {
    std::int32_t blueRed;
    std::int32_t green;
    int doubled;
};
consteval std::int32_t pairOf(std::int32_t low, std::int32_t high) {
    return (low & 0xFFFF) | high * 65536;
}
consteval PairWeights inPairs(const Weights& weights) {
    const int halved = weights.blue > INT16_MAX || weights.red > INT16_MAX ? 1 : 0;
    return {pairOf(weights.blue >> halved, weights.red >> halved), pairOf(weights.green >> 1, 0),
            halved};
}
constexpr PairWeights kPairWeights[] = {inPairs(kWeights[0]), inPairs(kWeights[1]),
                                        inPairs(kWeights[2])};

QUILLON_PART void weigh(Lanes<4>::Ints& sample, const Lanes<4>::Ints& pixels,
                        std::size_t component) {
    typedef Lanes<4>::Ints Ints;
    const PairWeights& weights = kPairWeights[component];
    const Ints blueRed = (pixels & kBlueRed) << weights.doubled;
    const Ints green = pixels >> 7 & kDoubledGreen;
    const Ints sum = reinterpret_cast<Ints>(_mm_madd_epi16(reinterpret_cast<__m128i>(blueRed),
                                                           _mm_set1_epi32(weights.blueRed))) +
                     reinterpret_cast<Ints>(_mm_madd_epi16(reinterpret_cast<__m128i>(green),
                                                           _mm_set1_epi32(weights.green)));
    sample = (sum >> 16) - kWeights[component].middle;
}

[[gnu::target("avx2")]] QUILLON_PART void weigh(Lanes<8>::Ints& sample,
                                                const Lanes<8>::Ints& pixels,
                                                std::size_t component) {
    typedef Lanes<8>::Ints Ints;
    const PairWeights& weights = kPairWeights[component];
    const Ints blueRed = (pixels & kBlueRed) << weights.doubled;
    const Ints green = pixels >> 7 & kDoubledGreen;
    const Ints sum = reinterpret_cast<Ints>(_mm256_madd_epi16(reinterpret_cast<__m256i>(blueRed),
                                                              _mm256_set1_epi32(weights.blueRed))) +
                     reinterpret_cast<Ints>(_mm256_madd_epi16(reinterpret_cast<__m256i>(green),
                                                              _mm256_set1_epi32(weights.green)));
    sample = (sum >> 16) - kWeights[component].middle;
}

// A row of eight pixels.
[[gnu::target("avx2")]] QUILLON_PART void loadRow(Lanes<8>::Floats& row,
                                                  const std::uint8_t* pixels) {
    const __m256i spread = _mm256_broadcastsi128_si256(
        _mm_setr_epi8(0, 1, 2, -1, 3, 4, 5, -1, 6, 7, 8, -1, 9, 10, 11, -1));
    const auto half = [&](std::size_t at) {
        return _mm_loadu_si128(reinterpret_cast<const __m128i*>(pixels + at));
    };
    row = reinterpret_cast<Lanes<8>::Floats>(
        _mm256_shuffle_epi8(_mm256_set_m128i(half(4 * kPixelBytes), half(0)), spread));
}

[[gnu::target("avx2")]] void transformWide(const std::uint8_t* pixels, std::ptrdiff_t rowStep,
                                           const Divisors& divisors, QuantisedBlock& block) {
    Lanes<8>::Floats lines[1][kSide];
    for (std::size_t row = 0; row < kSide; ++row)
        loadRow(lines[0][row], pixels + static_cast<std::ptrdiff_t>(row) * rowStep);
    turn(lines);
    Samples<8> samples[3];
    for (std::size_t column = 0; column < kSide; ++column) {
        for (std::size_t component = 0; component < 3; ++component) {
            weigh(samples[component][0][column], reinterpret_cast<Lanes<8>::Ints>(lines[0][column]),
                  component);
        }
    }
    transformUnits<8>(samples, divisors, block);
}

#else

QUILLON_PART void weigh(Lanes<4>::Ints& sample, const Lanes<4>::Ints& pixels,
                        std::size_t component) {
    const Weights& weights = kWeights[component];
    sample = (((pixels & 0xFF) * weights.blue + (pixels >> 8 & 0xFF) * weights.green +
               (pixels >> 16 & 0xFF) * weights.red) >>
              16) -
             weights.middle;
}

#endif

}  // namespace

void transformPixels(const std::uint8_t* pixels, std::ptrdiff_t rowStep, const Divisors& divisors,
                     QuantisedBlock& block) {
    Samples<4> samples[3];
    for (std::size_t part = 0; part < 2; ++part) {
        const std::uint8_t* const first = pixels + static_cast<std::ptrdiff_t>(4 * part) * rowStep;
        for (std::size_t column = 0; column < kSide; ++column) {
            const auto pixel = [&](int row) {
                return static_cast<std::int32_t>(
                    loadLe32(first + row * rowStep + kPixelBytes * column));
            };
            const Lanes<4>::Ints rows = {pixel(0), pixel(1), pixel(2), pixel(3)};
            for (std::size_t component = 0; component < 3; ++component)
                weigh(samples[component][part][column], rows, component);
        }
    }
    transformUnits<4>(samples, divisors, block);
}

TransformPixels* wideTransform() {
#if defined(__x86_64__)
    return hasWideVectors() ? transformWide : nullptr;
#else
    return nullptr;
#endif
}
