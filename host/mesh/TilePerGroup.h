#pragma once
// UV layouts in which each face group has its own tile.

#include "mesh/ObjModel.h"

// Moves the UVs of group 0 to tile 1001, of group 1 to tile 1002 and so on, ten tiles to a row. A
// group keeps its size if it then fits into one tile, and is scaled down as a whole if it does not;
// nothing is rotated or stretched.
void moveGroupsToTiles(ObjModel& model);
