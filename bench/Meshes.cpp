#include "Meshes.h"

#include <array>
#include <cmath>

#include "Grid.h"
#include "bytes/Bytes.h"
#include "files/DiskFile.h"
#include "mesh/VemoFile.h"
#include "mesh/VemoMesh.h"

namespace {

constexpr std::uint32_t kTilesInRow = 10;

// The patches of a grid along one of its sides.
struct Patches {
    std::uint32_t side;
    std::uint32_t count;

    std::uint32_t of(std::uint32_t quad) const { return quad * count / side; }
    std::uint32_t first(std::uint32_t patch) const { return (patch * side + count - 1) / count; }
    // A corner's place between the first and the last quad of its patch; patches keep a margin.
    float local(std::uint32_t quad, std::uint32_t corner) const {
        const std::uint32_t start = first(of(quad));
        const auto quads = static_cast<float>(first(of(quad) + 1) - start);
        return 0.02f + 0.96f * static_cast<float>(corner - start) / quads;
    }
};

FaceUvs uvsOf(const Patches& columns, const Patches& rows, std::uint32_t x, std::uint32_t y) {
    const std::uint32_t tile = rows.of(y) * columns.count + columns.of(x);
    const auto u = static_cast<float>(tile % kTilesInRow);
    const auto v = static_cast<float>(tile / kTilesInRow);
    const auto corner = [&](std::uint32_t right, std::uint32_t up) {
        return Uv{u + columns.local(x, x + right), v + rows.local(y, y + up)};
    };
    return {corner(0, 0), corner(1, 0), corner(1, 1), corner(0, 1)};
}

Point pointAt(std::uint32_t x, std::uint32_t y) {
    const auto across = static_cast<float>(x) * 0.0173f;
    const auto along = static_cast<float>(y) * 0.0173f;
    return {across, along, std::sin(across * 3.0f) * std::cos(along * 2.0f)};
}

Face faceAt(std::uint32_t x, std::uint32_t y, std::uint32_t pointsInRow) {
    const auto corner = static_cast<std::int32_t>(y * pointsInRow + x);
    const auto above = corner + static_cast<std::int32_t>(pointsInRow);
    return {{corner, corner + 1, above + 1, above}};
}

std::vector<Point> pointsOf(const MeshSize& size) {
    std::vector<Point> points;
    points.reserve(size.points());
    for (std::uint32_t y = 0; y <= size.side; ++y) {
        for (std::uint32_t x = 0; x <= size.side; ++x)
            points.push_back(pointAt(x, y));
    }
    return points;
}

std::vector<Face> facesOf(const MeshSize& size) {
    std::vector<Face> faces;
    faces.reserve(size.faces());
    for (std::uint32_t y = 0; y < size.side; ++y) {
        for (std::uint32_t x = 0; x < size.side; ++x)
            faces.push_back(faceAt(x, y, size.side + 1));
    }
    return faces;
}

using Colour = std::array<std::uint8_t, 4>;

std::vector<Colour> coloursOf(const MeshSize& size) {
    std::vector<Colour> colours(size.points());
    std::uint32_t bits = 1;
    for (Colour& colour : colours) {
        bits = bits * 1664525u + 1013904223u;
        colour = {static_cast<std::uint8_t>(bits >> 8), static_cast<std::uint8_t>(bits >> 16),
                  static_cast<std::uint8_t>(bits >> 24), 0};
    }
    return colours;
}

// A mesh file of chunks.
class ChunkWriter {
public:
    explicit ChunkWriter(const std::string& path) : file_(path) {
        file_.append(std::array<std::uint8_t, kFirstChunk>{});
    }

    template <typename Element>
    void append(std::uint32_t id, const std::vector<Element>& elements) {
        const std::size_t bytes = elements.size() * sizeof(Element);
        std::array<std::uint8_t, kChunkHeaderBytes> header{};
        storeLe32(header.data(), id);
        storeLe32(&header[4], static_cast<std::uint32_t>(header.size() + bytes));
        storeLe32(&header[8], static_cast<std::uint32_t>(elements.size()));
        file_.append(header);
        file_.append({reinterpret_cast<const std::uint8_t*>(elements.data()), bytes});
    }

    void finish() {
        file_.append(std::array<std::uint8_t, kChunkHeaderBytes>{});
        file_.finish();
    }

private:
    OutputFile file_;
};

}  // namespace

std::size_t MeshSize::firstUv() const {
    return kFirstChunk + 3 * kChunkHeaderBytes + kVertexBytes * points() + kFaceBytes * faces();
}

std::size_t MeshSize::endOfUvs() const {
    return firstUv() + kFaceUvBytes * faces();
}

void writeMesh(const std::string& path, const MeshSize& size) {
    const Grid grid = gridOf(size.tiles);
    const Patches columns{size.side, grid.columns};
    const Patches rows{size.side, grid.rows};
    constexpr std::uint32_t kGroupColumns = 64;
    VemoMesh mesh;
    mesh.points = pointsOf(size);
    mesh.faces = facesOf(size);
    for (std::uint32_t y = 0; y < size.side; ++y) {
        for (std::uint32_t x = 0; x < size.side; ++x) {
            mesh.uvs.push_back(uvsOf(columns, rows, x, y));
            mesh.groups.push_back(static_cast<std::int16_t>(x / kGroupColumns));
        }
    }
    writeVemo(path, mesh);
}

void writePaintedMesh(const std::string& path, const MeshSize& size) {
    ChunkWriter file(path);
    file.append(kVertexChunk, pointsOf(size));
    file.append(kVertexColourChunk, coloursOf(size));
    file.append(kFaceChunk, facesOf(size));
    file.finish();
}

void writeFaces(const std::string& path, const MeshSize& size) {
    ChunkWriter file(path);
    file.append(kFaceChunk, facesOf(size));
    file.finish();
}

void writeColours(const std::string& path, const MeshSize& size) {
    ChunkWriter file(path);
    file.append(kVertexColourChunk, coloursOf(size));
    file.finish();
}
