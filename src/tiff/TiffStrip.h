#pragma once
// TiffStrip: where the pixels of a map are. Rows follow one another without a gap, so a piece of the
// strip is a run of whole pixels and need not end with a row.

#include <cstdint>

#include "files/Piece.h"
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

// forEachPiece of the strip's pixels.
template <typename Use>
bool forEachPiece(const Strip& strip, Use use) {
    return forEachPiece(strip.offset, strip.pixels, strip.pixelBytes, use);
}
