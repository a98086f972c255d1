#pragma once
// TIFF maps as the host writes them: little-endian, the directory before the pixels, one
// uncompressed strip, one or three samples per pixel.

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

// Where the pixels start. A map is merged only if its pixels take more bytes than this.
inline constexpr std::uint32_t kTiffPixelOffset = 224;

class TiffWriter {
public:
    // Throws Failure if the file cannot be created; the two below, if it cannot be written.
    TiffWriter(const std::string& path, const TiffFormat& format);

    // Takes whole rows, from the top one on.
    void append(std::span<const std::uint8_t> rows) { file_.write(rows); }
    void finish() { file_.finish(); }

private:
    OutputFile file_;
};
