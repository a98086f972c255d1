#pragma once
// A mesh, read from and written to the host's mesh files. VemoOps.h has the layout of the file.

#include <array>
#include <cstdint>
#include <string>
#include <vector>

struct Point {
    float x, y, z;
};

struct Uv {
    float u, v;
    bool operator==(const Uv&) const = default;
};

// Whether a corner is in the tile that its mesh file is for: the library marks the others with -1
// and -1, which no corner in a tile has.
inline bool isInTile(const Uv& corner) {
    return corner != Uv{-1.0f, -1.0f};
}

inline constexpr std::size_t kMaxCorners = 4;

struct Face {
    std::array<std::int32_t, kMaxCorners> vertices;  // from 0; the fourth of a triangle is negative

    std::size_t corners() const { return vertices[3] < 0 ? 3 : 4; }
    std::size_t vertex(std::size_t corner) const {
        return static_cast<std::size_t>(vertices[corner]);
    }
};

using FaceUvs = std::array<Uv, kMaxCorners>;  // a triangle's fourth repeats its third

struct VemoMesh {
    std::vector<Point> points;
    std::vector<Face> faces;
    std::vector<FaceUvs> uvs;          // one per face
    std::vector<std::int16_t> groups;  // one per face; may be empty
};

// Reads vertices, faces and face UVs, and face groups if the file has one for each face. Checks
// every size against the file's and every index against the vertices; throws Failure for a file
// that is broken or lacks one of the first three.
VemoMesh readVemo(const std::string& path);

// Writes a mesh with vertices, faces, face UVs and face groups, in this order.
void writeVemo(const std::string& path, const VemoMesh& mesh);
