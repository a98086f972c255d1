#pragma once
// Faces that end exactly at the border of a tile, which belongs to the tile beside it.

#include "mesh/VemoMesh.h"

// Moves the corners of a face that are on a border of its tile into the tile, to the nearest place
// there that the library tells from the other side. A face that reaches further stays as it is.
FaceUvs clampedUvs(const Face& face, const FaceUvs& uvs);

// Does so for all faces. Returns how many corners were moved.
std::size_t clampUvs(VemoMesh& mesh);
