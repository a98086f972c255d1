#include "bmp/BmpWriter.h"

#include <algorithm>
#include <cstring>
#include <utility>

#include "bmp/BmpHeader.h"

namespace {

void patchSizes(const NewImage& image) {
    const auto pixelBytes = static_cast<std::uint32_t>(image.pixelBytes);
    writeSignedInt(2, bmpHdr.pixelOffset + pixelBytes);
    writeSignedInt(18, static_cast<std::uint32_t>(image.width));
    writeSignedInt(22, static_cast<std::uint32_t>(image.height));
    writeSignedInt(34, pixelBytes);
}

}  // namespace

NewImage newImage(std::int32_t width, std::int32_t height) {
    NewImage image{width, height};
    image.rows = static_cast<std::uint64_t>(std::max(height, 0));
    image.pixelsPerRow = static_cast<std::uint64_t>(std::max(width, 0));
    image.padding = getPadding(width);
    image.pixelBytes = image.rows * (kBmpPixelBytes * image.pixelsPerRow + image.padding);
    return image;
}

bool canBeWritten(const NewImage& image) {
    return image.pixelBytes <= UINT32_MAX - bmpHdr.pixelOffset;
}

BmpWriter::BmpWriter(const char* path)
    : file_(File::create(path)),
      oldBytes_(0),
      offset_(bmpHdr.pixelOffset),
      written_(bmpHdr.pixelOffset) {}

BmpWriter::BmpWriter(File image)
    : file_(std::move(image)),
      oldBytes_(file_.size()),
      offset_(bmpHdr.pixelOffset),
      written_(bmpHdr.pixelOffset) {
    const std::uint8_t noSignature[] = {0, 0};
    if (offset_ >= sizeof noSignature) failed_ = !file_.writeAt(0, noSignature, sizeof noSignature);
}

void BmpWriter::append(const std::uint8_t* bytes, std::size_t count) {
    while (count > 0) {
        const std::size_t taken = std::min(count, kPieceBytes - used_);
        std::memcpy(nextPlace(), bytes, taken);
        used_ += taken;
        bytes += taken;
        count -= taken;
        if (used_ == kPieceBytes) flush();
    }
}

void BmpWriter::appendBlack(std::uint64_t bytes) {
    // Over the old image, and little of it anywhere, black is written like anything else.
    while (bytes > 0 && (bytes < kPieceBytes - used_ || offset_ + used_ < oldBytes_)) {
        const auto taken =
            static_cast<std::size_t>(std::min<std::uint64_t>(bytes, kPieceBytes - used_));
        std::memset(nextPlace(), 0, taken);
        used_ += taken;
        bytes -= taken;
        if (used_ == kPieceBytes) flush();
    }
    if (bytes == 0) return;
    flush();
    offset_ += bytes;
}

bool BmpWriter::finish(const NewImage& image) {
    flush();
    const std::uint8_t black = 0;
    if (!failed_ && written_ < offset_) failed_ = !file_.writeAt(offset_ - 1, &black, 1);
    if (!file_.cut(failed_ ? written_ : offset_)) failed_ = true;
    patchSizes(image);
    return file_.writeAt(0, bmpV.data.get(), bmpHdr.pixelOffset) && !failed_;
}

void BmpWriter::flush() {
    // After a failure the rest is only counted: a full disk takes nothing more.
    if (used_ > 0 && !failed_) {
        const std::size_t taken = file_.writeUpTo(offset_, piece_.placeFor(offset_), used_);
        failed_ = taken < used_;
        written_ = offset_ + taken;
    }
    offset_ += used_;
    used_ = 0;
}
