#pragma once
// TIFF maps as Morvane writes them: little-endian, the directory before the pixels, one
// uncompressed strip, one or three samples a pixel.

#include <cstdint>
#include <span>
#include <string>

#include "files/DiskFile.h"

struct TiffFormat {
    std::uint32_t width;
    std::uint32_t height;
    std::uint16_t channels;  // 1: grey, 3: RGB
    std::uint16_t bits;      // of a sample: 8, or 32 for a float

    std::uint32_t pixelBytes() const { return std::uint32_t{channels} * bits / 8; }
    std::uint64_t pixelsBytes() const { return std::uint64_t{width} * height * pixelBytes(); }
};

// Where the pixels start. Maps are merged only where this lies below the number of their bytes.
inline constexpr std::uint32_t kTiffPixelOffset = 224;

class TiffWriter {
public:
    // Throws Failure when the file cannot be created; the two below when it cannot be written.
    TiffWriter(const std::string& path, const TiffFormat& format);

    // Whole rows, from the top one on.
    void append(std::span<const std::uint8_t> rows) { file_.write(rows); }
    void finish() { file_.finish(); }

private:
    OutputFile file_;
};
