#pragma once
// The triangles of a mesh and the normals of its surface.

#include <cstddef>
#include <vector>

#include "mesh/Vector.h"
#include "mesh/VemoMesh.h"

inline constexpr std::size_t kTriangles[2][3] = {{0, 1, 2}, {0, 2, 3}};

// Calls `use` with the corners of each triangle of a face.
template <typename Use>
void forEachTriangle(const Face& face, Use use) {
    for (std::size_t i = 0; i + 3 <= face.corners(); ++i)
        use(kTriangles[i]);
}

Vector pointOf(const VemoMesh& mesh, const Face& face, std::size_t corner);

// Returns a normal for each point: the mean of its triangles' normals, weighted by area, or 0.
std::vector<Vector> vertexNormals(const VemoMesh& mesh);

// Whether all corners of a face are in the tile that the mesh file is for.
bool liesInTile(const Face& face, const FaceUvs& uvs);
