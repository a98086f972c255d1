#include "mesh/VemoMesh.h"

#include <bit>
#include <limits>
#include <optional>

#include "bytes/Bytes.h"
#include "files/DiskFile.h"
#include "mesh/VemoFile.h"
#include "terminal/Failure.h"

namespace {

// The elements of a chunk are the same words in the file, which is little-endian, and in memory.
using Word = std::uint32_t;

template <typename Element>
using WordsOf = std::array<Word, sizeof(Element) / sizeof(Word)>;

static_assert(sizeof(Point) == kVertexBytes && sizeof(Face) == kFaceBytes &&
              sizeof(FaceUvs) == kFaceUvBytes);

using ByteList = std::vector<std::uint8_t>;

struct Chunk {
    std::uint64_t elements;  // their offset
    std::uint32_t count;
};

// Returns where the chunk `id` has its elements; nothing if the file does not have them all.
std::optional<Chunk> findChunk(const ByteList& file, std::uint32_t id, std::size_t elementBytes) {
    Bytes bytes{file.data(), file.size()};
    std::uint64_t position = kFirstChunk;
    while (bytes.le32(position) != id) {
        const std::uint32_t length = bytes.le32(position + 4);
        if (bytes.overran || length == 0) return {};
        position += length;
    }
    const Chunk chunk{position + kChunkHeaderBytes, bytes.le32(position + 8)};
    if (bytes.overran || !bytes.holds(chunk.elements, chunk.count, elementBytes)) return {};
    return chunk;
}

// Throws Failure if the file does not have all elements of the chunk `id`.
template <typename Element>
std::vector<Element> elementsOf(const ByteList& file, std::uint32_t id,
                                const std::string& missing) {
    const auto chunk = findChunk(file, id, sizeof(Element));
    if (!chunk) throw Failure(missing);
    std::vector<Element> elements(chunk->count);
    std::uint64_t position = chunk->elements;
    for (Element& element : elements) {
        WordsOf<Element> words;
        for (Word& word : words) {
            word = loadLe32(&file[position]);
            position += sizeof(Word);
        }
        element = std::bit_cast<Element>(words);
    }
    return elements;
}

// No map needs the groups, so that a mesh with unusable ones is a mesh without.
std::vector<std::int16_t> groupsOf(const ByteList& file, std::size_t faces) {
    const auto chunk = findChunk(file, kFaceGroupChunk, kFaceGroupBytes);
    if (!chunk || chunk->count != faces) return {};
    std::vector<std::int16_t> groups;
    groups.reserve(faces);
    for (std::size_t i = 0; i < faces; ++i)
        groups.push_back(
            static_cast<std::int16_t>(loadLe16(&file[chunk->elements + i * kFaceGroupBytes])));
    return groups;
}

void requireVertices(const VemoMesh& mesh, const std::string& path) {
    for (const Face& face : mesh.faces) {
        for (std::size_t i = 0; i < face.corners(); ++i) {
            if (face.vertices[i] < 0 || face.vertex(i) >= mesh.points.size())
                throw Failure(path + " is broken: a face names vertex " +
                              std::to_string(face.vertices[i]) + " of " +
                              std::to_string(mesh.points.size()));
        }
    }
}

void put32(ByteList& out, std::uint32_t value) {
    out.resize(out.size() + 4);
    storeLe32(&out[out.size() - 4], value);
}

void putChunkHeader(ByteList& out, std::uint32_t id, std::size_t count, std::size_t elementBytes) {
    constexpr std::size_t kLongest = std::numeric_limits<std::uint32_t>::max() - kChunkHeaderBytes;
    if (count > kLongest / elementBytes)
        throw Failure("the model is too large for a mesh file, whose chunks end at 4 GiB");
    put32(out, id);
    put32(out, static_cast<std::uint32_t>(kChunkHeaderBytes + count * elementBytes));
    put32(out, static_cast<std::uint32_t>(count));
    put32(out, 0);
}

template <typename Element>
void putChunk(ByteList& out, std::uint32_t id, const std::vector<Element>& elements) {
    putChunkHeader(out, id, elements.size(), sizeof(Element));
    for (const Element& element : elements) {
        for (const Word word : std::bit_cast<WordsOf<Element>>(element))
            put32(out, word);
    }
}

ByteList bytesOf(const VemoMesh& mesh) {
    ByteList out(kFirstChunk);  // the header, which is never read
    putChunk(out, kVertexChunk, mesh.points);
    putChunk(out, kFaceChunk, mesh.faces);
    putChunk(out, kFaceUvChunk, mesh.uvs);
    putChunkHeader(out, kFaceGroupChunk, mesh.groups.size(), kFaceGroupBytes);
    for (const std::int16_t group : mesh.groups) {
        out.resize(out.size() + kFaceGroupBytes);
        storeLe16(&out[out.size() - kFaceGroupBytes], static_cast<std::uint16_t>(group));
    }
    out.resize(out.size() + kChunkHeaderBytes);  // the empty header that closes the file
    return out;
}

}  // namespace

VemoMesh readVemo(const std::string& path) {
    const ByteList file = readWholeFile(path, "mesh");
    const auto missing = [&](const char* what) {
        return path + " has no " + what + ", or they are cut short";
    };
    VemoMesh mesh;
    mesh.points = elementsOf<Point>(file, kVertexChunk, missing("vertices"));
    mesh.faces = elementsOf<Face>(file, kFaceChunk, missing("faces"));
    mesh.uvs = elementsOf<FaceUvs>(file, kFaceUvChunk, missing("face UVs"));
    if (mesh.faces.size() != mesh.uvs.size())
        throw Failure(path + " is broken: it has " + std::to_string(mesh.faces.size()) +
                      " faces but UVs for " + std::to_string(mesh.uvs.size()));
    requireVertices(mesh, path);
    mesh.groups = groupsOf(file, mesh.faces.size());
    return mesh;
}

void writeVemo(const std::string& path, const VemoMesh& mesh) {
    const ByteList bytes = bytesOf(mesh);
    OutputFile file(path);
    file.append(bytes);
    file.finish();
}
