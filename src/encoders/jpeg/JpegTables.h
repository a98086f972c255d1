#pragma once
// JpegTables: what a JPEG file's coding does not take from its picture: the order of coefficients,
// the standard's tables, and the codes made from them.

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <span>

// For each coefficient of a block in natural order, row by row, its place in the zig-zag sequence.
inline constexpr std::array<std::uint8_t, 64> zigzag = {
    0,  1,  5,  6,  14, 15, 27, 28,  //
    2,  4,  7,  13, 16, 26, 29, 42,  //
    3,  8,  12, 17, 25, 30, 41, 43,  //
    9,  11, 18, 24, 31, 40, 44, 53,  //
    10, 19, 23, 32, 39, 45, 52, 54,  //
    20, 22, 33, 38, 46, 51, 55, 60,  //
    21, 34, 37, 47, 50, 56, 59, 61,  //
    35, 36, 48, 49, 57, 58, 62, 63,
};

// The quantisation tables that the JPEG standard suggests (ITU T.81, K.1 and K.2), natural order.
using QuantTable = std::array<std::uint8_t, 64>;
inline constexpr QuantTable std_luminance_qt = {
    16, 11, 10, 16, 24,  40,  51,  61,   //
    12, 12, 14, 19, 26,  58,  60,  55,   //
    14, 13, 16, 24, 40,  57,  69,  56,   //
    14, 17, 22, 29, 51,  87,  80,  62,   //
    18, 22, 37, 56, 68,  109, 103, 77,   //
    24, 35, 55, 64, 81,  104, 113, 92,   //
    49, 64, 78, 87, 103, 121, 120, 101,  //
    72, 92, 95, 98, 112, 100, 103, 99,
};
inline constexpr QuantTable std_chrominance_qt = {
    17, 18, 24, 47, 99, 99, 99, 99,  //
    18, 21, 26, 66, 99, 99, 99, 99,  //
    24, 26, 56, 99, 99, 99, 99, 99,  //
    47, 66, 99, 99, 99, 99, 99, 99,  //
    99, 99, 99, 99, 99, 99, 99, 99,  //
    99, 99, 99, 99, 99, 99, 99, 99,  //
    99, 99, 99, 99, 99, 99, 99, 99,  //
    99, 99, 99, 99, 99, 99, 99, 99,
};

// How many Huffman codes there are of each length: entry L counts those of L bits, entry 0 none.
using CodeCounts = std::array<std::uint8_t, 17>;
inline constexpr CodeCounts std_dc_luminance_nrcodes = {0, 0, 1, 5, 1, 1, 1, 1, 1, 1};
inline constexpr CodeCounts std_dc_chrominance_nrcodes = {0, 0, 3, 1, 1, 1, 1, 1, 1, 1, 1, 1};
inline constexpr CodeCounts std_ac_luminance_nrcodes = {0, 0, 2, 1, 3, 3, 2, 4,   3,
                                                        5, 5, 4, 4, 0, 0, 1, 0x7D};
inline constexpr CodeCounts std_ac_chrominance_nrcodes = {0, 0, 2, 1, 2, 4, 4, 3,   4,
                                                          7, 5, 4, 4, 0, 1, 2, 0x77};

// The symbols in the order of their codes. A DC symbol is a magnitude category; one list serves
// luminance and chrominance. An AC symbol is 16 times the zeros before a coefficient, plus its
// category.
inline constexpr std::array<std::uint8_t, 12> std_dc_chrominance_values = {0, 1, 2, 3, 4,  5,
                                                                           6, 7, 8, 9, 10, 11};
