#include "encoders/exr/PizBlock.h"

#include <algorithm>
#include <array>
#include <optional>
#include <vector>

namespace {

constexpr std::uint32_t kBitmapBytes = 8192;
constexpr std::uint32_t kSymbols = 65537;  // all 16-bit values and the run code
constexpr std::uint64_t kHuffmanHeaderBytes = 20;
// The loader counts bits in an int.
constexpr std::uint32_t kMaxHuffmanBytes = (1u << 28) - 1;

constexpr std::size_t kCodeLengths = 59;  // 0 to 58
constexpr std::uint32_t kShortRun = 59;   // this and the next three: 2 to 5 unused symbols
constexpr std::uint32_t kLongRun = 63;    // followed by 8 bits: 6 to 261 unused symbols

// A code of more than 14 bits shares a slot with all codes of the same first 14 bits, and the loader
// searches a slot from its start. Maps of 8192 pixels a row put some thirty codes into one slot, maps
// of hundreds of thousands a thousand; an invented table could put all of them into one.
constexpr int kSlotBits = 14;
constexpr std::uint32_t kMaxCodesPerSlot = 4096;

struct BitReader {
    Bytes bytes;
    std::uint64_t at = 0;  // the byte that is read next
    std::uint32_t held = 0;
    int heldBits = 0;

    std::uint32_t take(int count) {
        while (heldBits < count) {
            held = held << 8 | bytes.u8(at++);
            heldBits += 8;
        }
        heldBits -= count;
        return held >> heldBits & ((1u << count) - 1);
    }
};

using CodeLengths = std::vector<std::uint8_t>;  // by symbol, 0 for one that is not used

// Nothing if the table leaves its symbols or its bytes.
std::optional<CodeLengths> readCodeLengths(BitReader& bits, std::uint32_t lowest,
                                           std::uint32_t highest) {
    CodeLengths lengths(kSymbols, 0);
    for (std::uint32_t symbol = lowest; symbol <= highest && !bits.bytes.overran;) {
        const std::uint32_t length = bits.take(6);
        if (length < kCodeLengths) {
            lengths[symbol++] = static_cast<std::uint8_t>(length);
            continue;
        }
        symbol += length == kLongRun ? bits.take(8) + 6 : length - kShortRun + 2;
        if (symbol > highest + 1) return {};
    }
    if (bits.bytes.overran) return {};
    return lengths;
}

// The lowest code of each length. Nothing if the lengths are not those of a prefix code.
using FirstCodes = std::array<std::uint64_t, kCodeLengths>;
std::optional<FirstCodes> firstCodes(const CodeLengths& lengths) {
    FirstCodes first{};
    for (const std::uint8_t length : lengths)
        ++first[length];
    std::uint64_t code = 0;
    for (std::size_t length = kCodeLengths - 1; length > 0; --length) {
        const std::uint64_t end = code + first[length];
        first[length] = code;
        if (end % 2 != 0 || end > std::uint64_t{1} << length) return {};
        code = end / 2;
    }
    return first;
}

bool overfillsASlot(const CodeLengths& lengths, FirstCodes next) {
    std::vector<std::uint32_t> codesInSlot(std::size_t{1} << kSlotBits);
    for (const std::uint8_t length : lengths) {
        if (length <= kSlotBits) continue;
        const std::uint64_t slot = next[length]++ >> (length - kSlotBits);
        if (++codesInSlot[static_cast<std::size_t>(slot)] > kMaxCodesPerSlot) return true;
    }
    return false;
}

bool isSoundHuffmanCode(Bytes code) {
    const std::uint32_t lowest = code.le32(0);
    const std::uint32_t highest = code.le32(4);
    const std::uint32_t sampleBits = code.le32(12);
    if (lowest > highest || highest >= kSymbols || sampleBits == 0) return false;

    BitReader bits{code, kHuffmanHeaderBytes};
    const auto lengths = readCodeLengths(bits, lowest, highest);
    if (!lengths || sampleBits > 8 * (code.size - bits.at)) return false;
    const auto first = firstCodes(*lengths);
    return first && !overfillsASlot(*lengths, *first);
}

}  // namespace

bool isSoundPizBlock(Bytes block) {
    const std::uint32_t first = block.le16(0);
    const std::uint32_t last = block.le16(2);
    if (last >= kBitmapBytes) return false;
    const std::uint64_t lengthAt = 4 + (first <= last ? last - first + 1 : 0);
    const std::uint32_t length = block.le32(lengthAt);
    const std::uint64_t start = lengthAt + 4;
    if (block.overran || !block.holds(start, length, 1)) return false;
    if (length < kHuffmanHeaderBytes || length > kMaxHuffmanBytes) return false;
    return isSoundHuffmanCode({block.data + start, length});
}
