#pragma once
// UVTiles: the UV tiles that the faces of a mesh occupy. The rules are in VemoOps.h.

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <set>
#include <string>
#include <unordered_set>

#include "mesh/TileFilter.h"
#include "mesh/VemoFile.h"

// The tile of one coordinate, u or v, and its place there.
struct TilePlace {
    std::int32_t tile;  // the tile's column or row
    float local;        // the place within the tile, 0 to 1
};

// A coordinate below 0 is first moved down by 1, so that the tiles on both sides of 0 differ; the
// fraction that is left below 0 is then counted from the tile's lower border. A NaN stays one, in
// tile 0; beyond the range of tiles the outermost one takes all.
TilePlace placeOf(float coordinate);

// The coordinates that surely lie in a tile: from `low` to below `high`. None for tiles below 0,
// where rounding moves the borders, and for those too far out for each float to have a fraction.
struct TileBorders {
    explicit TileBorders(std::int32_t tile);
    bool hold(float coordinate) const { return coordinate >= low && coordinate < high; }

    float low = 0.0f;
    float high = 0.0f;
};

// A tile's column and row.
struct TileAt {
    std::int32_t u;
    std::int32_t v;
    bool operator==(const TileAt&) const = default;
};

// The tile of a corner: two floats of a mesh file.
TileAt tileAt(const std::uint8_t* corner);

// How many of `count` face UVs, 1 or more, are in the tile that the first of them is in: at least 1,
// and all up to the next that may be in another. Meshes keep the faces of a tile together.
std::size_t facesInTile(TileAt tile, const std::uint8_t* faces, std::size_t count);

struct UV_tile {
    std::string name;
    std::int32_t u;
    std::int32_t v;

    TileAt at() const { return {u, v}; }
};

struct OrderByName {
    bool operator()(const UV_tile& a, const UV_tile& b) const { return a.name < b.name; }
};
using TileSet = std::set<UV_tile, OrderByName>;

// `mode` is a naming mode 0 to 3.
std::string tileName(std::int32_t u, std::int32_t v, int mode);

struct TilesFound {
    TileSet tiles;
    std::string lastName;  // of the last face's tile, also one that the filter keeps out
};

// Finds the tiles of the first corners of faces, which may come in pieces.
class TileFinder {
public:
    // `filter` counts in naming mode 2 only, and only when it is not empty.
    TileFinder(int mode, const TileFilter& filter);

    // The next `count` elements of the face UV chunk.
    void add(const std::uint8_t* faces, std::size_t count);

    // Those found so far that count.
    const TileSet& tiles() const { return tiles_; }

    TilesFound found() &&;

private:
    bool isNew(TileAt tile);
    void addTile(TileAt tile);

    int mode_;
    const TileFilter* filter_;    // null when every tile counts
    std::optional<TileAt> last_;  // the tile of the last face
    // The tiles met: most meshes stay within the first tiles, which have a bit each, a word a row.
    std::array<std::uint64_t, 64> near_{};
    std::unordered_set<std::uint64_t> far_;
    TileSet tiles_;
};

// One with the current filter.
TileFinder tileFinder(int mode);

// The tiles of all faces, as the current filter lets them pass. Nothing when the disk fails.
std::optional<TilesFound> findTiles(VemoFile& vemo, const ChunkElements& faceUvs, int mode);
