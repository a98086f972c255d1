#include "support/BmpFile.h"

#include <algorithm>
#include <numeric>

namespace {

constexpr std::size_t kHeaderBytes = 54;

std::size_t paddingAfter(std::size_t width) {
    return width % 4;  // 3 * width + width is a multiple of 4
}

void put(ByteList& bytes, std::size_t at, std::uint32_t value, int count) {
    for (int i = 0; i < count; ++i)
        bytes[at + static_cast<std::size_t>(i)] = static_cast<std::uint8_t>(value >> 8 * i);
}

std::uint32_t get32(const ByteList& bytes, std::size_t at) {
    std::uint32_t value = 0;
    for (std::size_t i = 0; i < 4; ++i)
        value |= std::uint32_t{bytes.at(at + i)} << 8 * i;
    return value;
}

}  // namespace

BmpFile::BmpFile(std::int32_t width, std::int32_t height)
    : width_(static_cast<std::size_t>(width)),
      height_(static_cast<std::size_t>(height)),
      pixels_(3 * width_ * height_),
      headers_(kHeaderBytes) {
    std::iota(pixels_.begin(), pixels_.end(), std::uint8_t{1});
    const std::size_t imageBytes = (3 * width_ + paddingAfter(width_)) * height_;
    signature('B', 'M').claimPixelOffset(kHeaderBytes).claimSize(width, height).bitsPerPixel(24);
    put(headers_, 2, static_cast<std::uint32_t>(kHeaderBytes + imageBytes), 4);
    put(headers_, 14, 40, 4);
    put(headers_, 26, 1, 2);
    put(headers_, 34, static_cast<std::uint32_t>(imageBytes), 4);
    put(headers_, 38, 2835, 4);
    put(headers_, 42, 2835, 4);
}

BmpFile& BmpFile::pixels(const ByteList& bytes) {
    pixels_ = bytes;
    pixels_.resize(3 * width_ * height_);
    return *this;
}

BmpFile& BmpFile::plain(std::uint8_t blue, std::uint8_t green, std::uint8_t red) {
    for (std::size_t at = 0; at < pixels_.size(); at += 3) {
        pixels_[at] = blue;
        pixels_[at + 1] = green;
        pixels_[at + 2] = red;
    }
    return *this;
}

BmpFile& BmpFile::pixel(std::int32_t column, std::int32_t row, std::uint8_t blue,
                        std::uint8_t green, std::uint8_t red) {
    const std::size_t at =
        3 * (static_cast<std::size_t>(row) * width_ + static_cast<std::size_t>(column));
    pixels_.at(at) = blue;
    pixels_.at(at + 1) = green;
    pixels_.at(at + 2) = red;
    return *this;
}

BmpFile& BmpFile::pixelOffset(std::uint32_t offset, std::uint8_t gap) {
    gap_.assign(offset - kHeaderBytes, gap);
    return claimPixelOffset(offset);
}

BmpFile& BmpFile::padding(std::uint8_t byte) {
    padding_ = byte;
    return *this;
}

BmpFile& BmpFile::signature(char first, char second) {
    headers_[0] = static_cast<std::uint8_t>(first);
    headers_[1] = static_cast<std::uint8_t>(second);
    return *this;
}

BmpFile& BmpFile::bitsPerPixel(std::uint16_t bits) {
    put(headers_, 28, bits, 2);
    return *this;
}

BmpFile& BmpFile::claimSize(std::int32_t width, std::int32_t height) {
    put(headers_, 18, static_cast<std::uint32_t>(width), 4);
    put(headers_, 22, static_cast<std::uint32_t>(height), 4);
    return *this;
}

BmpFile& BmpFile::claimPixelOffset(std::uint32_t offset) {
    put(headers_, 10, offset, 4);
    return *this;
}

BmpFile::operator ByteList() const {
    ByteList file = headers_;
    file.insert(file.end(), gap_.begin(), gap_.end());
    const auto rowBytes = static_cast<std::ptrdiff_t>(3 * width_);
    for (auto row = pixels_.begin(); row != pixels_.end(); row += rowBytes) {
        file.insert(file.end(), row, row + rowBytes);
        file.insert(file.end(), paddingAfter(width_), padding_);
    }
    return file;
}

ByteList BmpFile::cut(std::size_t length) const {
    ByteList file = *this;
    file.resize(std::min(length, file.size()));
    return file;
}

ByteList bmpPixelsOf(const std::string& path) {
    const ByteList file = readBytes(path);
    const std::size_t width = get32(file, 18);
    const std::size_t height = get32(file, 22);
    ByteList pixels;
    for (std::size_t row = 0; row < height; ++row) {
        const std::size_t start = get32(file, 10) + row * (3 * width + paddingAfter(width));
        for (std::size_t i = 0; i < 3 * width; ++i)
            pixels.push_back(file.at(start + i));
    }
    return pixels;
}

std::int32_t bmpWidthOf(const std::string& path) {
    return static_cast<std::int32_t>(get32(readBytes(path), 18));
}

std::int32_t bmpHeightOf(const std::string& path) {
    return static_cast<std::int32_t>(get32(readBytes(path), 22));
}
