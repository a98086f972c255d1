#pragma once
// The first half of an export: the mesh's tiles, and a mesh file for each.

#include <string>
#include <vector>

#include "commands/export/ExportPlan.h"
#include "commands/export/ExportRun.h"

struct Tile {
    std::string name;
    std::string meshFile;
    std::string mapFile;  // of the map that is rendered from it
    TilePlace place;
};

// Lets the library find the tiles. Throws Failure if there are none to export, or more than the page
// shows.
void findTiles(ExportRun& run);

// Writes a mesh file for each planned tile to the working folder.
std::vector<Tile> writeTileMeshes(ExportRun& run, const ExportPlan& plan);
