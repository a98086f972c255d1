#pragma once
// A sculpted mesh as the host saves it: a grid of quads, cut into rectangular patches, one a UV
// tile.

#include <cstdint>
#include <string>
#include <vector>

struct MeshSize {
    std::uint32_t side;   // in quads
    std::uint32_t tiles;  // from 1001 on, ten in a row

    std::uint64_t faces() const { return std::uint64_t{side} * side; }
    std::uint64_t firstUv() const;  // where the face UVs start in the file
    std::uint64_t endOfUvs() const;
};

void writeMesh(const std::string& path, const MeshSize& size);
