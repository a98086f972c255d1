#pragma once
// The sheet of one tile as a map file, which is what a merge reads.

#include <string>

#include "files/MapFormat.h"
#include "render/TileRenderer.h"
#include "render/TileSheet.h"

// False for a sheet that the format's merge would leave as it is: a TIFF is merged only if its pixels
// take more bytes than what precedes them.
bool isMergeable(MapFormat format, const TileSheet& sheet, MapKind kind);

// Writes the sheet with this one cell painted. A PSD of heights has 16-bit samples, 0 to 1 as 0 to
// 65535; a BMP holds RGB only. The first pixels of the top and of the bottom row stay background, from
// which merges know what is painted: one of them is the first in each kind of file.
void writeSheet(const std::string& path, MapFormat format, const TileSheet& sheet, const Cell& cell,
                const TileMap& map);
