#include "encoders/jpeg/JpegBlocks.h"

#include <bit>

#include "encoders/jpeg/JpegTables.h"

namespace {

// The codes of a component's data units.
struct ComponentCodes {
    ValueCodes dc;
    RunTable ac;
    bitstring sixteenZeros;
    bitstring endOfBlock;
};

consteval ComponentCodes makeComponentCodes(const HuffmanTable& HTDC, const HuffmanTable& HTAC) {
    return {makeValueCodes(HTDC), makeRunTable(HTAC), HTAC[kSixteenZeros], HTAC[kEndOfBlock]};
}
constexpr ComponentCodes kLuminanceCodes = makeComponentCodes(kHuffman.YDC_HT, kHuffman.YAC_HT);
constexpr ComponentCodes kChrominanceCodes = makeComponentCodes(kHuffman.CbDC_HT, kHuffman.CbAC_HT);

// For each column of coefficients and each set of rows, the places of these coefficients in the
// zig-zag sequence.
using PlacesOfRows = std::array<std::uint64_t, 256>;
consteval std::array<PlacesOfRows, 8> makePlaces() {
    std::array<PlacesOfRows, 8> places{};
    for (std::size_t column = 0; column < 8; ++column) {
        for (std::size_t rows = 1; rows < 256; ++rows) {
            const auto first = static_cast<std::size_t>(std::countr_zero(rows));
            places[column][rows] =
                places[column][rows & (rows - 1)] | std::uint64_t{1} << zigzag[8 * first + column];
        }
    }
    return places;
}
constexpr std::array<PlacesOfRows, 8> kPlaces = makePlaces();

// Bit i is set where the coefficient at place i of the zig-zag sequence is not 0.
inline std::uint64_t nonzeroPlaces(const QuantisedUnit& unit) {
    std::uint64_t places = 0;
    for (std::size_t column = 0; column < kPlaces.size(); ++column)
        places |= kPlaces[column][static_cast<std::size_t>(unit.nonzeroRows[column])];
    return places;
}

inline void writeValue(BitWriter& bits, const ValueCodes& codes, std::int32_t value) {
    const ValueCode& code = codes[lookUpSignedCategory(value)];
    bits.writebits(static_cast<std::uint32_t>(code.base + value), code.length);
}

// Codes the coefficients after the first, each with the zeros before it.
inline void writeAC(BitWriter& bits, const QuantisedUnit& unit, const ComponentCodes& codes) {
    constexpr std::uint32_t kLast = 63;
    std::uint64_t left = nonzeroPlaces(unit) & ~std::uint64_t{1};
    std::uint32_t before = 0;
    while (left != 0) {
        const auto place = static_cast<std::uint32_t>(std::countr_zero(left));
        left &= left - 1;
        std::uint32_t zeros = place - before - 1;
        for (; zeros >= 16; zeros -= 16)
            bits.writebits(codes.sixteenZeros);
        writeValue(bits, codes.ac[zeros], unit.DU_DCT[naturalOrder[place]]);
        before = place;
    }
    if (before != kLast) bits.writebits(codes.endOfBlock);
}

inline void process_DU(const QuantisedUnit& unit, const ComponentCodes& codes, std::int32_t& DC,
                       BitWriter& bits) {
    writeValue(bits, codes.dc, unit.DU_DCT[0] - DC);
    DC = unit.DU_DCT[0];
    writeAC(bits, unit, codes);
}

}  // namespace

void codeBlocks(const std::uint8_t* pixels, std::ptrdiff_t rowStep, std::size_t blocks,
                const Divisors& fdtbl, DcPredictors& dcPredictors, BitWriter& bits) {
    TransformBlock* const avx2 = avx2Transform();
    TransformBlock* const transform = avx2 != nullptr ? avx2 : transformBlock;
    auto& [DC_Y, DC_Cb, DC_Cr] = dcPredictors;
    BitWriter own = bits;
    for (std::size_t i = 0; i < blocks; ++i) {
        QuantisedBlock block;
        transform(pixels + 24 * i, rowStep, fdtbl, block);
        process_DU(block.Y, kLuminanceCodes, DC_Y, own);
        process_DU(block.Cb, kChrominanceCodes, DC_Cb, own);
        process_DU(block.Cr, kChrominanceCodes, DC_Cr, own);
    }
    bits = own;
}

void codeUnchangedBlock(BitWriter& bits) {
    for (const ComponentCodes* codes : {&kLuminanceCodes, &kChrominanceCodes, &kChrominanceCodes}) {
        writeValue(bits, codes->dc, 0);
        bits.writebits(codes->endOfBlock);
    }
}
