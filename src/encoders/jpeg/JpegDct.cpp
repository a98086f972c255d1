#include "encoders/jpeg/JpegDct.h"

#include <algorithm>
#include <cstddef>

namespace {

constexpr std::size_t kSide = 8;

// By how much the outputs of the one-dimensional transform are too large: cos(k * pi / 16) times
// the square root of 2, but 1 for the mean.
constexpr std::array<double, kSide> aan_scale = {1.0, 1.387039845, 1.306562965, 1.175875602,
                                                 1.0, 0.785694958, 0.541196100, 0.275899379};

// The parts of red, green and blue in a component, in 65536ths.
struct Weights {
    std::int32_t red;
    std::int32_t green;
    std::int32_t blue;
};
constexpr Weights kY = {19595, 38470, 7471};
constexpr Weights kCb = {-11058, -21708, 32768};
constexpr Weights kCr = {32768, -27438, -5328};

// Rounded down, below 0 too. No sum leaves the range of a component: the weights of luminance make
// up 65536, those of the others at most half of it to either side.
std::int32_t weighted(const Weights& weights, const std::uint8_t* pixel) {
    return (weights.red * pixel[2] + weights.green * pixel[1] + weights.blue * pixel[0]) >> 16;
}

// Transforms the values that lie `step` apart.
void transformEvery(float* values, std::size_t step) {
    float line[kSide];
    for (std::size_t i = 0; i < kSide; ++i)
        line[i] = values[step * i];
    transformLine(line);
    for (std::size_t i = 0; i < kSide; ++i)
        values[step * i] = line[i];
}

}  // namespace

DivisorTable prepare_quant_table(const QuantTable& quantisers) {
    DivisorTable divisors;
    for (std::size_t i = 0; i < divisors.size(); ++i) {
        divisors[i] = static_cast<float>(
            1.0 / (quantisers[zigzag[i]] * aan_scale[i / kSide] * aan_scale[i % kSide] * 8.0));
    }
    return divisors;
}

void load_data_units(const std::uint8_t* pixels, std::ptrdiff_t rowStep, PictureBlock& block) {
    for (std::size_t i = 0; i < block.YDU.size(); ++i) {
        const std::uint8_t* const pixel =
            pixels + static_cast<std::ptrdiff_t>(i / kSide) * rowStep + 3 * (i % kSide);
        block.YDU[i] = static_cast<std::int8_t>(weighted(kY, pixel) - 128);
        block.CbDU[i] = static_cast<std::int8_t>(weighted(kCb, pixel));
        block.CrDU[i] = static_cast<std::int8_t>(weighted(kCr, pixel));
    }
}

void fdct_and_quantization(const DataUnit& data, const DivisorTable& fdtbl, Coefficients& outdata) {
    std::array<float, kSide * kSide> values;
    std::copy(data.begin(), data.end(), values.begin());
    for (std::size_t row = 0; row < kSide; ++row)
        transformEvery(&values[kSide * row], 1);
    for (std::size_t column = 0; column < kSide; ++column)
        transformEvery(&values[column], kSide);
    for (std::size_t i = 0; i < values.size(); ++i)
        outdata[i] = quantised(values[i] * fdtbl[i]);
}
