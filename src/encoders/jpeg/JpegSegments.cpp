#include "encoders/jpeg/JpegSegments.h"

#include <array>
#include <cstddef>
#include <span>
#include <string_view>

#include "encoders/jpeg/JpegTables.h"

namespace {

constexpr std::uint8_t high(std::size_t value) {
    return static_cast<std::uint8_t>(value >> 8);
}

constexpr std::uint8_t low(std::size_t value) {
    return static_cast<std::uint8_t>(value);
}

// Puts segments together, piece by piece.
template <std::size_t kBytes>
struct SegmentBytes {
    std::array<std::uint8_t, kBytes> bytes{};
    std::size_t used = 0;

    consteval void add(std::uint8_t byte) { bytes[used++] = byte; }
    consteval void add(std::span<const std::uint8_t> more) {
        for (const std::uint8_t byte : more)
            add(byte);
    }
    // A Huffman table: its class (0 DC, 16 AC) and number (0 luminance, 1 chrominance), the counts of
    // its codes by length, and their symbols.
    consteval void addTable(std::uint8_t id, const CodeCounts& nrcodes,
                            std::span<const std::uint8_t> values) {
        add(id);
        add(std::span(nrcodes).subspan(1));
        add(values);
    }
};

constexpr std::size_t kHuffmanSegmentBytes = 420;

// The Huffman segment: all four tables.
consteval std::array<std::uint8_t, kHuffmanSegmentBytes> set_DHTinfo() {
    SegmentBytes<kHuffmanSegmentBytes> segment;
    segment.add(std::array<std::uint8_t, 4>{0xFF, 0xC4, high(kHuffmanSegmentBytes - 2),
                                            low(kHuffmanSegmentBytes - 2)});
    segment.addTable(0x00, std_dc_luminance_nrcodes, std_dc_chrominance_values);
    segment.addTable(0x10, std_ac_luminance_nrcodes, std_ac_luminance_values);
    segment.addTable(0x01, std_dc_chrominance_nrcodes, std_dc_chrominance_values);
    segment.addTable(0x11, std_ac_chrominance_nrcodes, std_ac_chrominance_values);
    return segment.bytes;
}

constexpr auto DHTinfo = set_DHTinfo();

}  // namespace

void write_SOI(JpegStream& file) {
    file.append({0xFF, 0xD8});
}

// JFIF version 1.01 with pixels as high as wide and no thumbnail.
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
