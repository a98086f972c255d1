#pragma once
// The chunks of a mesh file and their elements.

#include "files/FileFacts.h"

struct ChunkKind {
    std::uint32_t id;
    const char* name;     // such as "face UVs"
    const char* part;     // such as "face UV chunk"
    const char* element;  // what one element belongs to: a vertex or a face
    const char* group;    // as in Elements
    std::size_t groups;
    std::span<const Component> components;
};

// Returns null for an id that no chunk has.
const ChunkKind* findChunkKind(std::uint32_t id);
