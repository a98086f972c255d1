#pragma once
// BMP maps as the host writes them: 24 bits per pixel, uncompressed, bottom row first. BmpOps.h has
// the layout of the file.

#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "files/DiskFile.h"

// A row with its padding to a multiple of four bytes.
constexpr std::uint32_t bmpRowBytes(std::uint32_t width) {
    return (3 * width + 3) / 4 * 4;
}

// Whole padded rows of blue, green, red are appended, from the bottom one on.
class BmpWriter : public OutputFile {
public:
    BmpWriter(const std::string& path, std::uint32_t width, std::uint32_t height);

    // Appends a row of red, green, blue, without padding.
    void appendRgb(std::span<const std::uint8_t> row);

private:
    std::vector<std::uint8_t> row_;
};
