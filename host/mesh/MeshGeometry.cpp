#include "mesh/MeshGeometry.h"

#include <algorithm>

// A cross product is as long as twice the triangle's area, so a plain sum weights by area.
std::vector<Vector> vertexNormals(const VemoMesh& mesh) {
    std::vector<Vector> normals(mesh.points.size());
    forEachTriangle(mesh, [&](std::size_t face, const Triangle& triangle) {
        const auto pointAt = [&](std::size_t i) {
            const Point& point = mesh.points[mesh.faces[face].vertex(triangle[i])];
            return Vector{point.x, point.y, point.z};
        };
        const Vector start = pointAt(0);
        const Vector normal = cross(pointAt(1) - start, pointAt(2) - start);
        for (const std::size_t corner : triangle) {
            Vector& sum = normals[mesh.faces[face].vertex(corner)];
            sum = sum + normal;
        }
    });
    for (Vector& normal : normals)
        normal = normalized(normal);
    return normals;
}

bool isInTile(const VemoMesh& tile, std::size_t face) {
    const auto end =
        tile.uvs[face].begin() + static_cast<std::ptrdiff_t>(tile.faces[face].corners());
    return std::all_of(tile.uvs[face].begin(), end, [](const Uv& uv) { return isInTile(uv); });
}
