#pragma once
// The files that an export of one map leaves in its folder, named after the mesh.

#include <string>
#include <vector>

#include "commands/export/ExportOptions.h"

struct ExportFiles {
    // `tile` is the tile of which alone the map is; empty: all tiles are on the map.
    ExportFiles(const ExportOptions& options, const std::string& tile);

    // Returns the files that the options ask for.
    std::vector<std::string> wanted(const ExportOptions& options) const;

    // Each with its folder. First <mesh>_normal or <mesh>_height, with the format's extension.
    std::string map;
    std::string sixteenBitMap;
    std::string targa;
    std::string thumbnail;
    std::string jpeg;
    std::string page;
};

// Returns the mesh's file name without its extension.
std::string stemOf(const ExportOptions& options);
