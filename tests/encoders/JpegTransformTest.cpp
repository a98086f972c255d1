// The transforms of many samples at a time against one of single samples, coefficient by
// coefficient. JpegTest has some coefficients worked out by hand.

#include "encoders/jpeg/JpegTransform.h"

#include <gmock/gmock.h>

#include <cmath>
#include <functional>
#include <random>
#include <vector>

#include "encoders/jpeg/JpegDct.h"

namespace {

constexpr std::size_t kSide = 8;
constexpr std::size_t kRowBytes = 24;

using Coefficients = std::array<std::int32_t, kSide * kSide>;

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

// Rounded down, below 0 too.
float sampleOf(const std::uint8_t* pixel, const Weights& weights) {
    const std::int32_t sum =
        weights.blue * pixel[0] + weights.green * pixel[1] + weights.red * pixel[2];
    return static_cast<float>((sum >> 16) - weights.middle);
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

// The quantised coefficients of one component: rows transformed before columns, halves rounded
// upward.
Coefficients scalarCoefficients(const std::uint8_t* pixels, std::ptrdiff_t rowStep,
                                const Weights& weights, const DivisorTable& fdtbl) {
    std::array<float, kSide * kSide> values;
    for (std::size_t i = 0; i < values.size(); ++i) {
        const auto row = static_cast<std::ptrdiff_t>(i / kSide);
        values[i] = sampleOf(pixels + row * rowStep + 3 * (i % kSide), weights);
    }
    for (std::size_t row = 0; row < kSide; ++row)
        transformEvery(&values[kSide * row], 1);
    for (std::size_t column = 0; column < kSide; ++column)
        transformEvery(&values[column], kSide);
    Coefficients coefficients;
    for (std::size_t i = 0; i < values.size(); ++i) {
        const float quantised = values[i] * fdtbl[i];
        coefficients[i] = static_cast<std::int32_t>(std::floor(double{quantised} + 0.5));
    }
    return coefficients;
}

struct Transform {
    const char* name;
    TransformBlock* run;
};
std::vector<Transform> transforms() {
    std::vector<Transform> all = {{"plain", transformBlock}};
    if (avx2Transform() != nullptr) all.push_back({"avx2", avx2Transform()});
    return all;
}

// A block in memory that ends where a transform may not read any more.
std::vector<std::uint8_t> block(const std::function<std::uint8_t(std::size_t)>& byteAt,
                                std::size_t before = 0, std::size_t between = 0) {
    std::vector<std::uint8_t> bytes(before + 7 * (kRowBytes + between) + kRowBytes +
                                    kBytesAfterRow);
    for (std::size_t i = 0; i < bytes.size(); ++i)
        bytes[i] = byteAt(i);
    return bytes;
}

void expectUnit(const QuantisedUnit& unit, const Coefficients& scalar) {
    for (std::size_t i = 0; i < scalar.size(); ++i) {
        ASSERT_EQ(unit.DU_DCT[i], scalar[i]) << i;
        ASSERT_EQ((unit.nonzeroRows[i % 8] >> i / 8 & 1) != 0, scalar[i] != 0) << i;
    }
}

void expectScalar(const std::uint8_t* pixels, std::ptrdiff_t rowStep, const Divisors& divisors) {
    const Coefficients y = scalarCoefficients(pixels, rowStep, kY, divisors.fdtbl_Y);
    const Coefficients cb = scalarCoefficients(pixels, rowStep, kCb, divisors.fdtbl_Cb);
    const Coefficients cr = scalarCoefficients(pixels, rowStep, kCr, divisors.fdtbl_Cb);
    for (const Transform& transform : transforms()) {
        SCOPED_TRACE(transform.name);
        QuantisedBlock result;
        transform.run(pixels, rowStep, divisors, result);
        expectUnit(result.Y, y);
        expectUnit(result.Cb, cb);
        expectUnit(result.Cr, cr);
    }
}

class JpegTransform : public testing::TestWithParam<int> {
protected:
    std::uint8_t randomByte() { return static_cast<std::uint8_t>(random_()); }

    const Divisors divisors_ = prepare_quant_tables(set_DQTinfo(GetParam()));

private:
    std::mt19937 random_;
};

TEST_P(JpegTransform, OfNoiseIsTheScalarOne) {
    for (int round = 0; round < 2000 && !HasFailure(); ++round) {
        const auto noise = block([&](std::size_t) { return randomByte(); });
        expectScalar(noise.data(), kRowBytes, divisors_);
    }
}

TEST_P(JpegTransform, OfExtremesIsTheScalarOne) {
    for (int round = 0; round < 2000 && !HasFailure(); ++round) {
        const auto extremes = block([&](std::size_t) { return randomByte() < 128 ? 0 : 255; });
        expectScalar(extremes.data(), kRowBytes, divisors_);
    }
}

// Flat blocks and steps: their coefficients are often exactly on a half.
TEST_P(JpegTransform, OfSimpleNumbersIsTheScalarOne) {
    for (int level = 0; level < 256 && !HasFailure(); ++level) {
        for (const std::size_t period : {1u, 24u, 48u, 96u}) {
            const auto steps = block([&](std::size_t i) {
                return static_cast<std::uint8_t>(i / period % 2 == 0 ? level : 128);
            });
            expectScalar(steps.data(), kRowBytes, divisors_);
        }
    }
}

TEST_P(JpegTransform, TakesRowsAnywhereAndInEitherOrder) {
    for (std::size_t before = 0; before < 32 && !HasFailure(); ++before) {
        for (const std::size_t between : {0u, 1u, 3u, 8u, 500u}) {
            const auto bytes = block([&](std::size_t) { return randomByte(); }, before, between);
            const auto step = static_cast<std::ptrdiff_t>(kRowBytes + between);
            expectScalar(&bytes[before], step, divisors_);
            expectScalar(&bytes[before] + 7 * step, -step, divisors_);
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Scales, JpegTransform, testing::Values(0, 1, 16, 50, 100, 255));

}  // namespace
