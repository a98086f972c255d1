#include "encoders/JpegBlocks.h"

#include <bit>

#include "bytes/Bytes.h"

namespace {

// Parts of red, green and blue in a component, in 65536ths.
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
inline std::int32_t weighted(const Weights& weights, const std::uint8_t* pixel) {
    return (weights.red * pixel[2] + weights.green * pixel[1] + weights.blue * pixel[0]) >> 16;
}

// The coefficients of a block along the zig-zag.
Coefficients inZigzagOrder(const Coefficients& natural) {
    Coefficients ordered;
    for (std::size_t i = 0; i < natural.size(); ++i)
        ordered[zigzag[i]] = natural[i];
    return ordered;
}

// Bit i tells whether coefficient i is not 0.
std::uint64_t nonzeroBits(const Coefficients& coefficients) {
    std::array<std::uint8_t, 64> flags;
    for (std::size_t i = 0; i < flags.size(); ++i)
        flags[i] = coefficients[i] != 0 ? 1 : 0;

    // Multiplying moves the flag in byte i of eight to bit 56 + i; no two of them meet on the way.
    constexpr std::uint64_t kGather = 0x0102040810204080;
    std::uint64_t bits = 0;
    for (std::size_t i = 0; i < flags.size(); i += 8)
        bits |= (loadLe64(&flags[i]) * kGather >> 56) << i;
    return bits;
}

// A code and the bits that tell the value within its category, together 27 bits at most.
inline void putValue(BitWriter& bits, bitstring code, std::int32_t value) {
    const bitstring extra = bitcode(value);
    bits.put(std::uint32_t{code.value} << extra.length | extra.value,
             std::uint32_t{code.length} + extra.length);
}

// Codes the coefficients after the first, each with the zeros before it.
void putAC(BitWriter& bits, const Coefficients& DU, const HuffmanTable& HTAC) {
    constexpr std::uint32_t kLast = 63;
    std::uint64_t left = nonzeroBits(DU) & ~std::uint64_t{1};
    std::uint32_t before = 0;
    while (left != 0) {
        const auto i = static_cast<std::uint32_t>(std::countr_zero(left));
        left &= left - 1;
        std::uint32_t zeros = i - before - 1;
        for (; zeros >= 16; zeros -= 16)
            bits.put(HTAC[kSixteenZeros]);
        putValue(bits, HTAC[zeros * 16 + category(DU[i])], DU[i]);
        before = i;
    }
    if (before != kLast) bits.put(HTAC[kEndOfBlock]);
}

}  // namespace

void load_data_units(const std::uint8_t* pixels, std::size_t rowBytes, PictureBlock& block) {
    for (std::size_t row = 0; row < 8; ++row) {
        for (std::size_t column = 0; column < 8; ++column) {
            const std::uint8_t* const pixel = pixels + row * rowBytes + 3 * column;
            const std::size_t i = 8 * row + column;
            block.YDU[i] = static_cast<std::int8_t>(weighted(kY, pixel) - 128);
            block.CbDU[i] = static_cast<std::int8_t>(weighted(kCb, pixel));
            block.CrDU[i] = static_cast<std::int8_t>(weighted(kCr, pixel));
        }
    }
}

void process_DU(const DataUnit& ComponentDU, const ComponentCoding& coding, std::int16_t& DC,
                BitWriter& bits) {
    Coefficients DU_DCT;
    fdct_and_quantization(ComponentDU, coding.fdtbl, DU_DCT);
    const Coefficients DU = inZigzagOrder(DU_DCT);

    BitWriter own = bits;
    const std::int32_t difference = DU[0] - DC;
    DC = DU[0];
    putValue(own, coding.HTDC[category(difference)], difference);  // no more bits for 0
    putAC(own, DU, coding.HTAC);
    bits = own;
}
