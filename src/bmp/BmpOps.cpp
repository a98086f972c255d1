// The operations that rewrite rows in place, a few at a time: merging and exchanging channels.

#include "bmp/BmpOps.h"

#include <algorithm>
#include <array>
#include <utility>

#include "bmp/BmpHeader.h"
#include "files/Piece.h"
#include "pixels/PaintedRuns.h"
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

// Some rows of pixels, each with padding behind it but the last.
struct Rows {
    std::uint64_t offset;  // in the file
    std::size_t count;
    std::size_t pixels;  // of each
    std::size_t stride;

    std::size_t rowBytes() const { return kBmpPixelBytes * pixels; }
    std::size_t bytes() const { return (count - 1) * stride + rowBytes(); }
};

// A part of a row, or several rows that have no padding.
Rows oneRow(std::uint64_t offset, std::size_t pixels) {
    return {offset, 1, pixels, kBmpPixelBytes * pixels};
}

// Calls `use(rows)` for at most a piece of them at a time, in order, as long as it returns true.
template <typename Use>
void forEachRows(const StoredRows& image, Use use) {
    const auto stride = static_cast<std::size_t>(image.stride);
    const auto width = static_cast<std::size_t>(image.width);
    const auto useRows = [&](std::uint64_t offset, std::size_t rows) {
        const bool hasPadding = stride != kBmpPixelBytes * width;
        return use(hasPadding ? Rows{offset, rows, width, stride} : oneRow(offset, rows * width));
    };
    const auto usePixels = [&](std::uint64_t offset, std::size_t pixels) {
        return use(oneRow(offset, pixels));
    };
    const auto useLongRow = [&](std::uint64_t offset, std::size_t) {
        return forEachPiece(offset, width, kBmpPixelBytes, usePixels);
    };
    const bool goesOn = stride <= kPieceBytes
                            ? forEachPiece(image.offset, image.rows, stride, useRows)
                            : forEachPiece(image.offset, image.rows, stride, useLongRow);
    if (goesOn)
        forEachPiece(image.offset + image.rows * image.stride, image.pixelsAbove, kBmpPixelBytes,
                     usePixels);
}

using Background = std::array<std::uint8_t, kBmpPixelBytes>;

// forEachRun for several rows. A run may go on from one row to the next.
template <typename Use>
bool forEachRunOfRows(const PaintedRuns<1>& painted, const std::uint8_t* tile, const Rows& rows,
                      Use use) {
    PaintedRun joined;
    for (std::size_t at = 0; at < rows.bytes(); at += rows.stride) {
        const bool goesOn =
            forEachRun(painted, {tile + at}, rows.rowBytes(), [&](const PaintedRun& run) {
                const PaintedRun found = {at + run.start, at + run.end};
                const bool isNear = found.start - joined.end < kShortestGap && !joined.isEmpty();
                const PaintedRun previous =
                    std::exchange(joined, {isNear ? joined.start : found.start, found.end});
                return isNear || previous.isEmpty() || use(previous);
            });
        if (!goesOn) return false;
    }
    return joined.isEmpty() || use(joined);
}

// Fills the background of a run, row by row. `map` is what the target has there.
void fillRun(std::uint8_t* map, const std::uint8_t* tile, const Rows& rows, const PaintedRun& run,
             const Background& background) {
    std::size_t row = run.start / rows.stride * rows.stride;
    for (; row < run.end; row += rows.stride) {
        const std::size_t start = std::max(row, run.start);
        const std::size_t end = std::min(row + rows.rowBytes(), run.end);
        fillBackground(map + (start - run.start), tile + start, background.data(),
                       (end - start) / kBmpPixelBytes, kBmpPixelBytes);
    }
}

// A merge leaves the target as it is where the source has its background, so nothing is read or written
// there.
void mergeRows(const File& source, const File& target, const StoredRows& image,
               const Background& background) {
    const PaintedRuns<1> painted({background.data()}, kBmpPixelBytes);
    Piece tile;
    Piece map;
    forEachRows(image, [&](const Rows& rows) {
        if (!tile.read(source, rows.offset, rows.bytes())) return false;
        return forEachRunOfRows(painted, tile.data(), rows, [&](const PaintedRun& run) {
            if (!map.read(target, rows.offset + run.start, run.size())) return false;
            fillRun(map.data(), tile.data(), rows, run, background);
            return map.write(target);
        });
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
    forEachRows(image, [&](const Rows& rows) {
        if (!piece.read(file, rows.offset, rows.bytes())) return false;
        for (std::size_t at = 0; at < rows.bytes(); at += rows.stride)
            exchangeSamples(piece.data() + at, rows.pixels, exchange);
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
    targetFile.touch();
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
