#include "support/BmpFile.h"

#include <numeric>

#include "bytes/Bytes.h"
#include "support/Append.h"

namespace {

constexpr std::uint32_t kHeaderBytes = 54;

std::size_t paddingAfter(std::size_t width) {
    return width % 4;  // 3 * width + width is a multiple of 4
}

}  // namespace

BmpFile::BmpFile(std::int32_t width, std::int32_t height)
    : width_(static_cast<std::size_t>(width)),
      height_(static_cast<std::size_t>(height)),
      pixels_(3 * width_ * height_),
      headers_(kHeaderBytes) {
    std::iota(pixels_.begin(), pixels_.end(), std::uint8_t{1});
    const auto imageBytes =
        static_cast<std::uint32_t>((3 * width_ + paddingAfter(width_)) * height_);
    signature('B', 'M').claimPixelOffset(kHeaderBytes).claimSize(width, height).bitsPerPixel(24);
    storeLe32(&headers_[2], kHeaderBytes + imageBytes);
    storeLe32(&headers_[14], 40);
    storeLe16(&headers_[26], 1);
    storeLe32(&headers_[34], imageBytes);
    storeLe32(&headers_[38], 2835);
    storeLe32(&headers_[42], 2835);
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

BmpFile& BmpFile::places() {
    for (std::size_t at = 0; at < pixels_.size() / 3; ++at)
        pixel(static_cast<std::int32_t>(at % width_), static_cast<std::int32_t>(at / width_),
              static_cast<std::uint8_t>(at % width_), static_cast<std::uint8_t>(at / width_), 200);
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
    storeLe16(&headers_[28], bits);
    return *this;
}

BmpFile& BmpFile::claimSize(std::int32_t width, std::int32_t height) {
    storeLe32(&headers_[18], static_cast<std::uint32_t>(width));
    storeLe32(&headers_[22], static_cast<std::uint32_t>(height));
    return *this;
}

BmpFile& BmpFile::claimPixelOffset(std::uint32_t offset) {
    storeLe32(&headers_[10], offset);
    return *this;
}

BmpFile::operator ByteList() const {
    ByteList file = headers_;
    append(file, gap_);
    const auto rowBytes = static_cast<std::ptrdiff_t>(3 * width_);
    for (auto row = pixels_.begin(); row != pixels_.end(); row += rowBytes) {
        file.insert(file.end(), row, row + rowBytes);
        file.insert(file.end(), paddingAfter(width_), padding_);
    }
    return file;
}

ByteList BmpFile::cut(std::size_t length) const {
    return firstBytes(*this, length);
}

ByteList bmpPixelsOf(const std::string& path) {
    const ByteList file = readBytes(path);
    Bytes bytes{file.data(), file.size()};
    const std::size_t width = bytes.le32(18);
    const std::size_t height = bytes.le32(22);
    ByteList pixels;
    for (std::size_t row = 0; row < height; ++row) {
        const std::size_t start = bytes.le32(10) + row * (3 * width + paddingAfter(width));
        for (std::size_t i = 0; i < 3 * width; ++i)
            pixels.push_back(file.at(start + i));
    }
    return pixels;
}
