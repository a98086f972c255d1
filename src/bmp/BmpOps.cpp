// The operations that rewrite rows in place, a few at a time: merging and exchanging channels.

#include "bmp/BmpOps.h"

#include <algorithm>
#include <array>

#include "bmp/BmpHeader.h"
#include "files/File.h"
#include "files/PieceBuffer.h"
#include "pixels/Pixels.h"

namespace {

// The rows of an image as far as its file has them; the last one may be cut short.
struct StoredRows {
    std::uint64_t offset = 0;  // of the bottom row, from the start of the file
    std::uint64_t bytes = 0;   // of all together
    std::uint64_t stride = 0;
    std::uint64_t pixelBytes = 0;  // of a row, without its padding
};

StoredRows rowsWithin(const BmpHeader& header, std::uint64_t fileBytes) {
    if (header.width < 1 || header.height < 1 || fileBytes <= header.pixelOffset) return {};
    const auto stride = static_cast<std::uint64_t>(header.rowStride);
    const auto height = static_cast<std::uint64_t>(header.height);
    const std::uint64_t available = fileBytes - header.pixelOffset;
    const std::uint64_t bytes = height > available / stride ? available : height * stride;
    return {header.pixelOffset, bytes, stride,
            kBmpPixelBytes * static_cast<std::uint64_t>(header.width)};
}

// What is moved at once: whole rows, or whole pixels of one row that is too long. Only the end of
// the file can leave less.
struct Piece {
    std::uint64_t offset;  // in the file
    std::size_t bytes;
    std::uint64_t column;  // of the first byte, in bytes from the start of its row
};

// The piece that follows the first `done` bytes of the rows.
Piece pieceAfter(const StoredRows& rows, std::uint64_t done) {
    const std::uint64_t column = done % rows.stride;
    const std::uint64_t wanted =
        rows.stride <= kPieceBytes
            ? kPieceBytes / rows.stride * rows.stride
            : std::min<std::uint64_t>(kPieceBytes / kBmpPixelBytes * kBmpPixelBytes,
                                      rows.stride - column);
    const std::uint64_t bytes = std::min(wanted, rows.bytes - done);
    return {rows.offset + done, static_cast<std::size_t>(bytes), column};
}

// Calls `work(start, pixels)` for the pixels of each row in a piece; `start` counts bytes from the
// start of the piece.
template <typename Work>
void forEachRow(const StoredRows& rows, const Piece& piece, Work work) {
    const std::uint64_t rowBytes = rows.pixelBytes - std::min(rows.pixelBytes, piece.column);
    for (std::uint64_t start = 0; start < piece.bytes; start += rows.stride) {
        const std::uint64_t bytes = std::min(rowBytes, piece.bytes - start);
        work(static_cast<std::size_t>(start), static_cast<std::size_t>(bytes / kBmpPixelBytes));
    }
}

using Background = std::array<std::uint8_t, kBmpPixelBytes>;

void mergeRows(const File& source, const File& target, const StoredRows& rows,
               const Background& background) {
    const PieceBuffer sourceBuffer;
    const PieceBuffer targetBuffer;
    for (std::uint64_t done = 0; done < rows.bytes;) {
        const Piece piece = pieceAfter(rows, done);
        std::uint8_t* const sourceBytes = sourceBuffer.placeFor(piece.offset);
        std::uint8_t* const targetBytes = targetBuffer.placeFor(piece.offset);
        if (source.readAt(piece.offset, sourceBytes, piece.bytes) < piece.bytes ||
            target.readAt(piece.offset, targetBytes, piece.bytes) < piece.bytes)
            return;
        forEachRow(rows, piece, [&](std::size_t start, std::size_t pixels) {
            fillBackground(targetBytes + start, sourceBytes + start, background.data(), pixels,
                           kBmpPixelBytes);
        });
        if (!target.writeAt(piece.offset, targetBytes, piece.bytes)) return;
        done += piece.bytes;
    }
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

void swapRows(const File& file, const StoredRows& rows, Exchange exchange) {
    const PieceBuffer buffer;
    for (std::uint64_t done = 0; done < rows.bytes;) {
        const Piece piece = pieceAfter(rows, done);
        std::uint8_t* const bytes = buffer.placeFor(piece.offset);
        if (file.readAt(piece.offset, bytes, piece.bytes) < piece.bytes) return;
        forEachRow(rows, piece, [&](std::size_t start, std::size_t pixels) {
            exchangeSamples(bytes + start, pixels, exchange);
        });
        if (!file.writeAt(piece.offset, bytes, piece.bytes)) return;
        done += piece.bytes;
    }
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
    if (rows.bytes == 0) return bmp_status::kOk;
    Background background{};
    if (sourceFile.readAt(rows.offset, background.data(), background.size()) == 0)
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
