#include "render/TileSheet.h"

#include <algorithm>
#include <string>

#include "terminal/Failure.h"

TileSheet::TileSheet(std::span<const TilePlace> tiles, std::uint32_t size) {
    const auto [left, right] = std::ranges::minmax(tiles, {}, &TilePlace::column);
    const auto [lowest, highest] = std::ranges::minmax(tiles, {}, &TilePlace::row);
    firstColumn_ = left.column;
    highestRow_ = highest.row;
    const std::int64_t columns = right.column - left.column + 1;
    const std::int64_t rows = highest.row - lowest.row + 1;
    const std::int64_t longer = std::max(columns, rows);
    if (longer > std::int64_t{size})
        throw Failure(
            "the tiles span " + std::to_string(columns) + " columns and " + std::to_string(rows) +
            " rows, which a sheet of " + std::to_string(size) + " pixels cannot show; " +
            (longer > kMaxSheetSide ? "" : "raise --size to " + std::to_string(longer) + ", ") +
            "choose tiles with --tiles, or make a map of each with --per-tile");
    columns_ = static_cast<std::uint32_t>(columns);
    rows_ = static_cast<std::uint32_t>(rows);
    cellSize_ = size / std::max(columns_, rows_);
}

Cell TileSheet::cellOf(const TilePlace& tile) const {
    return {static_cast<std::uint32_t>(tile.column - firstColumn_) * cellSize_,
            static_cast<std::uint32_t>(highestRow_ - tile.row) * cellSize_};
}

std::string sizeText(const TileSheet& sheet) {
    return std::to_string(sheet.width()) + " x " + std::to_string(sheet.height());
}
