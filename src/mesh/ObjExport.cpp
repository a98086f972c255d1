// A painted, subdivided mesh as OBJ text, its faces grouped by the base face that they come from.

#include <algorithm>
#include <cmath>
#include <limits>
#include <optional>
#include <utility>
#include <vector>

#include "bytes/Bytes.h"
#include "mesh/ObjText.h"
#include "mesh/VemoFile.h"
#include "mesh/VemoOps.h"

namespace {

// How many faces each base face became, in the order of the base mesh. Replaced by GetFaceIDsVemo,
// emptied by the writeOBJfromVemo that used it; lives as long as the library is loaded.
std::vector<std::uint32_t> faceID;

constexpr std::uint32_t kMaxFaces = std::numeric_limits<std::uint32_t>::max();

bool isQuad(const std::uint8_t* face) {
    return static_cast<std::int32_t>(loadLe32(face + 12)) >= 0;
}

std::uint32_t facesPerCorner(double level) {
    const double faces = std::exp2((level - 1.0) + (level - 1.0));
    if (!(faces >= 1.0)) return 0;
    return faces < kMaxFaces ? static_cast<std::uint32_t>(faces) : kMaxFaces;
}

std::uint32_t saturatedProduct(std::uint32_t a, std::uint32_t b) {
    return static_cast<std::uint32_t>(std::min(std::uint64_t{a} * b, std::uint64_t{kMaxFaces}));
}

// The chunks of an OBJ as they follow one another, whatever lengths their headers give.
struct ObjChunks {
    std::optional<ChunkElements> vertices;
    std::optional<ChunkElements> colours;
    std::optional<ChunkElements> faces;
    std::uint32_t lastId = 0;  // of the chunk where the search ended, expected or not
    bool cutShort = false;     // the file ended first
};

ObjChunks findObjChunks(VemoFile& vemo) {
    ObjChunks found;
    std::uint64_t position = kFirstChunk;
    const auto take = [&](std::uint32_t id, std::size_t elementBytes,
                          std::optional<ChunkElements>& elements) {
        found.lastId = vemo.le32(position);
        found.cutShort = position + 4 > vemo.size();
        if (found.cutShort || found.lastId != id) return false;
        elements = vemo.elementsOf(position, elementBytes);
        found.cutShort = !elements;
        if (elements) position = elements->offset + elements->count * elementBytes;
        return elements.has_value();
    };
    if (!take(kVertexChunk, kVertexBytes, found.vertices)) return found;
    if (!take(kVertexColourChunk, kColourBytes, found.colours)) return found;
    take(kFaceChunk, kFaceBytes, found.faces);
    return found;
}

// The count in the header of the third chunk, found by the lengths of the first two; 0 when the
// file has no third.
std::uint32_t thirdChunkCount(VemoFile& vemo) {
    const std::uint64_t second = kFirstChunk + std::uint64_t{vemo.le32(kFirstChunk + 4)};
    const std::uint64_t third = second + vemo.le32(second + 4);
    return third + 12 <= vemo.size() ? vemo.le32(third + 8) : 0;
}

void addCounts(ObjText& obj, std::uint32_t vertices, std::uint32_t faces) {
    obj.add("# File exported by Morvane plugin\n#Vertex count ");
    obj.addInteger(vertices);
    obj.add("\n#Face count ");
    obj.addInteger(faces);
    obj.add("\n");
}

void addVertices(ObjText& obj, const std::uint8_t* vertex, std::uint32_t count) {
    for (std::uint32_t i = 0; i < count; ++i, vertex += kVertexBytes) {
        obj.add("v ");
        obj.addFloat(loadLeFloat(vertex));
        obj.add(" ");
        obj.addFloat(loadLeFloat(vertex + 4));
        obj.add(" ");
        obj.addFloat(loadLeFloat(vertex + 8));
        obj.add("\n");
    }
}

void addFace(ObjText& obj, const std::uint8_t* face) {
    const std::size_t bytes = isQuad(face) ? 16 : 12;
    obj.add("f");
    for (std::size_t corner = 0; corner < bytes; corner += 4) {
        obj.add(" ");
        obj.addInteger(std::int64_t{static_cast<std::int32_t>(loadLe32(face + corner))} + 1);
    }
    obj.add("\n");
}

void addFaceGroups(ObjText& obj, const std::uint8_t* face, std::uint32_t count) {
    std::int64_t baseFace = 0;
    for (const std::uint32_t groupFaces : faceID) {
        if (count == 0) return;
        obj.add("#FaceID ");
        obj.addInteger(++baseFace);
        obj.add("\n");
        const std::uint32_t written = std::min(groupFaces, count);
        for (std::uint32_t i = 0; i < written; ++i, face += kFaceBytes)
            addFace(obj, face);
        count -= written;
    }
}

}  // namespace

float GetFaceIDsVemo(const char* in_path, double level) {
    faceID.clear();
    VemoFile vemo(in_path);
    if (!vemo.isGood()) return vemo_status::kObjMeshNotOpened;
    const auto faces = vemo.elementsOf(kFirstChunk, kFaceBytes);
    if (!faces || !vemo.isGood()) return whyMissing(vemo, vemo_status::kObjMeshNotOpened);

    const std::uint32_t perCorner = facesPerCorner(level);
    const std::uint32_t fromQuad = saturatedProduct(4, perCorner);
    const std::uint32_t fromTriangle = saturatedProduct(3, perCorner);
    std::vector<std::uint32_t> counts(faces->count);
    auto next = counts.begin();
    const auto add = [&](const std::uint8_t* face, std::size_t count) {
        for (std::size_t i = 0; i < count; ++i, face += kFaceBytes)
            *next++ = isQuad(face) ? fromQuad : fromTriangle;
    };
    if (!vemo.forEachElement(*faces, kFaceBytes, add)) return vemo_status::kObjMeshNotOpened;
    faceID = std::move(counts);
    return static_cast<float>(faceID.size());
}

float writeOBJfromVemo(const char* in_path, char* out_path) {
    VemoFile vemo(in_path);
    if (!vemo.keep()) return vemo_status::kObjMeshNotOpened;
    const ObjChunks mesh = findObjChunks(vemo);
    if (mesh.cutShort) return vemo_status::kChunkMissing;
    const auto unexpectedChunk = static_cast<float>(mesh.lastId);
    if (!mesh.vertices) return unexpectedChunk;

    ObjText obj;
    if (!obj.create(out_path)) return vemo_status::kTextNotCreated;
    addCounts(obj, mesh.vertices->count, thirdChunkCount(vemo));
    addVertices(obj, vemo.data() + mesh.vertices->offset, mesh.vertices->count);
    if (!mesh.colours) return unexpectedChunk;
    obj.addColourBlock(vemo.data() + mesh.colours->offset, mesh.colours->count);
    if (!mesh.faces) return unexpectedChunk;
    addFaceGroups(obj, vemo.data() + mesh.faces->offset, mesh.faces->count);
    faceID.clear();
    return vemo_status::kOk;
}
