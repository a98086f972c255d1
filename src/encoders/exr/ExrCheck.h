#pragma once
// ExrCheck: whether tinyexr may be given a file.
//
// A file is checked as a whole before the loader sees it, because the loader trusts what it reads: a
// tile size of 0 or an unknown level mode ends the process, chunks are read past the end of the file,
// and memory is allocated for whatever size the header claims. The host must survive any file, and
// the loader is used as it is; so every file that it would not survive is refused here.
//
// An OpenEXR file, little-endian: magic 76 2F 31 01, version 2, flags (2: tiled, 8: deep, 16:
// multipart), attributes (name, type, size, value) up to an empty name, a table of chunk offsets,
// the chunks. A scanline chunk is its first row (4 bytes), its length (4), its data; a tile's
// starts with column, row and level (4 x 4).

#include <cstdint>
#include <span>

// What the check reads on the way, for laying out rows and tiles.
struct ExrLayout {
    bool tiled = false;
    bool increasingRows = true;
    std::int32_t width = 0;
    std::int32_t height = 0;
    std::int32_t tileWidth = 0;
    std::int32_t tileHeight = 0;
    std::int32_t chunkRows = 0;        // of a scanline file
    std::uint32_t firstPixelType = 0;  // 0 whole numbers, 1 half, 2 float
};

// Checks a file in memory. A table of chunk offsets that holds zeros, as an interrupted writer leaves
// it, is filled in there, and a `type` is emptied.
//
//   file     starts with the magic and is single-part and not deep
//   returns  kOk, kBadData, kUnknownFormat, kBadHeader, kUnknownFeature (exr_status)
int checkExr(std::span<std::uint8_t> file, ExrLayout& layout);