inline constexpr std::array<std::uint8_t, 162> std_ac_luminance_values = {
    0x01, 0x02, 0x03, 0x00, 0x04, 0x11, 0x05, 0x12, 0x21, 0x31, 0x41, 0x06, 0x13, 0x51, 0x61,
    0x07, 0x22, 0x71, 0x14, 0x32, 0x81, 0x91, 0xA1, 0x08, 0x23, 0x42, 0xB1, 0xC1, 0x15, 0x52,
    0xD1, 0xF0, 0x24, 0x33, 0x62, 0x72, 0x82, 0x09, 0x0A, 0x16, 0x17, 0x18, 0x19, 0x1A, 0x25,
    0x26, 0x27, 0x28, 0x29, 0x2A, 0x34, 0x35, 0x36, 0x37, 0x38, 0x39, 0x3A, 0x43, 0x44, 0x45,
    0x46, 0x47, 0x48, 0x49, 0x4A, 0x53, 0x54, 0x55, 0x56, 0x57, 0x58, 0x59, 0x5A, 0x63, 0x64,
    0x65, 0x66, 0x67, 0x68, 0x69, 0x6A, 0x73, 0x74, 0x75, 0x76, 0x77, 0x78, 0x79, 0x7A, 0x83,
    0x84, 0x85, 0x86, 0x87, 0x88, 0x89, 0x8A, 0x92, 0x93, 0x94, 0x95, 0x96, 0x97, 0x98, 0x99,
    0x9A, 0xA2, 0xA3, 0xA4, 0xA5, 0xA6, 0xA7, 0xA8, 0xA9, 0xAA, 0xB2, 0xB3, 0xB4, 0xB5, 0xB6,
    0xB7, 0xB8, 0xB9, 0xBA, 0xC2, 0xC3, 0xC4, 0xC5, 0xC6, 0xC7, 0xC8, 0xC9, 0xCA, 0xD2, 0xD3,
    0xD4, 0xD5, 0xD6, 0xD7, 0xD8, 0xD9, 0xDA, 0xE1, 0xE2, 0xE3, 0xE4, 0xE5, 0xE6, 0xE7, 0xE8,
    0xE9, 0xEA, 0xF1, 0xF2, 0xF3, 0xF4, 0xF5, 0xF6, 0xF7, 0xF8, 0xF9, 0xFA,
};
inline constexpr std::array<std::uint8_t, 162> std_ac_chrominance_values = {
    0x00, 0x01, 0x02, 0x03, 0x11, 0x04, 0x05, 0x21, 0x31, 0x06, 0x12, 0x41, 0x51, 0x07, 0x61,
    0x71, 0x13, 0x22, 0x32, 0x81, 0x08, 0x14, 0x42, 0x91, 0xA1, 0xB1, 0xC1, 0x09, 0x23, 0x33,
    0x52, 0xF0, 0x15, 0x62, 0x72, 0xD1, 0x0A, 0x16, 0x24, 0x34, 0xE1, 0x25, 0xF1, 0x17, 0x18,
    0x19, 0x1A, 0x26, 0x27, 0x28, 0x29, 0x2A, 0x35, 0x36, 0x37, 0x38, 0x39, 0x3A, 0x43, 0x44,
    0x45, 0x46, 0x47, 0x48, 0x49, 0x4A, 0x53, 0x54, 0x55, 0x56, 0x57, 0x58, 0x59, 0x5A, 0x63,
    0x64, 0x65, 0x66, 0x67, 0x68, 0x69, 0x6A, 0x73, 0x74, 0x75, 0x76, 0x77, 0x78, 0x79, 0x7A,
    0x82, 0x83, 0x84, 0x85, 0x86, 0x87, 0x88, 0x89, 0x8A, 0x92, 0x93, 0x94, 0x95, 0x96, 0x97,
    0x98, 0x99, 0x9A, 0xA2, 0xA3, 0xA4, 0xA5, 0xA6, 0xA7, 0xA8, 0xA9, 0xAA, 0xB2, 0xB3, 0xB4,
    0xB5, 0xB6, 0xB7, 0xB8, 0xB9, 0xBA, 0xC2, 0xC3, 0xC4, 0xC5, 0xC6, 0xC7, 0xC8, 0xC9, 0xCA,
    0xD2, 0xD3, 0xD4, 0xD5, 0xD6, 0xD7, 0xD8, 0xD9, 0xDA, 0xE2, 0xE3, 0xE4, 0xE5, 0xE6, 0xE7,
    0xE8, 0xE9, 0xEA, 0xF2, 0xF3, 0xF4, 0xF5, 0xF6, 0xF7, 0xF8, 0xF9, 0xFA,
};

// Some bits to be written, the highest first.
struct bitstring {
    std::uint8_t length = 0;  // 0 to 16
    std::uint16_t value = 0;  // right-aligned
};

// The code of each symbol, by its length the next one free. A symbol without a code has length 0.
using HuffmanTable = std::array<bitstring, 256>;
consteval HuffmanTable compute_Huffman_table(const CodeCounts& nrcodes,
                                             std::span<const std::uint8_t> values) {
    HuffmanTable table{};
    std::uint16_t code = 0;
    std::size_t used = 0;
    for (std::size_t length = 1; length < nrcodes.size(); ++length) {
        for (std::size_t i = 0; i < nrcodes[length]; ++i)
            table[values[used++]] = {static_cast<std::uint8_t>(length), code++};
        code = static_cast<std::uint16_t>(code << 1);
    }
    return table;
}

