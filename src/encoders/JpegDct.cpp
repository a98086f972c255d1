#include "encoders/JpegDct.h"

#include <cstddef>

namespace {

constexpr std::size_t kSide = 8;
using Samples = std::array<float, kSide * kSide>;

// By how much the outputs of the one-dimensional transform are too large: cos(k * pi / 16) times
// the square root of 2, but 1 for the mean.
constexpr std::array<double, kSide> aan_scale = {1.0, 1.387039845, 1.306562965, 1.175875602,
                                                 1.0, 0.785694958, 0.541196100, 0.275899379};

// Transforms the eight columns of a block, by the flow graph of Arai, Agui and Nakajima: five
// multiplications each, their outputs scaled. The columns do not touch, so a compiler takes several
// at a time.
inline void transformColumns(Samples& samples) {
    for (std::size_t column = 0; column < kSide; ++column) {
        float* const s = &samples[column];
        const float sum07 = s[0] + s[56];
        const float sum16 = s[8] + s[48];
        const float sum25 = s[16] + s[40];
        const float sum34 = s[24] + s[32];
        const float difference07 = s[0] - s[56];
        const float difference16 = s[8] - s[48];
        const float difference25 = s[16] - s[40];
        const float difference34 = s[24] - s[32];

        const float outer = sum07 + sum34;
        const float inner = sum16 + sum25;
        const float outerSlope = sum07 - sum34;
        const float innerSlope = sum16 - sum25;
        const float evenTurn = (innerSlope + outerSlope) * 0.707106781f;
        s[0] = outer + inner;
        s[32] = outer - inner;
        s[16] = outerSlope + evenTurn;
        s[48] = outerSlope - evenTurn;

        const float low = difference34 + difference25;
        const float middle = difference25 + difference16;
        const float high = difference16 + difference07;
        const float turn = (low - high) * 0.382683433f;
        const float lowTurned = low * 0.541196100f + turn;
        const float highTurned = high * 1.306562965f + turn;
        const float middleTurned = middle * 0.707106781f;
        const float above = difference07 + middleTurned;
        const float below = difference07 - middleTurned;
        s[40] = below + lowTurned;
        s[24] = below - lowTurned;
        s[8] = above + highTurned;
        s[56] = above - highTurned;
    }
}

template <typename Block>
inline Samples transposed(const Block& block) {
    Samples turned;
    for (std::size_t row = 0; row < kSide; ++row) {
        for (std::size_t column = 0; column < kSide; ++column)
            turned[column * kSide + row] = static_cast<float>(block[row * kSide + column]);
    }
    return turned;
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

void fdct_and_quantization(const DataUnit& data, const DivisorTable& fdtbl, Coefficients& outdata) {
    Samples turned = transposed(data);
    transformColumns(turned);  // the rows of the block
    Samples samples = transposed(turned);
    transformColumns(samples);
    for (std::size_t i = 0; i < samples.size(); ++i)
        outdata[i] = quantised(samples[i] * fdtbl[i]);
}
