#pragma once
// JpegSegments: what stands in a JPEG file before its coded blocks. Each segment is a marker, the
// length of what follows (itself included, big-endian), and that.

#include <array>
#include <cstdint>
#include <span>

#include "encoders/jpeg/JpegStream.h"
#include "encoders/jpeg/JpegTables.h"

// The size of a picture as the frame header tells it.
struct FrameSize {
    std::uint16_t height = 0;
    std::uint16_t width = 0;
};

// A quantisation segment as it stands in the file:
//   0   4  FF DB, length 132
//   4   1  0: the luminance table, of single bytes
//   5   64 its entries in zig-zag order
//   69  1  1: the chrominance table
//   70  64
struct QuantSegment {
    std::array<std::uint8_t, 134> bytes{};

    QuantTable luminance() const { return tableAt(5); }
    QuantTable chrominance() const { return tableAt(70); }

private:
    QuantTable tableAt(std::size_t offset) const;
};

// Scales a standard table by a percentage, entries rounded half up and kept within 1 to 255.
//
//   basic_table  natural order
//   newtable     zig-zag order
void set_quant_table(const QuantTable& basic_table, std::uint8_t scale_factor,
                     std::span<std::uint8_t, 64> newtable);

// The segment with both standard tables scaled by the low 8 bits of `scale_factor`.
QuantSegment set_DQTinfo(int scale_factor);

void write_SOI(JpegStream& file);
void write_APP0info(JpegStream& file);
void write_comment(JpegStream& file, const char* text);  // at most 2000 bytes of it
void write_DQTinfo(JpegStream& file, const QuantSegment& segment);
void write_SOF0info(JpegStream& file, FrameSize size);
void write_DHTinfo(JpegStream& file);
void write_SOSinfo(JpegStream& file);
void write_EOI(JpegStream& file);
