// BMP images: a header of 54 bytes, then rows that are filled up to multiples of four bytes.

#include <algorithm>

#include "harness/Format.h"

namespace {

constexpr Field kSignature{0, 2};
constexpr Field kPixelOffset{10, 4};
constexpr Field kWidth{18, 4};
constexpr Field kHeight{22, 4};
constexpr Field kBitsPerPixel{28, 2};

std::vector<Field> fields(const ByteList&) {
    return {kSignature, {2, 4}, kPixelOffset, kWidth, kHeight, kBitsPerPixel, {34, 4}};
}

void repair(ByteList& file, std::size_t fileBytes) {
    storeField(file, kSignature, 0x4D42);
    storeField(file, kBitsPerPixel, 24);
    const std::size_t offset = std::min<std::size_t>(loadField(file, kPixelOffset), fileBytes);
    const std::size_t width = loadField(file, kWidth) % 128;
    const std::size_t rows = (fileBytes - offset) / std::max<std::size_t>((3 * width + 3) & ~3u, 1);
    const std::size_t height = std::min<std::size_t>(loadField(file, kHeight), rows);
    storeField(file, kPixelOffset, static_cast<std::uint32_t>(offset));
    storeField(file, kWidth, static_cast<std::uint32_t>(width));
    storeField(file, kHeight, static_cast<std::uint32_t>(height));
}

}  // namespace

const Format kBmp{"bmp", fields, repair};

bool isLongToCode(const ByteList& bmp) {
    constexpr std::uint32_t kMaxPixels = 256 * 256;
    return loadField(bmp, {18, 2}) * loadField(bmp, {22, 2}) > kMaxPixels;
}
