#include "mesh/VemoMesh.h"

#include <limits>
#include <span>

#include "bytes/Bytes.h"
#include "files/DiskFile.h"
#include "mesh/VemoFile.h"
#include "terminal/Failure.h"

namespace {

constexpr std::int32_t kNoVertex = -1;

// Returns the elements of the chunk `id`. Throws Failure if the file does not have them all.
std::span<const std::uint8_t> elementsOf(const std::vector<std::uint8_t>& file, std::uint32_t id,
                                         std::size_t elementBytes, const std::string& missing) {
    Bytes bytes{file.data(), file.size()};
    std::uint64_t position = kFirstChunk;
    while (bytes.le32(position) != id) {
        const std::uint32_t length = bytes.le32(position + 4);
        if (bytes.overran || length == 0) throw Failure(missing);
        position += length;
    }
    const std::uint32_t count = bytes.le32(position + 8);
    const std::uint64_t first = position + kChunkHeaderBytes;
    if (bytes.overran || !bytes.holds(first, count, elementBytes)) throw Failure(missing);
    if (count == 0) return {};
    return std::span(file).subspan(static_cast<std::size_t>(first), count * elementBytes);
}

std::vector<Point> pointsFrom(std::span<const std::uint8_t> bytes) {
    std::vector<Point> points(bytes.size() / kVertexBytes);
    const std::uint8_t* p = bytes.data();
    for (Point& point : points) {
        point = {loadLeFloat(p), loadLeFloat(p + 4), loadLeFloat(p + 8)};
        p += kVertexBytes;
    }
    return points;
}

std::vector<Face> facesFrom(std::span<const std::uint8_t> bytes) {
    std::vector<Face> faces(bytes.size() / kFaceBytes);
    const std::uint8_t* p = bytes.data();
    for (Face& face : faces) {
        for (std::int32_t& vertex : face.vertices) {
            vertex = static_cast<std::int32_t>(loadLe32(p));
            p += 4;
        }
        if (face.vertices[3] < 0) face.vertices[3] = kNoVertex;
    }
    return faces;
}

std::vector<FaceUvs> uvsFrom(std::span<const std::uint8_t> bytes) {
    std::vector<FaceUvs> uvs(bytes.size() / kFaceUvBytes);
    const std::uint8_t* p = bytes.data();
    for (FaceUvs& face : uvs) {
        for (Uv& uv : face) {
            uv = {loadLeFloat(p), loadLeFloat(p + 4)};
            p += 8;
        }
    }
    return uvs;
}

void requireVertices(const VemoMesh& mesh, const std::string& path) {
    for (const Face& face : mesh.faces) {
        for (std::size_t i = 0; i < face.corners(); ++i) {
            const std::int32_t vertex = face.vertices[i];
            if (vertex < 0 || static_cast<std::size_t>(vertex) >= mesh.points.size())
                throw Failure(path + " is broken: a face names vertex " + std::to_string(vertex) +
                              " of " + std::to_string(mesh.points.size()));
        }
    }
}

using ByteList = std::vector<std::uint8_t>;

void put16(ByteList& out, std::uint16_t value) {
    out.push_back(static_cast<std::uint8_t>(value));
    out.push_back(static_cast<std::uint8_t>(value >> 8));
}

void put32(ByteList& out, std::uint32_t value) {
    out.resize(out.size() + 4);
    storeLe32(&out[out.size() - 4], value);
}

void putFloat(ByteList& out, float value) {
    put32(out, std::bit_cast<std::uint32_t>(value));
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

ByteList bytesOf(const VemoMesh& mesh) {
    ByteList out(kFirstChunk);  // the header, which is never read
    putChunkHeader(out, kVertexChunk, mesh.points.size(), kVertexBytes);
    for (const Point& point : mesh.points) {
        for (const float number : {point.x, point.y, point.z})
            putFloat(out, number);
    }
    putChunkHeader(out, kFaceChunk, mesh.faces.size(), kFaceBytes);
    for (const Face& face : mesh.faces) {
        for (const std::int32_t vertex : face.vertices)
            put32(out, static_cast<std::uint32_t>(vertex));
    }
    putChunkHeader(out, kFaceUvChunk, mesh.uvs.size(), kFaceUvBytes);
    for (const FaceUvs& face : mesh.uvs) {
        for (const Uv& uv : face) {
            putFloat(out, uv.u);
            putFloat(out, uv.v);
        }
    }
    putChunkHeader(out, kFaceGroupChunk, mesh.groups.size(), kFaceGroupBytes);
    for (const std::int16_t group : mesh.groups)
        put16(out, static_cast<std::uint16_t>(group));
    out.resize(out.size() + kChunkHeaderBytes);  // the empty header that closes the file
    return out;
}

}  // namespace

VemoMesh readVemo(const std::string& path) {
    const std::vector<std::uint8_t> file = readWholeFile(path, "mesh");
    const auto elements = [&](std::uint32_t id, std::size_t bytes, const char* what) {
        return elementsOf(file, id, bytes, path + " has no " + what + ", or they are cut short");
    };
    VemoMesh mesh;
    mesh.points = pointsFrom(elements(kVertexChunk, kVertexBytes, "vertices"));
    mesh.faces = facesFrom(elements(kFaceChunk, kFaceBytes, "faces"));
    mesh.uvs = uvsFrom(elements(kFaceUvChunk, kFaceUvBytes, "face UVs"));
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
