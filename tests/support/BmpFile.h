#pragma once
// Builds BMP files, valid and invalid ones, and reads pixels back.

#include <cstdint>
#include <string>

#include "support/TempDir.h"

// An image of 24 bits a pixel with headers of 54 bytes. Pixels are given and returned in the order
// of the file: bottom row first, each blue, green, red, without padding. Until they are set, the
// pixel bytes count up: 1, 2, 3 ... 255, 0, 1 ...
class BmpFile {
public:
    BmpFile(std::int32_t width, std::int32_t height);

    BmpFile& pixels(const ByteList& bytes);
    BmpFile& plain(std::uint8_t blue, std::uint8_t green, std::uint8_t red);
    BmpFile& pixel(std::int32_t column, std::int32_t row, std::uint8_t blue, std::uint8_t green,
                   std::uint8_t red);
    // Pixels that say where they are: blue is the column, green the row from the bottom, red 200.
    BmpFile& places();

    // What the file holds between its headers and an offset beyond 54, and after each row.
    BmpFile& pixelOffset(std::uint32_t offset, std::uint8_t gap = 0);
    BmpFile& padding(std::uint8_t byte);

    // What the headers say, whatever the file holds.
    BmpFile& signature(char first, char second);
    BmpFile& bitsPerPixel(std::uint16_t bits);
    BmpFile& claimSize(std::int32_t width, std::int32_t height);
    BmpFile& claimPixelOffset(std::uint32_t offset);

    operator ByteList() const;
    ByteList cut(std::size_t length) const;  // the first bytes of the file

private:
    std::size_t width_;
    std::size_t height_;
    ByteList pixels_;
    ByteList headers_;
    ByteList gap_;
    std::uint8_t padding_ = 0;
};

// The pixels of a whole file, as BmpFile takes them.
ByteList bmpPixelsOf(const std::string& path);
