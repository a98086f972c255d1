#include "pixels/Pixels.h"

#include <cstring>
#include <utility>

namespace {

template <std::size_t kPixelBytes>
void fillPixels(std::uint8_t* row, const std::uint8_t* source, const std::uint8_t* background,
                std::size_t pixels) {
    const std::uint8_t* const end = row + pixels * kPixelBytes;
    for (; row != end; row += kPixelBytes, source += kPixelBytes) {
        if (std::memcmp(row, background, kPixelBytes) == 0) std::memcpy(row, source, kPixelBytes);
    }
}

}  // namespace

void fillBackground(std::uint8_t* row, const std::uint8_t* source, const std::uint8_t* background,
                    std::size_t pixels, std::size_t pixelBytes) {
    // The width of a pixel is known to the compiler in each case, which makes the loops tight.
    switch (pixelBytes) {
        case 1:
            return fillPixels<1>(row, source, background, pixels);
        case 2:
            return fillPixels<2>(row, source, background, pixels);
        case 3:
            return fillPixels<3>(row, source, background, pixels);
        case 4:
            return fillPixels<4>(row, source, background, pixels);
        case 6:
            return fillPixels<6>(row, source, background, pixels);
        case 12:
            return fillPixels<12>(row, source, background, pixels);
        default:
            return;
    }
}

void exchangeSamples(std::uint8_t* row, std::size_t pixels, const Exchange& exchange) {
    for (std::size_t i = 0; i < pixels; ++i)
        std::swap(row[3 * i + exchange.first], row[3 * i + exchange.second]);
}

void copyReversed(std::uint8_t* to, const std::uint8_t* from, std::size_t pixels) {
    for (std::size_t i = 0; i < pixels; ++i, to += 3, from += 3) {
        to[0] = from[2];
        to[1] = from[1];
        to[2] = from[0];
    }
}

void greyToColour(std::uint8_t* to, const std::uint8_t* from, std::size_t pixels) {
    for (std::size_t i = 0; i < pixels; ++i, to += 3)
        to[0] = to[1] = to[2] = from[i];
}
