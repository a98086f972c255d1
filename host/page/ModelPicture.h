#pragma once
// Pictures of the model in space and of its UV tiles, each in its own colour.

#include <string>
#include <vector>

#include "mesh/VemoMesh.h"
#include "page/Picture.h"

// The colour of the tile at a position; neighbours differ.
Rgb tileColour(std::size_t position);

// Returns the colour in CSS: #rrggbb.
std::string cssOf(const Rgb& colour);

// The colour of faces in no tile.
inline constexpr Rgb kNoTileColour{150, 154, 160};

// Gives a colour to the faces in a tile, of which `tile` is the mesh file.
void colourFaces(std::vector<Rgb>& colours, const VemoMesh& tile, const Rgb& colour);

// The model from the front left and a little above, y up, lit from the upper left; a colour a face.
Picture pictureOfModel(const VemoMesh& mesh, const std::vector<Rgb>& colours, std::uint32_t width,
                       std::uint32_t height);

// A tile's UVs, each face filled and outlined. `side` in pixels.
Picture pictureOfLayout(const VemoMesh& tile, const Rgb& colour, std::uint32_t side);
