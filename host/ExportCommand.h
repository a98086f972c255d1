#pragma once
// quillon export: the calls that Morvane makes to export one map of a mesh, in Morvane's order.

#include <cstdint>
#include <string>

#include "Library.h"
#include "TileRenderer.h"

struct ExportOptions {
    std::string mesh;
    std::string out;  // folder; created when it is missing
    std::uint32_t size = 1024;
    int naming = 2;
    std::string tiles;  // tile filter; empty: all tiles
    MapKind map = MapKind::kNormal;
    bool keepTiles = false;
};

// Leaves <mesh>_normal.tif or <mesh>_height.tif in the folder. Throws Failure as soon as a call
// fails, with what was made so far deleted.
void exportMap(const Library& library, const ExportOptions& options);
