// Merging and channel swaps, which change a map in place.

#include "tiff/TiffOps.h"

#include <algorithm>
#include <array>
#include <cstdio>

#include "files/Piece.h"
#include "pixels/PaintedRuns.h"
#include "pixels/Pixels.h"
#include "tiff/TiffHeader.h"
#include "tiff/TiffStrip.h"

namespace {

constexpr std::uint64_t kFileHeaderBytes = 8;

// Some failures are also printed, for the person at the console.
float printed(float status) {
    std::printf("%d\n", static_cast<int>(status));
    std::fflush(stdout);
    return status;
}

bool canBeMerged(const TiffInfo& info) {
    const int bits = info.bitsPerSample;
    return (bits == 8 || bits == 16 || bits == 32) && info.stripOffset < info.stripByteCount;
}

// The pixels that a merge walks, before the files' real lengths are looked at. All rows are walked
// again, further on in the file, as long as the place reached is below the strip's byte count; for
// a well-formed file one walk is enough.
Strip stripToMerge(const TiffInfo& info) {
    if (!canBeMerged(info)) return {};
    Strip strip = stripOf(info, static_cast<std::size_t>(info.channels * info.bitsPerSample / 8));
    if (strip.pixels == 0) return strip;
    const std::uint64_t walk = strip.pixels * strip.pixelBytes;
    const std::uint64_t upToByteCount =
        static_cast<std::uint64_t>(info.stripByteCount) - strip.offset;
    strip.pixels *= (upToByteCount + walk - 1) / walk;
    return strip;
}

// A merge leaves the target as it is where the source has its background, so nothing is read or written
// there.
bool mergePixels(const File& source, const File& target, const Strip& strip) {
    std::array<std::uint8_t, kLargestPixelBytes> background{};
    if (source.readAt(strip.offset, background.data(), strip.pixelBytes) < strip.pixelBytes)
        return false;

    const PaintedRuns<1> painted({background.data()}, strip.pixelBytes);
    Piece tile;
    Piece map;
    return forEachPiece(strip, [&](std::uint64_t offset, std::size_t pixels) {
        const std::size_t bytes = pixels * strip.pixelBytes;
        if (!tile.read(source, offset, bytes)) return false;
        return forEachRun(painted, {tile.data()}, bytes, [&](const PaintedRun& run) {
            if (!map.read(target, offset + run.start, run.size())) return false;
            fillBackground(map.data(), tile.data() + run.start, background.data(),
                           run.size() / strip.pixelBytes, strip.pixelBytes);
            return map.write(target);
        });
    });
}

Exchange exchangeOf(int mode) {
    switch (mode) {
        case 1:
            return {1, 2};
        case 2:
            return {0, 2};
        case 3:
            return {0, 1};
        default:
            return kNoExchange;
    }
}

bool swapPixels(const File& file, const Strip& strip, Exchange exchange) {
    Piece piece;
    return forEachPiece(strip, [&](std::uint64_t offset, std::size_t pixels) {
        if (!piece.read(file, offset, pixels * strip.pixelBytes)) return false;
        exchangeSamples(piece.data(), pixels, exchange);
        return piece.write(file);
    });
}

}  // namespace

float mergeTiff(const char* source, const char* target) {
    const TiffHeader from = readTiffHeader(source, tiff_status::kNotOpened);
    if (from.refused != tiff_status::kOk) return from.refused;
    const TiffHeader to = readTiffHeader(target, tiff_status::kTargetNotOpened);
    if (to.refused == tiff_status::kTargetNotOpened) return printed(to.refused);
    if (to.refused != tiff_status::kOk) return to.refused;

    if (to.entries.empty() || from.info.width != to.info.width ||
        from.info.length != to.info.length)
        return tiff_status::kSizesDiffer;
    if (from.info.channels != to.info.channels || from.info.bitsPerSample != to.info.bitsPerSample)
        return tiff_status::kSamplesDiffer;

    const File sourceFile = File::openForReading(source);
    if (!sourceFile.isOpen()) return tiff_status::kNotReopened;
    const File targetFile = File::openForRewriting(target);
    if (!targetFile.isOpen()) return tiff_status::kTargetNotWritten;

    const Strip strip = wholeRowsWithin(stripToMerge(from.info), from.info,
                                        std::min(sourceFile.size(), targetFile.size()));
    if (strip.pixels == 0) return tiff_status::kOk;
    if (!mergePixels(sourceFile, targetFile, strip)) return tiff_status::kTargetNotWritten;
    targetFile.touch();
    return tiff_status::kOk;
}

float swapChannels(const char* path, int mode) {
    const TiffHeader header = readTiffHeader(path, tiff_status::kNotOpened);
    if (header.refused == tiff_status::kNotOpened) return printed(header.refused);
    if (header.refused != tiff_status::kOk) return header.refused;
    const File file = File::openForRewriting(path);
    if (!file.isOpen()) return printed(tiff_status::kNotReopened);

    const Exchange exchange = exchangeOf(mode);
    const bool hasColours = header.info.bitsPerSample == 8 && header.info.channels == 3;
    if (!hasColours || exchange.first == exchange.second) return tiff_status::kOk;
    const Strip claimed = stripOf(header.info, 3);
    if (claimed.pixels > 0 && claimed.offset < kFileHeaderBytes) return tiff_status::kStripInHeader;
    const Strip strip = wholeRowsWithin(claimed, header.info, file.size());
    if (strip.pixels > 0 && !swapPixels(file, strip, exchange)) return tiff_status::kNotReopened;
    return tiff_status::kOk;
}
