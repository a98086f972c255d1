#include "render/TileRenderer.h"

#include <cmath>

#include "bytes/Bytes.h"
#include "mesh/Extent.h"
#include "mesh/MeshGeometry.h"
#include "render/Raster.h"

namespace {

// Heights from 0 to 1; a vertex without a finite one has 0.
std::vector<double> vertexHeights(const VemoMesh& mesh) {
    Extent extent;
    for (const Point& point : mesh.points) {
        if (std::isfinite(point.y)) extent.take(point.y);
    }
    const double scale = extent.size() > 0.0 ? 1.0 / extent.size() : 0.0;
    std::vector<double> heights;
    heights.reserve(mesh.points.size());
    for (const Point& point : mesh.points)
        heights.push_back(std::isfinite(point.y) ? (point.y - extent.low) * scale : 0.0);
    return heights;
}

void storeNormal(std::uint8_t* pixel, const Vector& value) {
    const Vector normal = normalized(value);
    for (const double component : {normal.x, normal.y, normal.z})
        *pixel++ = rounded<std::uint8_t>(component * 127.5 + 127.5);  // -1..1 to 0..255
}

void storeHeight(std::uint8_t* pixel, double height) {
    storeLeFloat(pixel, static_cast<float>(height));
}

// Paints all faces; `store(pixel, value)` writes one pixel.
template <typename Value, typename Store>
void paintFaces(const VemoMesh& tile, const std::vector<Value>& values, TileMap& map, Store store) {
    const double side = map.size;
    const auto cornerAt = [&](std::size_t face, std::size_t corner) {
        const Uv& uv = tile.uvs[face][corner];
        return Corner<Value>{uv.u * side, (1.0 - uv.v) * side,
                             values[tile.faces[face].vertex(corner)]};
    };
    forEachTriangle(tile, [&](std::size_t face, const Triangle& triangle) {
        if (!isInTile(tile, face)) return;
        const auto [a, b, c] = triangle;
        rasterize(cornerAt(face, a), cornerAt(face, b), cornerAt(face, c), {map.size, map.size},
                  [&](std::size_t pixel, const Value& value) {
                      store(&map.pixels[pixel * map.pixelBytes], value);
                  });
    });
}

}  // namespace

std::uint32_t pixelBytesOf(MapKind kind) {
    return kind == MapKind::kNormal ? 3 : 4;
}

TileMap renderTile(const VemoMesh& tile, MapKind kind, std::uint32_t size) {
    TileMap map{size, pixelBytesOf(kind), {}};
    map.pixels.resize(std::size_t{size} * size * map.pixelBytes);
    if (kind == MapKind::kNormal)
        paintFaces(tile, vertexNormals(tile), map, storeNormal);
    else
        paintFaces(tile, vertexHeights(tile), map, storeHeight);
    return map;
}