// The codes of DC categories (0 to 11) and of AC symbols, for luminance and for both chroma
// components.
struct HuffmanTables {
    HuffmanTable YDC_HT;
    HuffmanTable YAC_HT;
    HuffmanTable CbDC_HT;
    HuffmanTable CbAC_HT;
};
consteval HuffmanTables init_Huffman_tables() {
    return {compute_Huffman_table(std_dc_luminance_nrcodes, std_dc_chrominance_values),
            compute_Huffman_table(std_ac_luminance_nrcodes, std_ac_luminance_values),
            compute_Huffman_table(std_dc_chrominance_nrcodes, std_dc_chrominance_values),
            compute_Huffman_table(std_ac_chrominance_nrcodes, std_ac_chrominance_values)};
}
inline constexpr HuffmanTables kHuffman = init_Huffman_tables();

inline constexpr std::uint8_t kEndOfBlock = 0x00;
inline constexpr std::uint8_t kSixteenZeros = 0xF0;

// The magnitude category of a value from -32767 to 32767: how many bits its magnitude has.
consteval std::uint8_t category(std::int32_t value) {
    return static_cast<std::uint8_t>(
        std::bit_width(static_cast<std::uint32_t>(value < 0 ? -value : value)));
}

// The bits that follow the code of a value's category: those of a positive value itself, or the
// complement of a negative value's magnitude.
consteval bitstring bitcode(std::int32_t value) {
    const std::uint8_t length = category(value);
    const std::int32_t bits = value < 0 ? (1 << length) - 1 + value : value;
    return {length, static_cast<std::uint16_t>(bits)};
}

// The coefficient at a place of the zig-zag sequence, in natural order.
consteval std::array<std::uint8_t, 64> invertedZigzag() {
    std::array<std::uint8_t, 64> natural{};
    for (std::uint8_t i = 0; i < 64; ++i)
        natural[zigzag[i]] = i;
    return natural;
}
inline constexpr std::array<std::uint8_t, 64> naturalOrder = invertedZigzag();

// Values of one category and sign are coded alike: a code, then bits that count upward with the
// value. So one number, added to the value, gives both.
struct ValueCode {
    std::int32_t base = 0;     // code and bits of the value 0, were it one of them
    std::uint32_t length = 0;  // of both; 27 at most
};

// Category and sign of the values that a quantised picture can have: up to 1023 for a coefficient,
// up to 2047 for the difference of two DC coefficients.
inline constexpr std::int32_t kMaxValue = 2047;
inline constexpr std::size_t kSignedCategories = 32;
consteval std::uint8_t signedCategory(std::int32_t value) {
    return static_cast<std::uint8_t>(category(value) + (value < 0 ? kSignedCategories / 2 : 0));
}

// The same, looked up.
inline constexpr std::size_t kValues = 2 * 2047 + 1;
using CategoryTable = std::array<std::uint8_t, kValues>;
consteval CategoryTable makeSignedCategories() {
    CategoryTable categories{};
    for (std::int32_t value = -kMaxValue; value <= kMaxValue; ++value)
        categories[static_cast<std::uint32_t>(value + kMaxValue)] = signedCategory(value);
    return categories;
}
inline constexpr CategoryTable kSignedCategoryOf = makeSignedCategories();
inline std::uint8_t lookUpSignedCategory(std::int32_t value) {
    return kSignedCategoryOf[static_cast<std::uint32_t>(value + kMaxValue)];
}

// The codes of values by category and sign, each after so many zeros.
using ValueCodes = std::array<ValueCode, kSignedCategories>;
consteval ValueCodes makeValueCodes(const HuffmanTable& codes, std::size_t zeros = 0) {
    constexpr std::uint32_t kMaxBits = 11;
    ValueCodes valueCodes{};
    for (std::uint32_t bits = 0; bits <= kMaxBits; ++bits) {
        const bitstring code = codes[zeros * 16 + bits];
        const std::int32_t minimum = bits > 0 ? 1 << (bits - 1) : 0;
        for (const std::int32_t value : {minimum, -minimum}) {
            valueCodes[signedCategory(value)] = {
                (code.value << bits) + bitcode(value).value - value, code.length + bits};
        }
    }
    return valueCodes;
}

// The same by the zeros before a value, 0 to 15.
using RunTable = std::array<ValueCodes, 16>;
consteval RunTable makeRunTable(const HuffmanTable& codes) {
    RunTable table{};
    for (std::size_t zeros = 0; zeros < table.size(); ++zeros)
        table[zeros] = makeValueCodes(codes, zeros);
    return table;
}
