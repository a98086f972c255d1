// Mesh files: a header of 32 bytes, then chunks, each with its id, length and element count.

#include <algorithm>
#include <array>

#include "harness/Format.h"

namespace {

constexpr std::size_t kFirstChunk = 32;
constexpr std::size_t kChunkHeaderBytes = 16;
constexpr std::size_t kMaxChunks = 12;  // looked at here

struct Kind {
    std::uint32_t id;
    std::size_t elementBytes;
};
constexpr std::array<Kind, 6> kKinds = {
    {{10001, 12}, {20001, 16}, {25001, 32}, {30001, 1}, {35001, 4}, {40001, 2}}};

// The offsets of the chunks, each found by the length of the one before.
std::vector<std::size_t> chunksOf(const ByteList& file) {
    std::vector<std::size_t> chunks;
    for (std::size_t at = kFirstChunk;
         at + kChunkHeaderBytes <= file.size() && chunks.size() < kMaxChunks;) {
        chunks.push_back(at);
        at += std::max<std::size_t>(loadField(file, {at + 4, 4}), kChunkHeaderBytes);
    }
    return chunks;
}

std::vector<Field> fields(const ByteList& file) {
    std::vector<Field> found;
    for (const std::size_t chunk : chunksOf(file))
        found.insert(found.end(), {{chunk, 4}, {chunk + 4, 4}, {chunk + 8, 4}});
    return found;
}

// Gives each chunk the elements that it counts, or as many as the file has; faces name vertices
// that exist, and there are as many of them as of their UVs.
void repair(ByteList& file, std::size_t fileBytes) {
    std::uint32_t vertices = 0;
    std::uint32_t faces = 0;
    for (std::size_t at = kFirstChunk; at + kChunkHeaderBytes <= file.size();) {
        const std::uint32_t id = loadField(file, {at, 4});
        const auto kind = std::find_if(kKinds.begin(), kKinds.end(),
                                       [&](const Kind& known) { return known.id == id; });
        if (kind == kKinds.end()) break;
        const auto room =
            static_cast<std::uint32_t>((fileBytes - at - kChunkHeaderBytes) / kind->elementBytes);
        std::uint32_t count = std::min(loadField(file, {at + 8, 4}), room);
        if (id == 10001) vertices = count;
        if (id == 20001) {
            faces = count;
            for (std::size_t i = 0; i < 4 * std::size_t{count}; ++i) {
                const Field index{at + kChunkHeaderBytes + 4 * i, 4};
                const bool triangle = i % 4 == 3 && loadField(file, index) >> 31 == 1;
                if (vertices > 0 && !triangle)
                    storeField(file, index, loadField(file, index) % vertices);
            }
        }
        if (id == 25001 && faces > 0) count = std::min(faces, room);
        const std::size_t length = kChunkHeaderBytes + count * kind->elementBytes;
        storeField(file, {at + 4, 4}, static_cast<std::uint32_t>(length));
        storeField(file, {at + 8, 4}, count);
        at += length;
    }
}

}  // namespace

const Format kVemo{"vemo", fields, repair};
