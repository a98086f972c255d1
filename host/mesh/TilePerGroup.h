#pragma once
// UV layouts in which each face group has a tile of its own.

#include "mesh/ObjModel.h"

// Moves the UVs of group 0 to tile 1001, of group 1 to tile 1002 and so on, ten tiles to a row. A
// group keeps its size where it then lies within one tile, and is made smaller as a whole where it
// does not; nothing is turned or stretched.
void moveGroupsToTiles(ObjModel& model);
