#pragma once
// BmpHeader: the BMP module's state, its one header reader and its little-endian routines. Only the
// files of this module include it. The layout is in BmpOps.h.

#include <cstddef>
#include <cstdint>

#include "files/File.h"

struct BmpHeader {
    char firstByte = 0;
    char secondByte = 0;
    std::uint32_t fileSize = 0;
    std::uint32_t pixelOffset = 0;
    std::int32_t width = 0;
    std::int32_t height = 0;
    std::uint16_t bitsPerPixel = 0;
    std::uint32_t imageSize = 0;
    std::int64_t rowStride = 0;  // computed: 3 * width and the padding, too wide for 32 bits
};

// The file that an operation works on: its first 100 bytes for those that rewrite rows in place,
// all bytes before the pixels for a thumbnail, the whole file for a crop. Filled by the
// loaders below; emptied by each load before it starts and, after a crop or a thumbnail, at the end
// of the operation.
extern FileBytes bmpV;

// What bmpV's header says. Cleared by each load, filled by readBMPHeader; stays until the next
// load.
extern BmpHeader bmpHdr;

inline constexpr std::size_t kBmpPixelBytes = 3;

// Loads the first bytes of a file, or all of them, and reads the header.
//
//   returns  `notOpened` when the file cannot be opened or read; else as readBMPHeader
float loadBMPHead(const char* path, float notOpened);
float loadWholeBMP(const char* path, float notOpened);

// Loads all bytes before the pixels of a file whose header has been read, 100 bytes at least
// if there are as many. False when the file ends before its pixels start.
bool loadBMPUpToPixels(const File& file);

// Empties bmpV when the operation ends, whichever way.
struct EmptyBmpVAtEnd {
    EmptyBmpVAtEnd() = default;
    EmptyBmpVAtEnd(const EmptyBmpVAtEnd&) = delete;
    EmptyBmpVAtEnd& operator=(const EmptyBmpVAtEnd&) = delete;
    ~EmptyBmpVAtEnd() { bmpV = {}; }
};

// Fills bmpHdr from bmpV.
//
//   returns  kOk, or kNotABmp: without "BM" only those two bytes are stored, in a file shorter than
//            its headers all that it has
float readBMPHeader();

// Bytes of padding that bring a row of `width` pixels to a multiple of 4; none for a width below 0.
// Computed in single precision as the host does it: in rows of more than 2^24 bytes an odd length
// counts as a multiple of 4.
std::uint32_t getPadding(std::int32_t width);

// Values at a position of bmpV. Past its end a byte reads as 0, and a value that does not fit is
// not stored. readSigned gives an unsigned value for all its name.
std::uint32_t readSigned(std::uint32_t position);
std::int16_t readShortInt(std::uint32_t position);
void writeSignedInt(std::uint32_t position, std::uint32_t value);
std::int32_t writeShortInt(std::uint32_t position, std::int32_t value);  // the low 16 bits
