#pragma once
// The sheet with all tiles of a mesh side by side, and each tile's cell on it.

#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "mesh/VemoMesh.h"

// A tile's column and row in UV space.
struct TilePlace {
    std::int64_t column;
    std::int64_t row;
};

struct Cell {
    std::uint32_t left;  // in pixels from the left
    std::uint32_t top;
};

inline constexpr std::uint32_t kMaxSheetSide = 16384;  // in pixels

class TileSheet {
public:
    // As many columns and rows as the tiles span; the longer side has up to `size` pixels. Throws
    // Failure if that leaves no pixel for a cell.
    TileSheet(std::span<const TilePlace> tiles, std::uint32_t size);

    std::uint32_t cellSize() const { return cellSize_; }
    std::uint32_t width() const { return columns_ * cellSize_; }
    std::uint32_t height() const { return rows_ * cellSize_; }

    // The highest row is on top, as v grows upward.
    Cell cellOf(const TilePlace& tile) const;

private:
    std::int64_t firstColumn_;
    std::int64_t highestRow_;
    std::uint32_t columns_ = 0;
    std::uint32_t rows_ = 0;
    std::uint32_t cellSize_ = 0;
};

// "16 x 8".
std::string sizeText(const TileSheet& sheet);

// A square map of one tile. Pixels that no face covers have the background: all bytes 0.
struct TileMap {
    std::uint32_t size = 0;        // of a side, in pixels
    std::uint32_t pixelBytes = 0;  // 3: RGB of 8 bits, 4: a 32-bit float
    std::vector<std::uint8_t> pixels;
};
