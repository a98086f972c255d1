#pragma once
// BMP maps as the host writes them: 24 bits per pixel, uncompressed, bottom row first. BmpOps.h has
// the layout of the file.

#include <cstdint>
#include <span>
#include <string>

#include "files/DiskFile.h"

// A row with its padding to a multiple of four bytes.
constexpr std::uint32_t bmpRowBytes(std::uint32_t width) {
    return (3 * width + 3) / 4 * 4;
}

class BmpWriter {
public:
    // Throws Failure if the file cannot be created; the two below, if it cannot be written.
    BmpWriter(const std::string& path, std::uint32_t width, std::uint32_t height);

    // Takes whole padded rows of blue, green, red, from the bottom one on.
    void append(std::span<const std::uint8_t> rows) { file_.write(rows); }
    void finish() { file_.finish(); }

private:
    OutputFile file_;
};
