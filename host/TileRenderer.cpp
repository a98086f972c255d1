#include "TileRenderer.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "bytes/Bytes.h"

namespace {

struct Vector {
    double x = 0.0, y = 0.0, z = 0.0;

    Vector operator+(const Vector& b) const { return {x + b.x, y + b.y, z + b.z}; }
    Vector operator-(const Vector& b) const { return {x - b.x, y - b.y, z - b.z}; }
    Vector operator*(double factor) const { return {x * factor, y * factor, z * factor}; }
};

Vector cross(const Vector& a, const Vector& b) {
    return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}

Vector normalized(const Vector& a) {
    const double length = std::sqrt(a.x * a.x + a.y * a.y + a.z * a.z);
    return length > 0.0 ? a * (1.0 / length) : Vector{};
}

constexpr std::size_t kTriangles[2][3] = {{0, 1, 2}, {0, 2, 3}};

// Calls `use` with the corners of each triangle of a face.
template <typename Use>
void forEachTriangle(const Face& face, Use use) {
    for (std::size_t i = 0; i + 3 <= face.corners(); ++i)
        use(kTriangles[i]);
}

Vector pointOf(const VemoMesh& mesh, const Face& face, std::size_t corner) {
    const Point& point = mesh.points[static_cast<std::size_t>(face.vertices[corner])];
    return {point.x, point.y, point.z};
}

// A cross product is as long as twice the triangle's area, so a plain sum weighs by area.
std::vector<Vector> vertexNormals(const VemoMesh& mesh) {
    std::vector<Vector> normals(mesh.points.size());
    for (const Face& face : mesh.faces) {
        forEachTriangle(face, [&](const std::size_t(&corners)[3]) {
            const Vector start = pointOf(mesh, face, corners[0]);
            const Vector normal = cross(pointOf(mesh, face, corners[1]) - start,
                                        pointOf(mesh, face, corners[2]) - start);
            for (const std::size_t corner : corners) {
                Vector& sum = normals[static_cast<std::size_t>(face.vertices[corner])];
                sum = sum + normal;
            }
        });
    }
    for (Vector& normal : normals)
        normal = normalized(normal);
    return normals;
}

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

// A corner on the map, in pixels from its upper left, with what is interpolated between corners.
struct Corner {
    double x;
    double y;
    Vector value;
};

// How far a point lies to one side of the line from a to b, as a linear function of the point.
struct Edge {
    double perX;
    double perY;
    double constant;

    Edge(const Corner& a, const Corner& b)
        : perX(a.y - b.y), perY(b.x - a.x), constant(a.x * b.y - b.x * a.y) {}
    double at(double x, double y) const { return perX * x + perY * y + constant; }
};

struct Range {
    std::uint32_t first;
    std::uint32_t end;
};

// The pixels whose centres may lie between the smallest and the largest of three coordinates.
Range pixelsBetween(double a, double b, double c, std::uint32_t size) {
    const double last = size;
    const double low = std::clamp(std::floor(std::min({a, b, c})), 0.0, last);
    const double high = std::clamp(std::ceil(std::max({a, b, c})), 0.0, last);
    return {static_cast<std::uint32_t>(low), static_cast<std::uint32_t>(high)};
}

// Calls `paint(pixel, value)` for each pixel whose centre the triangle covers, in whichever sense
// its corners run. Its sides count as covered, and a side seen from the other triangle is the exact
// negative, so that triangles with a common side leave no gap.
template <typename Paint>
void rasterize(const Corner& a, const Corner& second, const Corner& third, std::uint32_t size,
               Paint paint) {
    const double area = Edge(a, second).at(third.x, third.y);
    if (!std::isfinite(area) || area == 0.0) return;
    const Corner& b = area > 0.0 ? second : third;
    const Corner& c = area > 0.0 ? third : second;

    const Edge towardA(b, c);
    const Edge towardB(c, a);
    const Edge towardC(a, b);
    const Range columns = pixelsBetween(a.x, b.x, c.x, size);
    const Range rows = pixelsBetween(a.y, b.y, c.y, size);
    for (std::uint32_t row = rows.first; row < rows.end; ++row) {
        for (std::uint32_t column = columns.first; column < columns.end; ++column) {
            const double x = column + 0.5;
            const double y = row + 0.5;
            const double shareA = towardA.at(x, y);
            const double shareB = towardB.at(x, y);
            const double shareC = towardC.at(x, y);
            if (shareA < 0.0 || shareB < 0.0 || shareC < 0.0) continue;
            // The area, as this point sees it: in a sliver rounding makes the two differ.
            const double shares = shareA + shareB + shareC;
            if (!(shares > 0.0)) continue;
            const Vector sum = a.value * shareA + b.value * shareB + c.value * shareC;
            paint(std::size_t{row} * size + column, sum * (1.0 / shares));
        }
    }
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

bool liesInTile(const Face& face, const FaceUvs& uvs) {
    return std::all_of(uvs.begin(), uvs.begin() + static_cast<std::ptrdiff_t>(face.corners()),
                       isInTile);
}

// Paints all faces; `store(pixel, value)` writes one pixel.
template <typename Store>
void paintFaces(const VemoMesh& tile, const std::vector<Vector>& values, TileMap& map,
                Store store) {
    const double side = map.size;
    for (std::size_t i = 0; i < tile.faces.size(); ++i) {
        const Face& face = tile.faces[i];
        const FaceUvs& uvs = tile.uvs[i];
        if (!liesInTile(face, uvs)) continue;
        const auto cornerAt = [&](std::size_t corner) {
            return Corner{uvs[corner].u * side, (1.0 - uvs[corner].v) * side,
                          values[static_cast<std::size_t>(face.vertices[corner])]};
        };
        forEachTriangle(face, [&](const std::size_t(&corners)[3]) {
            rasterize(cornerAt(corners[0]), cornerAt(corners[1]), cornerAt(corners[2]), map.size,
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
