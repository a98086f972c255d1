#pragma once
// The files that an export leaves in its folder, named after the mesh.

#include <string>
#include <vector>

#include "commands/export/ExportOptions.h"

struct ExportFiles {
    explicit ExportFiles(const ExportOptions& options);

    // Returns the files that the options ask for.
    std::vector<std::string> wanted(const ExportOptions& options) const;

    std::string stem;  // of the mesh
    std::string map;   // <mesh>_normal or <mesh>_height, with the format's extension
    std::string sixteenBitMap;
    std::string targa;
    std::string thumbnail;
    std::string jpeg;
    std::string page;
};
