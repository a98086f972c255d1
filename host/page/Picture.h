#pragma once
// A picture for the page: 8 bits of red, green and blue a pixel, top row first.

#include <cstdint>
#include <string>
#include <vector>

struct Picture {
    Picture() = default;
    Picture(std::uint32_t columns, std::uint32_t rows)
        : width(columns), height(rows), pixels(std::size_t{3} * columns * rows) {}

    std::uint8_t* at(std::uint32_t x, std::uint32_t y) {
        return &pixels[3 * (std::size_t{y} * width + x)];
    }
    const std::uint8_t* at(std::uint32_t x, std::uint32_t y) const {
        return &pixels[3 * (std::size_t{y} * width + x)];
    }

    std::uint32_t width = 0;
    std::uint32_t height = 0;
    std::vector<std::uint8_t> pixels;
};

// A picture half as wide and high, each pixel the mean of four.
Picture halved(const Picture& picture);

// Writes a BMP file, from which the library makes a JPEG.
void writePicture(const std::string& path, const Picture& picture);
