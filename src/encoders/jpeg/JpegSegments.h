#pragma once
// JpegSegments: what is in a JPEG file before its coded blocks. Each segment is a marker, the
// length of what follows (itself included, big-endian), and that.

#include <cstdint>

#include "encoders/jpeg/JpegQuantisation.h"
#include "encoders/jpeg/JpegStream.h"

// The size of a picture as the frame header has it.
struct FrameSize {
    std::uint16_t height = 0;
    std::uint16_t width = 0;
};

void write_SOI(JpegStream& file);
void write_APP0info(JpegStream& file);
void write_comment(JpegStream& file, const char* text);  // at most 2000 bytes of it
void write_DQTinfo(JpegStream& file, const QuantSegment& DQTinfo);
void write_SOF0info(JpegStream& file, FrameSize SOF0info);
void write_DHTinfo(JpegStream& file);
void write_SOSinfo(JpegStream& file);
void write_EOI(JpegStream& file);
