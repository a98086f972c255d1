#include "encoders/jpeg/JpegQuantisation.h"

#include <algorithm>
#include <cstddef>

namespace {

constexpr std::size_t kSide = 8;
constexpr std::size_t kLuminanceAt = 5;  // in the segment
constexpr std::size_t kChrominanceAt = 70;

// By how much the outputs of the one-dimensional transform are too large: cos(k * pi / 16) times
// the square root of 2, but 1 for the DC coefficient.
constexpr std::array<double, kSide> aan_scale = {1.0, 1.387039845, 1.306562965, 1.175875602,
                                                 1.0, 0.785694958, 0.541196100, 0.275899379};

// `quantisers` are in zig-zag order.
DivisorTable divisorTable(const std::uint8_t* quantisers) {
    DivisorTable fdtbl;
    for (std::size_t i = 0; i < fdtbl.size(); ++i) {
        fdtbl[i] = static_cast<float>(
            1.0 / (quantisers[zigzag[i]] * aan_scale[i / kSide] * aan_scale[i % kSide] * 8.0));
    }
    return fdtbl;
}

}  // namespace

void set_quant_table(const QuantTable& basic_table, std::uint8_t scale_factor,
                     std::span<std::uint8_t, 64> newtable) {
    for (std::size_t i = 0; i < basic_table.size(); ++i) {
        const int rounded = (basic_table[i] * scale_factor + 50) / 100;
        newtable[zigzag[i]] = static_cast<std::uint8_t>(std::clamp(rounded, 1, 255));
    }
}

QuantSegment set_DQTinfo(int scale_factor) {
    QuantSegment segment{0xFF, 0xDB, 0x00, 0x84};
    const auto scale = static_cast<std::uint8_t>(scale_factor);
    set_quant_table(std_luminance_qt, scale, std::span(segment).subspan<kLuminanceAt, 64>());
    segment[kChrominanceAt - 1] = 1;
    set_quant_table(std_chrominance_qt, scale, std::span(segment).subspan<kChrominanceAt, 64>());
    return segment;
}

Divisors prepare_quant_tables(const QuantSegment& DQTinfo) {
    return {divisorTable(&DQTinfo[kLuminanceAt]), divisorTable(&DQTinfo[kChrominanceAt])};
}
