// The operations that rewrite rows in place, a few at a time: merging and exchanging channels.

#include "bmp/BmpOps.h"

#include <algorithm>
#include <array>

#include "bmp/BmpHeader.h"
#include "files/Piece.h"
#include "pixels/Pixels.h"

namespace {

// The rows of an image as far as its file has their pixels; the last one may be cut short.
struct StoredRows {
    std::uint64_t offset = 0;  // of the bottom row, from the start of the file
    std::uint64_t stride = 0;
    std::uint64_t width = 0;        // in pixels
    std::uint64_t rows = 0;         // whole ones
    std::uint64_t pixelsAbove = 0;  // of the one that is cut short

    bool isEmpty() const { return rows == 0 && pixelsAbove == 0; }
};

StoredRows rowsWithin(const BmpHeader& header, std::uint64_t fileBytes) {
    if (header.width < 1 || header.height < 1 || fileBytes <= header.pixelOffset) return {};
    const auto stride = static_cast<std::uint64_t>(header.rowStride);
    const auto width = static_cast<std::uint64_t>(header.width);
    const auto height = static_cast<std::uint64_t>(header.height);
    const std::uint64_t available = fileBytes - header.pixelOffset;
    const std::uint64_t padding = stride - kBmpPixelBytes * width;  // the last row may lack it
    const std::uint64_t rows = std::min(height, (available + padding) / stride);
    const bool isCut = rows < height && available > rows * stride;
    return {header.pixelOffset, stride, width, rows,
            isCut ? (available - rows * stride) / kBmpPixelBytes : 0};
}

// A run of whole rows, or of pixels of a single row, without the padding at its end.
struct Run {
    std::uint64_t offset;  // in the file
    std::size_t rows;
    std::size_t pixels;  // of each row
    std::size_t stride;

    std::size_t bytes() const { return (rows - 1) * stride + kBmpPixelBytes * pixels; }
};

// Calls `use(run)` for runs of at most a piece, in order, as long as it returns true.
template <typename Use>
void forEachRun(const StoredRows& image, Use use) {
    const auto stride = static_cast<std::size_t>(image.stride);
    const auto useRows = [&](std::uint64_t offset, std::size_t rows) {
        return use(Run{offset, rows, static_cast<std::size_t>(image.width), stride});
    };
    const auto usePixels = [&](std::uint64_t offset, std::size_t pixels) {
        return use(Run{offset, 1, pixels, stride});
    };
    const auto useLongRow = [&](std::uint64_t offset, std::size_t) {
        return forEachPiece(offset, image.width, kBmpPixelBytes, usePixels);
    };
    const bool goesOn = stride <= kPieceBytes
                            ? forEachPiece(image.offset, image.rows, stride, useRows)
                            : forEachPiece(image.offset, image.rows, stride, useLongRow);
    if (goesOn)
        forEachPiece(image.offset + image.rows * image.stride, image.pixelsAbove, kBmpPixelBytes,
                     usePixels);
}

using Background = std::array<std::uint8_t, kBmpPixelBytes>;

void mergeRows(const File& source, const File& target, const StoredRows& image,
               const Background& background) {
    Piece tile;
    Piece map;
    forEachRun(image, [&](const Run& run) {
        if (!tile.read(source, run.offset, run.bytes()) ||
            !map.read(target, run.offset, run.bytes()))
            return false;
        for (std::size_t at = 0; at < run.bytes(); at += run.stride) {
            fillBackground(map.data() + at, tile.data() + at, background.data(), run.pixels,
                           kBmpPixelBytes);
        }
        return map.write(target);
    });
}

Exchange exchangeOf(std::int32_t mode) {
    switch (mode) {
        case 1:
            return {0, 1};
        case 2:
            return {0, 2};
        case 3:
            return {1, 2};
        default:
            return kNoExchange;
    }
}

void swapRows(const File& file, const StoredRows& image, Exchange exchange) {
    Piece piece;
    forEachRun(image, [&](const Run& run) {
        if (!piece.read(file, run.offset, run.bytes())) return false;
        for (std::size_t at = 0; at < run.bytes(); at += run.stride)
            exchangeSamples(piece.data() + at, run.pixels, exchange);
        return piece.write(file);
    });
}

}  // namespace

float mergeBMP(const char* source, const char* target) {
    const float targetStatus = loadBMPHead(target, bmp_status::kNotOpened);
    if (targetStatus != bmp_status::kOk) return targetStatus;
    const BmpHeader to = bmpHdr;
    const float sourceStatus = loadBMPHead(source, bmp_status::kSourceNotOpened);
    if (sourceStatus != bmp_status::kOk) return sourceStatus;
    const BmpHeader from = bmpHdr;

    if (from.width != to.width || from.height != to.height) return bmp_status::kSizesDiffer;
    if (from.pixelOffset != to.pixelOffset || from.bitsPerPixel != to.bitsPerPixel)
        return bmp_status::kLayoutsDiffer;

    const File sourceFile = File::openForRewriting(source);
    if (!sourceFile.isOpen()) return bmp_status::kNotReopened;
    const File targetFile = File::openForRewriting(target);
    if (!targetFile.isOpen()) return bmp_status::kTargetNotReopened;

    const StoredRows rows = rowsWithin(to, std::min(sourceFile.size(), targetFile.size()));
    if (rows.isEmpty()) return bmp_status::kOk;
    Background background{};
    if (sourceFile.readAt(rows.offset, background.data(), background.size()) < background.size())
        return bmp_status::kNotReopened;
    mergeRows(sourceFile, targetFile, rows, background);
    return bmp_status::kOk;
}

float swapChannelsBMP(const char* path, std::int32_t mode) {
    const float status = loadBMPHead(path, bmp_status::kNotOpened);
    if (status != bmp_status::kOk) return status;
    const File file = File::openForRewriting(path);
    if (!file.isOpen()) return bmp_status::kNotReopened;

    const Exchange exchange = exchangeOf(mode);
    if (exchange.first != exchange.second)
        swapRows(file, rowsWithin(bmpHdr, file.size()), exchange);
    return bmp_status::kOk;
}
