#include "support/ScalarJpeg.h"

#include <algorithm>

#include "encoders/jpeg/JpegDct.h"

namespace scalar_jpeg {
namespace {

constexpr std::size_t kSide = 8;

// The parts of red, green and blue in a component, in 65536ths.
struct Weights {
    std::int32_t red;
    std::int32_t green;
    std::int32_t blue;
};
constexpr Weights kY = {19595, 38470, 7471};
constexpr Weights kCb = {-11058, -21708, 32768};
constexpr Weights kCr = {32768, -27438, -5328};

// Rounded down, below 0 too. No sum leaves the range of a component: the weights of luminance add up
// to 65536, those of the others to at most half of it on either side.
std::int32_t weighted(const Weights& weights, const std::uint8_t* pixel) {
    return (weights.red * pixel[2] + weights.green * pixel[1] + weights.blue * pixel[0]) >> 16;
}

// Transforms the eight values that are `step` apart.
void transformEvery(float* values, std::size_t step) {
    float line[kSide];
    for (std::size_t i = 0; i < kSide; ++i)
        line[i] = values[step * i];
    transformLine(line);
    for (std::size_t i = 0; i < kSide; ++i)
        values[step * i] = line[i];
}

}  // namespace

DataUnits load_data_units(const std::uint8_t* pixels, std::ptrdiff_t rowStep) {
    DataUnits units;
    for (std::size_t i = 0; i < units.YDU.size(); ++i) {
        const std::uint8_t* const pixel =
            pixels + static_cast<std::ptrdiff_t>(i / kSide) * rowStep + 3 * (i % kSide);
        units.YDU[i] = static_cast<std::int8_t>(weighted(kY, pixel) - 128);
        units.CbDU[i] = static_cast<std::int8_t>(weighted(kCb, pixel));
        units.CrDU[i] = static_cast<std::int8_t>(weighted(kCr, pixel));
    }
    return units;
}

Coefficients fdct_and_quantization(const DataUnit& data, const DivisorTable& fdtbl) {
    std::array<float, kSide * kSide> values;
    std::copy(data.begin(), data.end(), values.begin());
    for (std::size_t row = 0; row < kSide; ++row)
        transformEvery(&values[kSide * row], 1);
    for (std::size_t column = 0; column < kSide; ++column)
        transformEvery(&values[column], kSide);
    Coefficients outdata;
    for (std::size_t i = 0; i < values.size(); ++i)
        outdata[i] = rounded(values[i] * fdtbl[i]);
    return outdata;
}

std::int16_t rounded(float value) {
    const double raised = static_cast<double>(value) + 16384.5;
    const double atLeast = raised > -32768.0 ? raised : -32768.0;  // also NaN
    const double bounded = atLeast < 32767.0 ? atLeast : 32767.0;
    return static_cast<std::int16_t>(static_cast<std::int32_t>(bounded) - 16384);
}

}  // namespace scalar_jpeg
