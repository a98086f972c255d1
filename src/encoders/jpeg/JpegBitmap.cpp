#include "encoders/jpeg/JpegBitmap.h"

#include <algorithm>
#include <array>
#include <new>

#include "bytes/Bytes.h"
#include "encoders/JpegOps.h"

using namespace jpeg_status;

namespace {

constexpr std::size_t kHeaderBytes = 54;
constexpr std::size_t kPixelBytes = 3;

// Beyond this a side rounded up to a multiple of 8 no longer fits into 16 bits.
constexpr std::uint16_t kMaxSide = 65528;

bool isCoded(std::uint16_t side) {
    return side > 0 && side <= kMaxSide;
}

}  // namespace

float JpegBitmap::load_bitmap(const char* path) {
    file_ = File::openForReading(path);
    if (!file_.isOpen()) return kNotOpened;
    std::array<std::uint8_t, kHeaderBytes> header{};
    if (file_.readAt(0, header.data(), header.size()) < header.size()) return kTooShort;
    if (header[0] != 'B' || header[1] != 'M' || loadLe16(&header[28]) != 24) return kNot24BitBmp;

    size_ = {.height = loadLe16(&header[22]), .width = loadLe16(&header[18])};
    if (!isCoded(size_.width) || !isCoded(size_.height)) return kSizeRefused;
    const std::uint64_t claimed = std::uint64_t{size_.height} * stagedRowBytes();
    pixelBytes_ = std::min(claimed, file_.size() - kHeaderBytes);
    return kOk;
}

bool JpegBitmap::loadIfSameAs(const char* path) {
    if (!file_.isSameAs(path)) return true;
    const auto count = static_cast<std::size_t>(pixelBytes_);
    kept_.reset(new (std::nothrow) std::uint8_t[count]);
    if (kept_ == nullptr) return false;
    pixelBytes_ = file_.readAt(kHeaderBytes, kept_.get(), count);
    return true;
}

std::uint64_t JpegBitmap::rowsInFile() const {
    return (pixelBytes_ + stagedRowBytes() - 1) / stagedRowBytes();
}

bool JpegBitmap::hasRows(std::size_t first, std::size_t end) const {
    const std::size_t lowest = size_.height - std::min<std::size_t>(end, size_.height);
    return lowest < rowsInFile() || (!isFlippedWhole() && first < rowsInFile());
}

// Reads rows as they are in the file.
void JpegBitmap::readRows(std::size_t firstInFile, std::size_t count, std::uint8_t* to) const {
    const std::uint64_t start = std::uint64_t{firstInFile} * stagedRowBytes();
    const std::size_t wanted = count * stagedRowBytes();
    const std::uint64_t left = pixelBytes_ - std::min(start, pixelBytes_);
    std::size_t got = static_cast<std::size_t>(std::min<std::uint64_t>(wanted, left));
    if (kept_ != nullptr)
        std::copy_n(kept_.get() + start, got, to);
    else
        got = file_.readAt(kHeaderBytes + start, to, got);
    std::fill_n(to + got, wanted - got, std::uint8_t{0});
}

// Repeats the last pixel of each row, and then the last row.
void JpegBitmap::padRows(std::size_t count, std::size_t paddedCount, std::uint8_t* rows) const {
    for (std::size_t i = 0; i < count; ++i) {
        std::uint8_t* const row = rows + i * rowBytes();
        for (std::size_t at = realRowBytes(); at < rowBytes(); at += kPixelBytes)
            std::copy_n(row + realRowBytes() - kPixelBytes, kPixelBytes, row + at);
    }
    for (std::size_t i = count; i < paddedCount; ++i)
        std::copy_n(rows + (count - 1) * rowBytes(), rowBytes(), rows + i * rowBytes());
}

BitmapRows JpegBitmap::loadRows(std::size_t first, std::size_t end, std::uint8_t* stage,
                                std::uint8_t* padded) const {
    const std::size_t realEnd = std::min<std::size_t>(end, size_.height);
    const std::size_t count = realEnd - first;
    readRows(size_.height - realEnd, count, stage);
    const auto staged = static_cast<std::ptrdiff_t>(stagedRowBytes());
    if (isFlippedWhole() && !needsPadding(end))
        return {stage + (static_cast<std::ptrdiff_t>(count) - 1) * staged, -staged};

    for (std::size_t i = 0; i < count; ++i) {
        std::copy_n(stage + (count - 1 - i) * stagedRowBytes(), realRowBytes(),
                    padded + i * rowBytes());
    }
    // Only as many bytes of a row as the low 16 bits of its length are flipped: of a wide picture
    // just the left end. The rest stays in the order of the file: the host's maps of that width
    // have always been written so.
    if (!isFlippedWhole()) {
        readRows(first, count, stage);
        for (std::size_t i = 0; i < count; ++i) {
            std::copy_n(stage + i * stagedRowBytes() + flippedBytes(),
                        realRowBytes() - flippedBytes(), padded + i * rowBytes() + flippedBytes());
        }
    }
    padRows(count, end - first, padded);
    return {padded, static_cast<std::ptrdiff_t>(rowBytes())};
}
