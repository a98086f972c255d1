#include "Meshes.h"

#include <cmath>

#include "Grid.h"
#include "mesh/VemoMesh.h"

namespace {

constexpr std::uint32_t kFileHeaderBytes = 32;
constexpr std::uint32_t kChunkHeaderBytes = 16;
constexpr std::uint32_t kVertexBytes = 12;
constexpr std::uint32_t kFaceBytes = 16;
constexpr std::uint32_t kFaceUvBytes = 32;

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
    const auto across = static_cast<float>(x);
    const auto along = static_cast<float>(y);
    return {across, along, std::sin(across * 0.05f) * std::cos(along * 0.03f)};
}

Face faceAt(std::uint32_t x, std::uint32_t y, std::uint32_t pointsInRow) {
    const auto corner = static_cast<std::int32_t>(y * pointsInRow + x);
    const auto above = corner + static_cast<std::int32_t>(pointsInRow);
    return {{corner, corner + 1, above + 1, above}};
}

}  // namespace

std::size_t MeshSize::firstUv() const {
    const std::size_t points = std::size_t{side + 1} * (side + 1);
    return kFileHeaderBytes + 3 * kChunkHeaderBytes + kVertexBytes * points + kFaceBytes * faces();
}

std::size_t MeshSize::endOfUvs() const {
    return firstUv() + kFaceUvBytes * faces();
}

void writeMesh(const std::string& path, const MeshSize& size) {
    const Grid grid = gridOf(size.tiles);
    const Patches columns{size.side, grid.columns};
    const Patches rows{size.side, grid.rows};
    VemoMesh mesh;
    for (std::uint32_t y = 0; y <= size.side; ++y) {
        for (std::uint32_t x = 0; x <= size.side; ++x)
            mesh.points.push_back(pointAt(x, y));
    }
    for (std::uint32_t y = 0; y < size.side; ++y) {
        for (std::uint32_t x = 0; x < size.side; ++x) {
            mesh.faces.push_back(faceAt(x, y, size.side + 1));
            mesh.uvs.push_back(uvsOf(columns, rows, x, y));
        }
    }
    mesh.groups.resize(mesh.faces.size());
    writeVemo(path, mesh);
}
