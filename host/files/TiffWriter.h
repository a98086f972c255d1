#pragma once
// TIFF maps as the host writes them: little-endian, the directory before the pixels, one
// uncompressed strip, one or three samples per pixel.

#include <cstdint>
#include <string>

#include "files/DiskFile.h"

struct TiffFormat {
    std::uint32_t width;
    std::uint32_t height;
    std::uint16_t channels;  // 1: grey, 3: RGB
    std::uint16_t bits;      // of a sample: 8 or 16, or 32 for a float

    std::uint32_t pixelBytes() const { return std::uint32_t{channels} * bits / 8; }
    std::uint64_t pixelsBytes() const { return std::uint64_t{width} * height * pixelBytes(); }
};

// Where the pixels start. A map is merged only if its pixels take more bytes than this.
inline constexpr std::uint32_t kTiffPixelOffset = 224;

// Whole rows are appended, from the top one on.
class TiffWriter : public OutputFile {
public:
    TiffWriter(const std::string& path, const TiffFormat& format);
};
