#pragma once
// What an export will make, known before it writes anything.

#include <optional>
#include <string>
#include <vector>

#include "commands/export/ExportFiles.h"
#include "commands/export/TileFilterFile.h"
#include "mesh/TileList.h"
#include "render/TileSheet.h"

struct PlannedMap {
    std::string tile;  // of which alone it is; empty: of all
    TileSheet sheet;
    ExportFiles files;
};

struct ExportPlan {
    std::vector<UvTile> tiles;  // to export, in the library's order
    CrossingFaces crossing;     // of these tiles: no map shows them
    std::vector<PlannedMap> maps;
};

//   filter  lists the tiles to export; nothing: all of them
//
// Throws Failure for tiles with one name, for a sheet that cannot be merged or made a thumbnail of, and
// for a file that exists and must not be replaced.
ExportPlan planExport(const VemoMesh& mesh, const std::optional<TileFilterFile>& filter,
                      const ExportOptions& options);

TilePlace placeOf(const UvTile& tile);
