#include "mesh/VemoMesh.h"

#include <bit>
#include <limits>

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

// Returns the elements of the chunk `id`. Throws Failure if the file does not have them all.
template <typename Element>
std::vector<Element> elementsOf(const std::vector<std::uint8_t>& file, std::uint32_t id,
                                const std::string& missing) {
    Bytes bytes{file.data(), file.size()};
    std::uint64_t position = kFirstChunk;
    while (bytes.le32(position) != id) {
        const std::uint32_t length = bytes.le32(position + 4);
        if (bytes.overran || length == 0) throw Failure(missing);
        position += length;
    }
    const std::uint32_t count = bytes.le32(position + 8);
    position += kChunkHeaderBytes;
    if (bytes.overran || !bytes.holds(position, count, sizeof(Element))) throw Failure(missing);
    std::vector<Element> elements(count);
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

using ByteList = std::vector<std::uint8_t>;

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
    const std::vector<std::uint8_t> file = readWholeFile(path, "mesh");
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
    return mesh;
}

void writeVemo(const std::string& path, const VemoMesh& mesh) {
    const ByteList bytes = bytesOf(mesh);
    OutputFile file(path);
    file.append(bytes);
    file.finish();
}
