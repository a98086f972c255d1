#include <algorithm>

#include "files/Fields.h"
#include "mesh/VemoFile.h"

namespace {

using namespace number;

constexpr Component kHeader[] = {
    {"id", kLe32}, {"length", kLe32}, {"element count", kLe32}, {"unused", kLe32}};

constexpr Component kPoint[] = {{"x", kLeFloat}, {"y", kLeFloat}, {"z", kLeFloat}};
constexpr Component kIndex[] = {{"vertex", kSignedLe32}};
constexpr Component kUv[] = {{"u", kLeFloat}, {"v", kLeFloat}};
constexpr Component kMask[] = {{"mask", kByte}};
constexpr Component kColour[] = {
    {"blue", kByte}, {"green", kByte}, {"red", kByte}, {"unused", kByte}};
constexpr Component kGroup[] = {{"group", kSignedLe16}};

struct ChunkKind {
    std::uint32_t id;
    const char* name;
    const char* part;
    Elements elements;  // their number is in the header
};

constexpr ChunkKind kChunks[] = {
    {kVertexChunk, "vertices", "vertex chunk", {"vertex", 0, nullptr, 1, kPoint}},
    {kFaceChunk, "faces", "face chunk", {"face", 0, "corner", 4, kIndex}},
    {kFaceUvChunk, "face UVs", "face UV chunk", {"face", 0, "corner", 4, kUv}},
    {kMaskChunk, "mask", "mask chunk", {"vertex", 0, nullptr, 1, kMask}},
    {kVertexColourChunk,
     "vertex colours",
     "vertex colour chunk",
     {"vertex", 0, nullptr, 1, kColour}},
    {kFaceGroupChunk, "face groups", "face group chunk", {"face", 0, nullptr, 1, kGroup}}};

// A chunk with its header.
Field chunkField(std::uint64_t offset, Bytes header) {
    const std::uint32_t id = header.le32(0);
    const std::uint32_t count = header.le32(8);
    Field field{offset, header.le32(4), std::to_string(id), std::to_string(count) + " elements"};
    field.head = kHeader;
    const auto* const kind = std::ranges::find(kChunks, id, &ChunkKind::id);
    if (kind == std::end(kChunks)) return field;
    field.name += std::string(" ") + kind->name;
    field.part = kind->part;
    field.elements = kind->elements;
    field.elements.count = count;
    return field;
}

}  // namespace

bool isVemoChunk(std::uint32_t id) {
    return std::ranges::find(kChunks, id, &ChunkKind::id) != std::end(kChunks);
}

void readVemo(Fields& fields) {
    fields.add({0, kFirstChunk, "header", "not read"});
    for (std::uint64_t offset = kFirstChunk; fields.has(offset) && !fields.isFull();) {
        Bytes header = fields.part(offset, kChunkHeaderBytes);
        const std::uint32_t id = header.le32(0);
        const std::uint32_t length = header.le32(4);
        if (fields.endsWithin("a chunk", header, offset)) return;
        const bool closes = id == 0 && length == 0;
        if (closes)
            fields.add({offset, kChunkHeaderBytes, "closing header", "", "", kHeader});
        else
            fields.add(chunkField(offset, header));
        offset += closes ? kChunkHeaderBytes : length;
        if (length == 0 && !closes) return;  // the next chunk would be the same
    }
}
