#include "mesh/MeshGeometry.h"

#include <algorithm>

Vector pointOf(const VemoMesh& mesh, const Face& face, std::size_t corner) {
    const Point& point = mesh.points[static_cast<std::size_t>(face.vertices[corner])];
    return {point.x, point.y, point.z};
}

// A cross product is as long as twice the triangle's area, so a plain sum weighs by area.
std::vector<Vector> vertexNormals(const VemoMesh& mesh) {
    std::vector<Vector> normals(mesh.points.size());
    for (const Face& face : mesh.faces) {
        forEachTriangle(face, [&](const std::size_t(&corners)[3]) {
            const Vector start = pointOf(mesh, face, corners[0]);
            const Vector normal = cross(pointOf(mesh, face, corners[1]) - start,
                                        pointOf(mesh, face, corners[2]) - start);
            for (const std::size_t corner : corners) {
                Vector& sum = normals[static_cast<std::size_t>(face.vertices[corner])];
                sum = sum + normal;
            }
        });
    }
    for (Vector& normal : normals)
        normal = normalized(normal);
    return normals;
}

bool liesInTile(const Face& face, const FaceUvs& uvs) {
    return std::all_of(uvs.begin(), uvs.begin() + static_cast<std::ptrdiff_t>(face.corners()),
                       isInTile);
}
