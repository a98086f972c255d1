#pragma once
// BMP maps as Morvane writes them: 24 bits a pixel, uncompressed, bottom row first. The layout of
// the file stands in the library's BmpOps.h.

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
    // Throws Failure when the file cannot be created; the two below when it cannot be written.
    BmpWriter(const std::string& path, std::uint32_t width, std::uint32_t height);

    // Whole padded rows of blue, green, red, from the bottom one on.
    void append(std::span<const std::uint8_t> rows) { file_.write(rows); }
    void finish() { file_.finish(); }

private:
    OutputFile file_;
};
