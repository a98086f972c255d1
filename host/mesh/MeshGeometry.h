#pragma once
// The triangles of a mesh and how its surface lies in space.

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

// A normal for each point, the mean of its triangles' by their areas; 0 where there is none.
std::vector<Vector> vertexNormals(const VemoMesh& mesh);

// Whether all corners of a face lie in the tile that the mesh file is for.
bool liesInTile(const Face& face, const FaceUvs& uvs);
