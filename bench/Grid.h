#pragma once
// UV tiles side by side: how many in a row, and in how many rows.

#include <cstdint>

struct Grid {
    std::uint32_t columns;
    std::uint32_t rows;
};

// The grid nearest to a square: 12 tiles are 4 x 3, 100 are 10 x 10, 7 are 7 x 1.
constexpr Grid gridOf(std::uint32_t tiles) {
    Grid grid{tiles, 1};
    for (std::uint32_t rows = 1; rows * rows <= tiles; ++rows) {
        if (tiles % rows == 0) grid = {tiles / rows, rows};
    }
    return grid;
}
