#include "encoders/jpeg/JpegSegments.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <string_view>

#include "encoders/jpeg/JpegTables.h"

namespace {

constexpr std::uint8_t high(std::size_t value) {
    return static_cast<std::uint8_t>(value >> 8);
}

constexpr std::uint8_t low(std::size_t value) {
    return static_cast<std::uint8_t>(value);
}

// The Huffman segment: all four tables.
consteval std::array<std::uint8_t, 420> set_DHTinfo() {
    std::array<std::uint8_t, 420> segment{0xFF, 0xC4, 0x01, 0xA2};
    auto end = segment.begin() + 4;
    // A table: its class (0 DC, 16 AC) and number (0 luminance, 1 chrominance), the counts of its
    // codes by length, and their symbols.
    const auto add = [&end](std::uint8_t id, const CodeCounts& nrcodes,
                            const auto& values) consteval {
        *end++ = id;
        end = std::copy(nrcodes.begin() + 1, nrcodes.end(), end);
        end = std::copy(values.begin(), values.end(), end);
    };
    add(0x00, std_dc_luminance_nrcodes, std_dc_chrominance_values);
    add(0x10, std_ac_luminance_nrcodes, std_ac_luminance_values);
    add(0x01, std_dc_chrominance_nrcodes, std_dc_chrominance_values);
    add(0x11, std_ac_chrominance_nrcodes, std_ac_chrominance_values);
    return segment;
}

constexpr auto DHTinfo = set_DHTinfo();

}  // namespace

void write_SOI(JpegStream& file) {
    file.append({0xFF, 0xD8});
}

// JFIF version 1.01, square pixels, no thumbnail.
void write_APP0info(JpegStream& file) {
    file.append({0xFF, 0xE0, 0x00, 0x10, 'J', 'F', 'I', 'F', 0, 1, 1, 0, 0, 1, 0, 1, 0, 0});
}

void write_comment(JpegStream& file, const char* text) {
    const std::string_view comment = std::string_view(text).substr(0, 2000);
    const std::size_t length = comment.size() + 2;
    file.append({0xFF, 0xFE, high(length), low(length)});
    file.append({reinterpret_cast<const std::uint8_t*>(comment.data()), comment.size()});
}

void write_DQTinfo(JpegStream& file, const QuantSegment& DQTinfo) {
    file.append(DQTinfo);
}

// Samples of 8 bits; three components, each with its number, its sampling factors (1 x 1) and its
// quantisation table.
void write_SOF0info(JpegStream& file, FrameSize SOF0info) {
    file.append({0xFF, 0xC0, 0x00, 0x11, 8, high(SOF0info.height), low(SOF0info.height),
                 high(SOF0info.width), low(SOF0info.width), 3, 1, 0x11, 0, 2, 0x11, 1, 3, 0x11, 1});
}

void write_DHTinfo(JpegStream& file) {
    file.append(DHTinfo);
}

// Three components, each with its number and its DC and AC tables; the whole spectrum at once.
void write_SOSinfo(JpegStream& file) {
    file.append({0xFF, 0xDA, 0x00, 0x0C, 3, 1, 0x00, 2, 0x11, 3, 0x11, 0, 63, 0});
}

void write_EOI(JpegStream& file) {
    file.append({0xFF, 0xD9});
}
