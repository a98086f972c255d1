#include "tiff/TiffOps.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <memory>

#include "files/File.h"
#include "pixels/Pixels.h"
#include "tiff/TiffHeader.h"

namespace {

// Some failures are told to the person at the console, too.
float printed(float status) {
    std::printf("%d\n", static_cast<int>(status));
    std::fflush(stdout);
    return status;
}

// Rows that lie one behind the other in a file.
struct Rows {
    std::uint64_t offset = 0;  // of the first one, from the start of the file
    std::uint64_t bytes = 0;   // of all together
    std::uint64_t rowBytes = 0;
    std::size_t pixelBytes = 0;
};

bool hasKnownDepth(const TiffInfo& info) {
    return info.bitsPerSample == 8 || info.bitsPerSample == 16 || info.bitsPerSample == 32;
}

// The rows that a merge walks, before the files' real lengths are looked at. All rows are walked
// again, further on in the file, as long as the place reached is below the strip's byte count; for
// a well-formed file one walk is enough.
Rows rowsToMerge(const TiffInfo& info) {
    const bool nothing = info.stripOffset < 0 || info.stripOffset >= info.stripByteCount ||
                         info.width < 1 || info.length < 1 || !hasKnownDepth(info);
    if (nothing) return {};
    const auto offset = static_cast<std::uint64_t>(info.stripOffset);
    const auto pixelBytes = static_cast<std::size_t>(info.channels * info.bitsPerSample / 8);
    // A row takes at most 2^31 * 12 bytes, a walk at most 2^31 rows: 2^66. Beyond any file's length
    // one number is as good as another.
    const std::uint64_t rowBytes = static_cast<std::uint64_t>(info.width) * pixelBytes;
    const auto length = static_cast<std::uint64_t>(info.length);
    const std::uint64_t walk = length > INT64_MAX / rowBytes ? INT64_MAX : length * rowBytes;
    const std::uint64_t upToByteCount = static_cast<std::uint64_t>(info.stripByteCount) - offset;
    const std::uint64_t walks = (upToByteCount + walk - 1) / walk;
    return {offset, walks * walk, rowBytes, pixelBytes};
}

// The rows that lie wholly within a file of this length.
Rows wholeRowsWithin(Rows rows, std::uint64_t fileBytes) {
    if (rows.bytes == 0 || fileBytes <= rows.offset) return {};
    const std::uint64_t available = (fileBytes - rows.offset) / rows.rowBytes * rows.rowBytes;
    rows.bytes = std::min(rows.bytes, available);
    return rows;
}

bool mergeRows(const File& source, const File& target, const Rows& rows) {
    std::array<std::uint8_t, kLargestPixelBytes> background{};
    source.readAt(rows.offset, background.data(), rows.pixelBytes);

    const std::size_t piecePixels = kPieceBytes / rows.pixelBytes;
    const auto sourcePiece = std::make_unique<std::uint8_t[]>(kPieceBytes);
    const auto targetPiece = std::make_unique<std::uint8_t[]>(kPieceBytes);
    std::uint64_t pixelsLeft = rows.bytes / rows.pixelBytes;
    for (std::uint64_t offset = rows.offset; pixelsLeft > 0;) {
        const auto pixels =
            static_cast<std::size_t>(std::min<std::uint64_t>(pixelsLeft, piecePixels));
        const std::size_t bytes = pixels * rows.pixelBytes;
        if (source.readAt(offset, sourcePiece.get(), bytes) < bytes ||
            target.readAt(offset, targetPiece.get(), bytes) < bytes)
            return false;
        fillBackground(targetPiece.get(), sourcePiece.get(), background.data(), pixels,
                       rows.pixelBytes);
        if (!target.writeAt(offset, targetPiece.get(), bytes)) return false;
        offset += bytes;
        pixelsLeft -= pixels;
    }
    return true;
}

}  // namespace

float mergeTiff(const char* source, const char* target) {
    const TiffHeader from = readTiffHeader(source, tiff_status::kNotOpened);
    if (from.refused != tiff_status::kOk) return from.refused;
    const TiffHeader to = readTiffHeader(target, tiff_status::kTargetNotOpened);
    if (to.refused == tiff_status::kTargetNotOpened) return printed(to.refused);
    if (to.refused != tiff_status::kOk) return to.refused;

    if (to.isEmpty || from.info.width != to.info.width || from.info.length != to.info.length)
        return tiff_status::kSizesDiffer;
    if (from.info.channels != to.info.channels || from.info.bitsPerSample != to.info.bitsPerSample)
        return tiff_status::kSamplesDiffer;

    const File sourceFile = File::openForReading(source);
    if (!sourceFile.isOpen()) return tiff_status::kNotReopened;
    const File targetFile = File::openForRewriting(target);
    if (!targetFile.isOpen()) return tiff_status::kTargetNotReopened;

    const Rows rows =
        wholeRowsWithin(rowsToMerge(from.info), std::min(sourceFile.size(), targetFile.size()));
    if (rows.bytes > 0 && !mergeRows(sourceFile, targetFile, rows))
        return tiff_status::kTargetNotReopened;
    return tiff_status::kOk;
}
