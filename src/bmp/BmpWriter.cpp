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

NewImage newImage(std::int32_t width, std::int64_t height) {
    NewImage image{width, height};
    image.rows = static_cast<std::uint64_t>(std::max<std::int64_t>(height, 0));
    image.pixelsPerRow = static_cast<std::uint64_t>(std::max(width, 0));
    image.padding = getPadding(width);
    image.pixelBytes = image.rows * (kBmpPixelBytes * image.pixelsPerRow + image.padding);
    return image;
}

bool canBeWritten(const NewImage& image) {
    return image.pixelBytes <= UINT32_MAX - bmpHdr.pixelOffset;
}

bool BmpWriter::create(const char* path) {
    return rows_.start(File::create(path), bmpHdr.pixelOffset);
}

bool BmpWriter::writeOver(File image) {
    oldBytes_ = image.size();
    if (!rows_.start(std::move(image), bmpHdr.pixelOffset)) return false;
    const std::uint8_t noSignature[] = {0, 0};
    return bmpHdr.pixelOffset < sizeof noSignature ||
           rows_.file().writeAt(0, noSignature, sizeof noSignature);
}

void BmpWriter::appendBlack(std::uint64_t bytes) {
    // Over the old image, and little of it anywhere, black is written like anything else.
    while (bytes > 0 && (bytes < kPieceBytes || rows_.offset() < oldBytes_)) {
        const auto taken = static_cast<std::size_t>(std::min<std::uint64_t>(bytes, kPieceBytes));
        std::memset(rows_.room(taken), 0, taken);
        bytes -= taken;
    }
    if (bytes > 0) rows_.skip(bytes);
}

bool BmpWriter::finish(const NewImage& image) {
    const std::uint64_t end = rows_.offset();
    bool isWhole = rows_.flush();
    const std::uint8_t black = 0;
    if (isWhole && rows_.written() < end) isWhole = rows_.file().writeAt(end - 1, &black, 1);
    if (!rows_.file().cut(isWhole ? end : rows_.written())) isWhole = false;
    patchSizes(image);
    return rows_.file().writeAt(0, bmpV.data.get(), bmpHdr.pixelOffset) && isWhole;
}
