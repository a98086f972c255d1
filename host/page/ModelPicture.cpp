#include "page/ModelPicture.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <limits>

#include "mesh/Extent.h"
#include "mesh/MeshGeometry.h"
#include "render/Raster.h"

namespace {

constexpr Rgb kBackdrop{27, 31, 38};  // of the pictures, in light and in dark

// The view: turned about y, then tilted down, in radians.
constexpr double kTurn = -0.62;
constexpr double kTilt = 0.42;
constexpr double kMargin = 0.06;  // of the picture's sides

constexpr Vector kLight{-0.436, 0.726, 0.532};  // its direction in view, z towards the eye

double dot(const Vector& a, const Vector& b) {
    return a.x * b.x + a.y * b.y + a.z * b.z;
}

Vector inView(const Vector& point) {
    const double x = point.x * std::cos(kTurn) - point.z * std::sin(kTurn);
    const double depth = point.x * std::sin(kTurn) + point.z * std::cos(kTurn);
    return {x, point.y * std::cos(kTilt) - depth * std::sin(kTilt),
            point.y * std::sin(kTilt) + depth * std::cos(kTilt)};
}

// What is visible of a model at a pixel.
struct Surface {
    Vector normal;
    double nearness;

    Surface operator+(const Surface& b) const { return {normal + b.normal, nearness + b.nearness}; }
    Surface operator*(double factor) const { return {normal * factor, nearness * factor}; }
};

// Points of the model as corners on the canvas, as large as it takes.
std::vector<Corner<Surface>> cornersOn(const Canvas& canvas, const VemoMesh& mesh) {
    const std::vector<Vector> normals = vertexNormals(mesh);
    std::vector<Corner<Surface>> corners;
    corners.reserve(mesh.points.size());
    Extent x;
    Extent y;
    for (std::size_t i = 0; i < mesh.points.size(); ++i) {
        const Point& point = mesh.points[i];
        const Vector place = inView({point.x, point.y, point.z});
        if (std::isfinite(place.x) && std::isfinite(place.y)) {
            x.take(place.x);
            y.take(place.y);
        }
        corners.push_back({place.x, place.y, {inView(normals[i]), place.z}});
    }
    const double room = 1.0 - 2.0 * kMargin;
    const double scale = room * std::min(canvas.width / x.size(), canvas.height / y.size());
    for (Corner<Surface>& corner : corners) {
        corner.x = canvas.width * 0.5 + (corner.x - (x.low + x.high) * 0.5) * scale;
        corner.y = canvas.height * 0.5 - (corner.y - (y.low + y.high) * 0.5) * scale;
    }
    return corners;
}

// Four pixels for each of the picture, for smooth outlines.
Picture backdrop(std::uint32_t width, std::uint32_t height) {
    Picture picture(2 * width, 2 * height);
    for (std::size_t pixel = 0; 3 * pixel < picture.pixels.size(); ++pixel)
        picture.set(pixel, kBackdrop);
    return picture;
}

// A colour between two, of which `share`, 0 to 1, is `b`.
Rgb mixed(const Rgb& a, const Rgb& b, double share) {
    Rgb colour{};
    for (std::size_t channel = 0; channel < colour.size(); ++channel)
        colour[channel] = rounded<std::uint8_t>(a[channel] + (b[channel] - a[channel]) * share);
    return colour;
}

// Surfaces are seen from both sides; a NaN normal is drawn black.
Rgb shaded(const Rgb& colour, const Vector& smooth) {
    Vector normal = normalized(smooth);
    if (normal.z < 0.0) normal = normal * -1.0;
    const double lit = std::max(0.0, dot(normal, kLight));
    const double edge = std::pow(1.0 - normal.z, 3.0);
    constexpr Rgb kBlack{0, 0, 0};
    constexpr Rgb kWhite{255, 255, 255};
    const Rgb plain = mixed(kBlack, colour, 0.28 + 0.72 * lit);
    return mixed(plain, kWhite, 0.12 * std::pow(lit, 12.0) + 0.15 * edge);
}

double lengthOf(const Corner<Vector>& a, const Corner<Vector>& b) {
    return std::hypot(a.x - b.x, a.y - b.y);
}

// Whether two corners of a face are neighbours; the line between two triangles of a quad is no side.
bool isSide(const Face& face, std::size_t a, std::size_t b) {
    const std::size_t apart = a < b ? b - a : a - b;
    return apart == 1 || apart == face.corners() - 1;
}

// A triangle's corners with their distances from its three sides in pixels, each from the side
// opposite the corner at its position. Interpolation then gives any point's distances.
std::array<Corner<Vector>, 3> outlinedCorners(const Face& face, const FaceUvs& uvs,
                                              const Triangle& triangle, double side) {
    constexpr double kNever = 1e9;
    std::array<Corner<Vector>, 3> corners{};
    for (std::size_t i = 0; i < 3; ++i) {
        const Uv& uv = uvs[triangle[i]];
        corners[i] = {uv.u * side, (1.0 - uv.v) * side, {}};
    }
    const double twiceArea = std::abs(Edge(corners[0], corners[1]).at(corners[2].x, corners[2].y));
    constexpr double Vector::*kDistances[] = {&Vector::x, &Vector::y, &Vector::z};
    for (std::size_t i = 0; i < 3; ++i) {
        const std::size_t from = (i + 1) % 3;
        const std::size_t to = (i + 2) % 3;
        if (isSide(face, triangle[from], triangle[to])) {
            corners[i].value.*kDistances[i] = twiceArea / lengthOf(corners[from], corners[to]);
            continue;
        }
        for (Corner<Vector>& corner : corners)
            corner.value.*kDistances[i] = kNever;
    }
    return corners;
}

}  // namespace

