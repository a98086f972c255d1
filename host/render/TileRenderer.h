#pragma once
// The host's part in a map export: rendering the map of one tile.

#include "mesh/VemoMesh.h"
#include "render/TileSheet.h"

enum class MapKind {
    kNormal,  // object-space normals, -1..1 as 0..255 in three channels of 8 bits
    kHeight,  // y of the vertices, lowest 0, highest 1, one 32-bit float
};

std::uint32_t pixelBytesOf(MapKind kind);

// Renders the faces all of whose corners are in the tile. A pixel is covered when its centre
// is; quads are painted as two triangles. `size` is the map's side in pixels.
TileMap renderTile(const VemoMesh& tile, MapKind kind, std::uint32_t size);
