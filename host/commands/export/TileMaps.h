#pragma once
// The host's part of an export: a map of each tile, at its place on a sheet of all.

#include <vector>

#include "commands/export/TileMeshes.h"
#include "mesh/VemoMesh.h"

// Gives each tile its place. Throws Failure for a sheet that cannot be merged or made a thumbnail of.
TileSheet layOutSheet(ExportRun& run, const VemoMesh& mesh, std::vector<Tile>& tiles);

// Renders each tile to its map file.
void renderTiles(ExportRun& run, const TileSheet& sheet, const std::vector<Tile>& tiles);
