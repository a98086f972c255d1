#pragma once
// A tile's sheet as a map file, which is what a merge takes.

#include <string>

#include "files/MapFormat.h"
#include "render/TileSheet.h"

// Writes the sheet with this one cell painted. A PSD of heights gets 16-bit samples, 0 to 1 as 0 to
// 65535; a BMP takes RGB only. The first pixels of the top and of the bottom row stay background,
// by which merges tell what is painted: one of them is the first in each kind of file.
void writeSheet(const std::string& path, MapFormat format, const TileSheet& sheet, const Cell& cell,
                const TileMap& map);
