#pragma once
// Builds mesh files: a header of 32 bytes 1 to 32, then the chunks in the order of the calls.

#include <array>
#include <cstdint>
#include <vector>

#include "support/TempDir.h"

class VemoBuilder {
public:
    using Vertex = std::array<float, 3>;
    using Face = std::array<std::int32_t, 4>;
    using FaceUvs = std::array<float, 8>;  // u, v of the four corners
    using Colour = std::array<std::uint8_t, 4>;

    VemoBuilder();

    VemoBuilder& vertices(const std::vector<Vertex>& vertices);
    VemoBuilder& faces(const std::vector<Face>& faces);
    VemoBuilder& faceUvs(const std::vector<FaceUvs>& faces);
    // Faces all of whose corners have the same UVs.
    VemoBuilder& flatFaceUvs(const std::vector<std::array<float, 2>>& uvs);
    // Four bytes a vertex: blue, green, red, unused.
    VemoBuilder& vertexColours(const std::vector<Colour>& colours);
    VemoBuilder& groups(const std::vector<std::int16_t>& groups);
    VemoBuilder& closing();

    // A chunk header with any length and count, valid or not, and what follows it.
    VemoBuilder& chunk(std::uint32_t id, std::uint32_t length, std::uint32_t count,
                       const ByteList& elements = {});

    const ByteList& bytes() const { return bytes_; }

private:
    // A chunk with the length that its elements have.
    VemoBuilder& whole(std::uint32_t id, std::size_t count, const ByteList& elements);

    ByteList bytes_;
};
