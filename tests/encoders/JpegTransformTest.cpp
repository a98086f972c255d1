// The transforms of many samples at a time against the scalar one, coefficient by coefficient.

#include "encoders/jpeg/JpegTransform.h"

#include <gmock/gmock.h>

#include <functional>
#include <vector>

#include "support/ScalarJpeg.h"

namespace {

using namespace scalar_jpeg;

constexpr std::size_t kRowBytes = 24;

struct Transform {
    const char* name;
    TransformBlock* run;
};
std::vector<Transform> transforms() {
    std::vector<Transform> all = {{"plain", transformBlock}};
    if (avx2Transform() != nullptr) all.push_back({"avx2", avx2Transform()});
    return all;
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
                                    kBytesAfterRow);
    for (std::size_t i = 0; i < bytes.size(); ++i)
        bytes[i] = byteAt(i);
    return bytes;
}

void expectScalar(const DataUnit& data, const DivisorTable& fdtbl, const QuantisedUnit& unit) {
    const Coefficients scalar = fdct_and_quantization(data, fdtbl);
    for (std::size_t i = 0; i < scalar.size(); ++i) {
        ASSERT_EQ(unit.DU_DCT[i], scalar[i]) << i;
        ASSERT_EQ((unit.nonzeroRows[i % 8] >> i / 8 & 1) != 0, scalar[i] != 0) << i;
    }
}

void expectScalar(const std::uint8_t* pixels, std::ptrdiff_t rowStep, const Divisors& divisors) {
    const DataUnits units = load_data_units(pixels, rowStep);
    for (const Transform& transform : transforms()) {
        SCOPED_TRACE(transform.name);
        QuantisedBlock result;
        transform.run(pixels, rowStep, divisors, result);
        expectScalar(units.YDU, divisors.fdtbl_Y, result.Y);
        expectScalar(units.CbDU, divisors.fdtbl_Cb, result.Cb);
        expectScalar(units.CrDU, divisors.fdtbl_Cb, result.Cr);
    }
}

class JpegTransform : public testing::TestWithParam<int> {
protected:
    const Divisors divisors_ = prepare_quant_tables(set_DQTinfo(GetParam()));
    Random random_;
};

TEST_P(JpegTransform, OfNoiseIsTheScalarOne) {
    for (int round = 0; round < 2000 && !HasFailure(); ++round) {
        const auto noise = block([&](std::size_t) { return random_.byte(); });
        expectScalar(noise.data(), kRowBytes, divisors_);
    }
}

TEST_P(JpegTransform, OfExtremesIsTheScalarOne) {
    for (int round = 0; round < 2000 && !HasFailure(); ++round) {
        const auto extremes = block([&](std::size_t) { return random_.byte() < 128 ? 0 : 255; });
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

INSTANTIATE_TEST_SUITE_P(Scales, JpegTransform, testing::Values(0, 1, 16, 50, 100, 255));

TEST(JpegTransformRows, MayBeAnywhereAndInEitherOrder) {
    const Divisors divisors = prepare_quant_tables(set_DQTinfo(50));
    Random random;
    for (std::size_t before = 0; before < 32; ++before) {
        for (const std::size_t between : {0u, 1u, 3u, 8u, 500u}) {
            const auto bytes = block([&](std::size_t) { return random.byte(); }, before, between);
            const auto step = static_cast<std::ptrdiff_t>(kRowBytes + between);
            expectScalar(&bytes[before], step, divisors);
            expectScalar(&bytes[before] + 7 * step, -step, divisors);
            if (testing::Test::HasFailure()) return;
        }
    }
}

}  // namespace
