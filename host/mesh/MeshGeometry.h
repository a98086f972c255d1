#pragma once
// The triangles of a mesh and the normals of its surface.

#include <array>
#include <cstddef>
#include <vector>

#include "mesh/Vector.h"
#include "mesh/VemoMesh.h"

// The corners of a face, 0 to 3, between which a triangle lies.
using Triangle = std::array<std::size_t, 3>;

// Calls `use(face, triangle)` with the position of each face and each of its triangles.
template <typename Use>
void forEachTriangle(const VemoMesh& mesh, Use use) {
    constexpr Triangle kTriangles[] = {{0, 1, 2}, {0, 2, 3}};
    for (std::size_t face = 0; face < mesh.faces.size(); ++face) {
        for (std::size_t i = 0; i + 3 <= mesh.faces[face].corners(); ++i)
            use(face, kTriangles[i]);
    }
}

// Returns a normal for each point: the mean of its triangles' normals, weighted by area, or 0.
std::vector<Vector> vertexNormals(const VemoMesh& mesh);

// Whether all corners of a face are in the tile that the mesh file is for.
bool isInTile(const VemoMesh& tile, std::size_t face);
