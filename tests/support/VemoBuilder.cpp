#include "support/VemoBuilder.h"

#include "support/Append.h"

namespace {

std::uint32_t size32(std::size_t size) {
    return static_cast<std::uint32_t>(size);
}

}  // namespace

VemoBuilder::VemoBuilder() {
    for (std::uint8_t i = 1; i <= 32; ++i)
        bytes_.push_back(i);
}

VemoBuilder& VemoBuilder::chunk(std::uint32_t id, std::uint32_t length, std::uint32_t count,
                                const ByteList& elements) {
    for (const std::uint32_t field : {id, length, count, 0u})
        appendLe32(bytes_, field);
    append(bytes_, elements);
    return *this;
}

VemoBuilder& VemoBuilder::vertices(const std::vector<Vertex>& vertices) {
    ByteList elements;
    for (const Vertex& vertex : vertices) {
        for (const float coordinate : vertex)
            appendLeFloat(elements, coordinate);
    }
    return chunk(10001, 16 + size32(elements.size()), size32(vertices.size()), elements);
}

VemoBuilder& VemoBuilder::faces(const std::vector<Face>& faces) {
    ByteList elements;
    for (const Face& face : faces) {
        for (const std::int32_t index : face)
            appendLe32(elements, static_cast<std::uint32_t>(index));
    }
    return chunk(20001, 16 + size32(elements.size()), size32(faces.size()), elements);
}

VemoBuilder& VemoBuilder::faceUvs(const std::vector<FaceUvs>& faces) {
    ByteList elements;
    for (const FaceUvs& face : faces) {
        for (const float coordinate : face)
            appendLeFloat(elements, coordinate);
    }
    return chunk(25001, 16 + size32(elements.size()), size32(faces.size()), elements);
}

VemoBuilder& VemoBuilder::flatFaceUvs(const std::vector<std::array<float, 2>>& uvs) {
    std::vector<FaceUvs> faces;
    for (const auto& [u, v] : uvs)
        faces.push_back({u, v, u, v, u, v, u, v});
    return faceUvs(faces);
}

VemoBuilder& VemoBuilder::vertexColours(const std::vector<Colour>& colours) {
    ByteList elements;
    for (const Colour& colour : colours)
        append(elements, ByteList(colour.begin(), colour.end()));
    return chunk(35001, 16 + size32(elements.size()), size32(colours.size()), elements);
}

VemoBuilder& VemoBuilder::groups(const std::vector<std::int16_t>& groups) {
    ByteList elements;
    for (const std::int16_t group : groups)
        appendLe16(elements, static_cast<std::uint16_t>(group));
    return chunk(40001, 16 + size32(elements.size()), size32(groups.size()), elements);
}

VemoBuilder& VemoBuilder::closing() {
    return chunk(0, 0, 0);
}
