#include "render/TileSheet.h"

#include <algorithm>
#include <string>

#include "bytes/Numbers.h"
#include "terminal/Failure.h"

namespace {

// The tile of a coordinate; below 0 it counts as 1 less, as everywhere in the library.
std::int64_t tileOf(float coordinate) {
    return saturatedInt(coordinate < 0.0f ? coordinate - 1.0f : coordinate);
}

}  // namespace

TilePlace placeOfTile(const VemoMesh& mesh, const VemoMesh& tile, const std::string& path) {
    const std::size_t faces = std::min(mesh.uvs.size(), tile.uvs.size());
    for (std::size_t face = 0; face < faces; ++face) {
        const Uv& begin = mesh.uvs[face][0];
        if (isInTile(tile.uvs[face][0])) return {tileOf(begin.u), tileOf(begin.v)};
    }
    throw Failure(path + " has no face of its tile; was the file changed during the export?");
}

TileSheet::TileSheet(std::span<const TilePlace> tiles, std::uint32_t size) {
    const auto [left, right] = std::ranges::minmax(tiles, {}, &TilePlace::column);
    const auto [lowest, highest] = std::ranges::minmax(tiles, {}, &TilePlace::row);
    firstColumn_ = left.column;
    highestRow_ = highest.row;
    const std::int64_t columns = right.column - left.column + 1;
    const std::int64_t rows = highest.row - lowest.row + 1;
    if (std::max(columns, rows) > std::int64_t{size})
        throw Failure("the tiles span " + std::to_string(columns) + " columns and " +
                      std::to_string(rows) + " rows, which a sheet of " + std::to_string(size) +
                      " pixels cannot show; raise --size or choose tiles with --tiles");
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
