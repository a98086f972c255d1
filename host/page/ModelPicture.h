#pragma once
// Pictures of the model in space and of its UV tiles, each in its own colour.

#include <array>
#include <string>
#include <vector>

#include "mesh/VemoMesh.h"
#include "page/Picture.h"

using Rgb = std::array<std::uint8_t, 3>;

// The colour of the tile at a position; neighbours differ.
Rgb tileColour(std::size_t position);

// Returns the colour in CSS: #rrggbb.
std::string cssOf(const Rgb& colour);

// The colours of a mesh's faces. Faces in no tile are grey.
class FaceColours {
public:
    explicit FaceColours(const VemoMesh& mesh);

    // Gives a colour to the faces in a tile, of which `tile` is the mesh file.
    void add(const VemoMesh& tile, const Rgb& colour);

    const Rgb& operator[](std::size_t face) const { return colours_[face]; }

private:
    std::vector<Rgb> colours_;
};

// The model from the front left and a little above, y up, lit from the upper left.
Picture pictureOfModel(const VemoMesh& mesh, const FaceColours& colours, std::uint32_t width,
                       std::uint32_t height);

// A tile's UVs, each face filled and outlined. `side` in pixels.
Picture pictureOfLayout(const VemoMesh& tile, const Rgb& colour, std::uint32_t side);
