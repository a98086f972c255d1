#pragma once
// The first half of an export: the mesh's tiles, and a mesh file for each.

#include <string>
#include <vector>

#include "commands/export/ExportRun.h"
#include "render/TileSheet.h"

struct Tile {
    std::string name;
    std::string meshFile;
    std::string mapFile;  // of the map that is rendered from it
    TilePlace place{};
};

// Returns how many tiles there are to export. Throws Failure if there are none, or more than the page
// shows.
std::size_t findTiles(ExportRun& run);

// Writes a mesh file for each of `count` tiles to the working folder.
std::vector<Tile> writeTileMeshes(ExportRun& run, std::size_t count);
