#pragma once
// A picture for the page: 8 bits of red, green and blue a pixel, top row first.

#include <algorithm>
#include <array>
#include <cstdint>
#include <string>
#include <vector>

using Rgb = std::array<std::uint8_t, 3>;

struct Picture {
    Picture(std::uint32_t columns, std::uint32_t rows)
        : width(columns), height(rows), pixels(std::size_t{3} * columns * rows) {}

    std::uint8_t* at(std::uint32_t x, std::uint32_t y) {
        return &pixels[3 * (std::size_t{y} * width + x)];
    }
    const std::uint8_t* at(std::uint32_t x, std::uint32_t y) const {
        return &pixels[3 * (std::size_t{y} * width + x)];
    }

    void set(std::size_t pixel, const Rgb& colour) {
        std::ranges::copy(colour, &pixels[3 * pixel]);
    }

    std::uint32_t width;
    std::uint32_t height;
    std::vector<std::uint8_t> pixels;
};

// A picture half as wide and high, each pixel the mean of four.
Picture halved(const Picture& picture);

// Writes a BMP file, from which the library makes a JPEG.
void writePicture(const std::string& path, const Picture& picture);
