#pragma once
// A sculpted mesh as the host saves it: a grid of quads, cut into rectangular patches, one per UV
// tile.

#include <cstdint>
#include <string>

struct MeshSize {
    std::uint32_t side;   // in quads
    std::uint32_t tiles;  // from 1001 on, ten in a row

    std::size_t faces() const { return std::size_t{side} * side; }
    std::size_t firstUv() const;  // where the face UVs start in the file
    std::size_t endOfUvs() const;
    std::size_t points() const { return std::size_t{side + 1} * (side + 1); }
};

void writeMesh(const std::string& path, const MeshSize& size);

// The same points and faces in meshes of other chunks.
void writePaintedMesh(const std::string& path, const MeshSize& size);  // points, colours, faces
void writeFaces(const std::string& path, const MeshSize& size);
void writeColours(const std::string& path, const MeshSize& size);
