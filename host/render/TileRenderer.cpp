#include "render/TileRenderer.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "bytes/Bytes.h"
#include "mesh/MeshGeometry.h"
#include "render/Raster.h"

namespace {

// The height of each vertex, in x.
std::vector<Vector> vertexHeights(const VemoMesh& mesh) {
    double low = std::numeric_limits<double>::infinity();
    double high = -low;
    for (const Point& point : mesh.points) {
        if (!std::isfinite(point.y)) continue;
        low = std::min<double>(low, point.y);
        high = std::max<double>(high, point.y);
    }
    const double scale = high > low ? 1.0 / (high - low) : 0.0;
    std::vector<Vector> heights;
    heights.reserve(mesh.points.size());
    for (const Point& point : mesh.points)
        heights.push_back({std::isfinite(point.y) ? (point.y - low) * scale : 0.0, 0.0, 0.0});
    return heights;
}

std::uint8_t channelOf(double component) {
    const double scaled = component * 127.5 + 127.5;  // -1..1 to 0..255; a NaN is drawn as 0
    return scaled > 0.0 ? static_cast<std::uint8_t>(std::min(scaled, 255.0) + 0.5) : 0;
}

void storeNormal(std::uint8_t* pixel, const Vector& value) {
    const Vector normal = normalized(value);
    pixel[0] = channelOf(normal.x);
    pixel[1] = channelOf(normal.y);
    pixel[2] = channelOf(normal.z);
}

void storeHeight(std::uint8_t* pixel, const Vector& value) {
    storeLeFloat(pixel, static_cast<float>(value.x));
}

// Paints all faces; `store(pixel, value)` writes one pixel.
template <typename Store>
void paintFaces(const VemoMesh& tile, const std::vector<Vector>& values, TileMap& map,
                Store store) {
    const double side = map.size;
    const Canvas canvas{map.size, map.size};
    for (std::size_t i = 0; i < tile.faces.size(); ++i) {
        const Face& face = tile.faces[i];
        const FaceUvs& uvs = tile.uvs[i];
        if (!liesInTile(face, uvs)) continue;
        const auto cornerAt = [&](std::size_t corner) {
            return Corner<Vector>{uvs[corner].u * side, (1.0 - uvs[corner].v) * side,
                                  values[static_cast<std::size_t>(face.vertices[corner])]};
        };
        forEachTriangle(face, [&](const std::size_t(&corners)[3]) {
            rasterize(cornerAt(corners[0]), cornerAt(corners[1]), cornerAt(corners[2]), canvas,
                      [&](std::size_t pixel, const Vector& value) {
                          store(&map.pixels[pixel * map.pixelBytes], value);
                      });
        });
    }
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
