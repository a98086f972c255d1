// The transforms of many samples at a time against the plain one, coefficient by coefficient.

#include "encoders/jpeg/JpegTransform.h"

#include <gmock/gmock.h>

#include <functional>
#include <vector>

#include "encoders/jpeg/JpegSegments.h"

namespace {

constexpr std::size_t kRowBytes = 24;

struct Transform {
    const char* name;
    TransformPixels* run;
};
std::vector<Transform> transforms() {
    std::vector<Transform> all = {{"narrow", transformPixels}};
    if (wideTransform() != nullptr) all.push_back({"wide", wideTransform()});
    return all;
}

Divisors divisorsOf(int scale) {
    const QuantSegment tables = set_DQTinfo(scale);
    return {prepare_quant_table(tables.luminance()), prepare_quant_table(tables.chrominance())};
}

class Random {
public:
    std::uint8_t byte() {
        state_ = state_ * 1664525 + 1013904223;
        return static_cast<std::uint8_t>(state_ >> 24);
    }

private:
    std::uint32_t state_ = 1;
};

// A block in memory that ends where a transform may not read any more.
std::vector<std::uint8_t> block(const std::function<std::uint8_t(std::size_t)>& byteAt,
                                std::size_t before = 0, std::size_t between = 0) {
    std::vector<std::uint8_t> bytes(before + 7 * (kRowBytes + between) + kRowBytes +
                                    kBytesBehindRow);
    for (std::size_t i = 0; i < bytes.size(); ++i)
        bytes[i] = byteAt(i);
    return bytes;
}

void expectPlain(const Coefficients& plain, const QuantisedUnit& unit) {
    for (std::size_t i = 0; i < plain.size(); ++i) {
        ASSERT_EQ(unit.values[i], plain[i]) << i;
        ASSERT_EQ((unit.nonzeroRows[i % 8] >> i / 8 & 1) != 0, plain[i] != 0) << i;
    }
}

void expectPlain(const std::uint8_t* pixels, std::ptrdiff_t rowStep, const Divisors& divisors) {
    PictureBlock samples;
    load_data_units(pixels, rowStep, samples);
    Coefficients luminance;
    Coefficients cb;
    Coefficients cr;
    fdct_and_quantization(samples.YDU, divisors.luminance, luminance);
    fdct_and_quantization(samples.CbDU, divisors.chrominance, cb);
    fdct_and_quantization(samples.CrDU, divisors.chrominance, cr);
    for (const Transform& transform : transforms()) {
        SCOPED_TRACE(transform.name);
        QuantisedBlock result;
        transform.run(pixels, rowStep, divisors, result);
        expectPlain(luminance, result[0]);
        expectPlain(cb, result[1]);
        expectPlain(cr, result[2]);
    }
}

class JpegTransform : public testing::TestWithParam<int> {
protected:
    const Divisors divisors_ = divisorsOf(GetParam());
    Random random_;
};

TEST_P(JpegTransform, OfNoiseIsThePlainOne) {
    for (int round = 0; round < 2000 && !HasFailure(); ++round) {
        const auto noise = block([&](std::size_t) { return random_.byte(); });
        expectPlain(noise.data(), kRowBytes, divisors_);
    }
}

TEST_P(JpegTransform, OfExtremesIsThePlainOne) {
    for (int round = 0; round < 2000 && !HasFailure(); ++round) {
        const auto extremes = block([&](std::size_t) { return random_.byte() < 128 ? 0 : 255; });
        expectPlain(extremes.data(), kRowBytes, divisors_);
    }
}

// Flat blocks and steps: their coefficients often lie right on a half.
TEST_P(JpegTransform, OfSimpleNumbersIsThePlainOne) {
    for (int level = 0; level < 256 && !HasFailure(); ++level) {
        for (const std::size_t period : {1u, 24u, 48u, 96u}) {
            const auto steps = block([&](std::size_t i) {
                return static_cast<std::uint8_t>(i / period % 2 == 0 ? level : 128);
            });
            expectPlain(steps.data(), kRowBytes, divisors_);
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Scales, JpegTransform, testing::Values(0, 1, 16, 50, 100, 255));

TEST(JpegTransformRows, LieAnywhereAndRunEitherWay) {
    const Divisors divisors = divisorsOf(50);
    Random random;
    for (std::size_t before = 0; before < 32; ++before) {
        for (const std::size_t between : {0u, 1u, 3u, 8u, 500u}) {
            const auto bytes = block([&](std::size_t) { return random.byte(); }, before, between);
            const auto step = static_cast<std::ptrdiff_t>(kRowBytes + between);
            expectPlain(&bytes[before], step, divisors);
            expectPlain(&bytes[before] + 7 * step, -step, divisors);
            if (testing::Test::HasFailure()) return;
        }
    }
}

}  // namespace