Rgb tileColour(std::size_t position) {
    const double hue = std::fmod(static_cast<double>(position) * 0.618034 + 0.58, 1.0);
    Rgb colour{};
    for (std::size_t channel = 0; channel < colour.size(); ++channel) {
        const double turn = std::fmod(hue + static_cast<double>(channel) / 3.0, 1.0);
        const double strength = std::clamp(std::abs(turn * 6.0 - 3.0) - 1.0, 0.0, 1.0);
        colour[channel] = static_cast<std::uint8_t>(95.0 + 140.0 * strength);
    }
    return colour;
}

std::string cssOf(const Rgb& colour) {
    std::array<char, 8> text{};
    std::snprintf(text.data(), text.size(), "#%02x%02x%02x", colour[0], colour[1], colour[2]);
    return text.data();
}

void colourFaces(std::vector<Rgb>& colours, const VemoMesh& tile, const Rgb& colour) {
    const std::size_t faces = std::min(colours.size(), tile.faces.size());
    for (std::size_t face = 0; face < faces; ++face) {
        if (isInTile(tile, face)) colours[face] = colour;
    }
}

Picture pictureOfModel(const VemoMesh& mesh, const std::vector<Rgb>& colours, std::uint32_t width,
                       std::uint32_t height) {
    Picture picture = backdrop(width, height);
    const Canvas canvas{picture.width, picture.height};
    const std::vector<Corner<Surface>> corners = cornersOn(canvas, mesh);
    std::vector<double> nearest(picture.pixels.size() / 3,
                                -std::numeric_limits<double>::infinity());
    forEachTriangle(mesh, [&](std::size_t face, const Triangle& triangle) {
        const auto cornerAt = [&](std::size_t i) -> const Corner<Surface>& {
            return corners[mesh.faces[face].vertex(triangle[i])];
        };
        rasterize(cornerAt(0), cornerAt(1), cornerAt(2), canvas,
                  [&](std::size_t pixel, const Surface& surface) {
                      if (!(surface.nearness > nearest[pixel])) return;
                      nearest[pixel] = surface.nearness;
                      picture.set(pixel, shaded(colours[face], surface.normal));
                  });
    });
    return halved(picture);
}

Picture pictureOfLayout(const VemoMesh& tile, const Rgb& colour, std::uint32_t side) {
    Picture picture = backdrop(side, side);
    const Canvas canvas{picture.width, picture.height};
    const Rgb inside = mixed(kBackdrop, colour, 0.35);
    forEachTriangle(tile, [&](std::size_t face, const Triangle& triangle) {
        if (!isInTile(tile, face)) return;
        const auto [a, b, c] =
            outlinedCorners(tile.faces[face], tile.uvs[face], triangle, picture.width);
        rasterize(a, b, c, canvas, [&](std::size_t pixel, const Vector& distance) {
            const double nearest = std::min({distance.x, distance.y, distance.z});
            picture.set(pixel, mixed(colour, inside, std::clamp(nearest, 1.0, 2.0) - 1.0));
        });
    });
    return halved(picture);
}
