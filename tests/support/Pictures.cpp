#include "support/Pictures.h"

namespace {

std::uint8_t lowByte(std::uint32_t value) {
    return static_cast<std::uint8_t>(value & 0xFF);
}

// Mixes bits well enough for pictures.
std::uint32_t mixed(std::uint32_t value) {
    value = (value ^ value >> 16) * 0x45D9F3Bu;
    value = (value ^ value >> 16) * 0x45D9F3Bu;
    return value ^ value >> 16;
}

}  // namespace

ByteList gradientPicture(std::uint32_t width, std::uint32_t height) {
    ByteList pixels;
    for (std::uint32_t y = 0; y < height; ++y) {
        for (std::uint32_t x = 0; x < width; ++x) {
            pixels.push_back(lowByte(255 * x / width));
            pixels.push_back(lowByte(255 * y / height));
            pixels.push_back(lowByte(255 - 255 * (x + y) / (width + height)));
        }
    }
    return pixels;
}

ByteList noisePicture(std::uint32_t width, std::uint32_t height) {
    ByteList pixels(std::size_t{3} * width * height);
    for (std::size_t i = 0; i < pixels.size(); ++i)
        pixels[i] = lowByte(mixed(static_cast<std::uint32_t>(i)));
    return pixels;
}

ByteList textPicture(std::uint32_t width, std::uint32_t height) {
    ByteList pixels;
    for (std::uint32_t y = 0; y < height; ++y) {
        for (std::uint32_t x = 0; x < width; ++x) {
            const bool betweenLines = y % 12 < 3;
            const bool stroke = mixed(x / 2 + 4099 * (y / 3)) % 3 == 0;
            pixels.insert(pixels.end(), 3, stroke && !betweenLines ? 0 : 255);
        }
    }
    return pixels;
}
