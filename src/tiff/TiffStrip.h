#pragma once
// TiffStrip: the pixels of a map, moved in pieces. Rows lie one behind the other, so a piece is a
// run of whole pixels and need not end with a row.

#include <algorithm>
#include <cstdint>
#include <memory>

#include "files/File.h"
#include "tiff/TiffHeader.h"

struct Strip {
    std::uint64_t offset = 0;  // of the first pixel, from the start of the file
    std::uint64_t pixels = 0;
    std::size_t pixelBytes = 0;

    std::uint64_t end() const { return offset + pixels * pixelBytes; }
};

// Whether width and length are both at least 1.
bool hasPixels(const TiffInfo& info);

// A map of `info`'s size whose pixels have `pixelBytes` each. No pixels when a size is below 1 or
// the strip starts at a negative offset; a map larger than any file counts as one that ends there.
Strip stripOf(const TiffInfo& info, std::size_t pixelBytes);

// The part of the strip that consists of whole rows within a file of this length.
Strip wholeRowsWithin(const Strip& strip, const TiffInfo& info, std::uint64_t fileBytes);

// Calls `use(offset, pixels)` for each run of pixels in the strip of at most kPieceBytes, in order,
// as long as it returns true. Returns whether all did.
template <typename Use>
bool forEachPiece(const Strip& strip, Use use) {
    const std::uint64_t most = kPieceBytes / strip.pixelBytes;
    for (std::uint64_t done = 0; done < strip.pixels;) {
        const std::uint64_t pixels = std::min(most, strip.pixels - done);
        if (!use(strip.offset + done * strip.pixelBytes, static_cast<std::size_t>(pixels)))
            return false;
        done += pixels;
    }
    return true;
}
