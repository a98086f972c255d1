#pragma once
// The UV tiles of a mesh as the library finds, names and orders them; VemoOps.h has its rules.

#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "mesh/Extent.h"
#include "mesh/VemoMesh.h"

inline constexpr int kNamings = 4;       // the naming modes are 0 to 3
inline constexpr int kNumberNaming = 2;  // 1001, 1002 and so on

// Returns the column of a u, or the row of a v. A whole number begins a tile: 1.0 is in tile 1.
// What is below 0 first moves down by 1, so that -0.5 is in tile -1, but -1.0 in tile -2.
std::int32_t tileOf(float coordinate);

struct FaceInGroup {
    std::size_t face = 0;               // from 0
    std::optional<std::int16_t> group;  // none if the mesh has no face groups
};

// Faces with corners in several tiles. Such a face belongs to the tile of its first corner, but no
// map shows it.
struct CrossingFaces {
    static constexpr std::size_t kNamed = 3;

    std::size_t count = 0;
    std::size_t touching = 0;        // of these, the faces that clampUvs brings into one tile
    std::vector<FaceInGroup> first;  // the first kNamed
};

using FacesByGroup = std::map<std::int16_t, std::size_t>;  // how many faces each face group has

struct UvTile {
    std::int32_t column = 0;
    std::int32_t row = 0;
    std::size_t faces = 0;  // the faces whose first corner is in the tile
    Extent u;               // of all corners of these faces
    Extent v;
    FacesByGroup groups;     // of these faces
    CrossingFaces crossing;  // of these faces
};

// Returns the tiles of a mesh in the order in which the library writes them in a naming mode: that
// of their names as texts. Of tiles with the same name the one that comes first in the mesh is
// first.
std::vector<UvTile> tilesOf(const VemoMesh& mesh, int naming);

std::string nameOf(const UvTile& tile, int naming);

// Tiles with the same name. The library takes them for one tile, the first; no map shows the faces
// of the others.
struct SharedName {
    std::string name;
    std::vector<UvTile> tiles;
};

// Returns the names that several tiles have. `tiles` are in the order of tilesOf for this naming
// mode.
std::vector<SharedName> collisions(const std::vector<UvTile>& tiles, int naming);

// Returns the crossing faces of all these tiles.
CrossingFaces crossingFaces(const std::vector<UvTile>& tiles);

// Returns "0 3 7", or the first 8 "and 40 more".
std::string groupsText(const FacesByGroup& groups);

// Returns the name of a group, or its number if it has none.
std::string groupText(std::int16_t group, const std::vector<std::string>& names = {});

// Returns "face 0 (group 2), face 7 (group 2) and 40 more".
std::string textOf(const CrossingFaces& faces, const std::vector<std::string>& groupNames = {});
