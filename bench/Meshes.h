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
};

void writeMesh(const std::string& path, const MeshSize& size);
