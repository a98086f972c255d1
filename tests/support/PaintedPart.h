#pragma once
// Maps for merges: a tile that is painted from one pixel to another, and a map that has some pixels
// already. A pixel is one byte here; files have it several times.

#include <algorithm>
#include <cstddef>

#include "support/TempDir.h"

struct PaintedPart {
    ByteList tile;
    ByteList map;
    ByteList filled;    // the map, its background filled with the tile
    ByteList laidOver;  // the map with the tile over it
};

// The first pixel is background, 9, in both.
inline PaintedPart paintedPart(std::size_t pixels, std::size_t start, std::size_t end) {
    PaintedPart part;
    part.tile.assign(pixels, 9);
    part.map.assign(pixels, 9);
    for (std::size_t i = 3; i < pixels; i += 5)
        part.map[i] = 7;
    part.filled = part.laidOver = part.map;
    for (std::size_t i = start; i < end; ++i) {
        part.tile[i] = part.laidOver[i] = 5;
        if (part.map[i] == 9) part.filled[i] = 5;
    }
    return part;
}

// Calls `check(pixels, start, end)` for every pixel that a part can begin with in a small map, and for
// parts around pixel `border` of a large one. The maps have whole rows of `width` pixels.
template <typename Check>
void forEachPaintedPart(std::size_t width, std::size_t border, Check check) {
    const auto wholeRows = [&](std::size_t pixels) { return (pixels / width + 1) * width; };
    const std::size_t small = wholeRows(160);
    for (std::size_t start = 1; start < small; ++start)
        check(small, start, std::min(small, start + 1 + 7 * start % 50));
    for (std::size_t start = border - 6; start < border + 2; ++start) {
        for (const std::size_t length : {1u, 2500u})
            check(wholeRows(border + 4000), start, start + length);
    }
}

// Each byte `count` times, as samples of a pixel that follow one another.
inline ByteList repeatedEach(const ByteList& bytes, std::size_t count) {
    ByteList repeated(count * bytes.size());
    for (std::size_t i = 0; i < repeated.size(); ++i)
        repeated[i] = bytes[i / count];
    return repeated;
}
