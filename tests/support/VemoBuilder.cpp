#include "support/VemoBuilder.h"

#include "support/Append.h"

namespace {

// The values of all elements, each added by `appendValue`.
template <typename Element, typename AppendValue>
ByteList bytesOf(const std::vector<Element>& elements, AppendValue appendValue) {
    ByteList bytes;
    for (const Element& element : elements) {
        for (const auto value : element)
            appendValue(bytes, value);
    }
    return bytes;
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

VemoBuilder& VemoBuilder::whole(std::uint32_t id, std::size_t count, const ByteList& elements) {
    return chunk(id, static_cast<std::uint32_t>(16 + elements.size()),
                 static_cast<std::uint32_t>(count), elements);
}

VemoBuilder& VemoBuilder::vertices(const std::vector<Vertex>& vertices) {
    return whole(10001, vertices.size(), bytesOf(vertices, appendLeFloat));
}

VemoBuilder& VemoBuilder::faces(const std::vector<Face>& faces) {
    const auto appendIndex = [](ByteList& bytes, std::int32_t index) {
        appendLe32(bytes, static_cast<std::uint32_t>(index));
    };
    return whole(20001, faces.size(), bytesOf(faces, appendIndex));
}

VemoBuilder& VemoBuilder::faceUvs(const std::vector<FaceUvs>& faces) {
    return whole(25001, faces.size(), bytesOf(faces, appendLeFloat));
}

VemoBuilder& VemoBuilder::flatFaceUvs(const std::vector<std::array<float, 2>>& uvs) {
    std::vector<FaceUvs> faces;
    for (const auto& [u, v] : uvs)
        faces.push_back({u, v, u, v, u, v, u, v});
    return faceUvs(faces);
}

VemoBuilder& VemoBuilder::vertexColours(const std::vector<Colour>& colours) {
    const auto appendByte = [](ByteList& bytes, std::uint8_t byte) { bytes.push_back(byte); };
    return whole(35001, colours.size(), bytesOf(colours, appendByte));
}

VemoBuilder& VemoBuilder::groups(const std::vector<std::int16_t>& groups) {
    ByteList elements;
    for (const std::int16_t group : groups)
        appendLe16(elements, static_cast<std::uint16_t>(group));
    return whole(40001, groups.size(), elements);
}

VemoBuilder& VemoBuilder::closing() {
    return chunk(0, 0, 0);
}
