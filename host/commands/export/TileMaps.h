#pragma once
// The host's part of an export: a map of each tile, at its place on a sheet of all.

#include <span>

#include "commands/export/TileMeshes.h"
#include "mesh/VemoMesh.h"

// Renders each tile to its map file.
void renderTiles(ExportRun& run, const TileSheet& sheet, std::span<const Tile> tiles);
