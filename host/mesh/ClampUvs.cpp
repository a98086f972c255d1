#include "mesh/ClampUvs.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "mesh/Extent.h"

namespace {

// From here on neighbouring floats are half a tile apart.
constexpr double kFarthest = 4194304.0;

bool isInOneTile(const Extent& extent) {
    return extent.liesInOneTile() && std::abs(extent.start()) < kFarthest;
}

// The lowest and the highest coordinate in the tile from `start` to `start` + 1. Below 0 they are
// those of which the library, which first moves them down by 1 and rounds, finds the right place.
std::pair<float, float> innerBorders(double start) {
    const auto border = static_cast<float>(start);
    if (border >= 0.0f) return {border, std::nextafter(border + 1.0f, border)};
    return {std::nextafter(border - 1.0f, border) + 1.0f,
            std::nextafter(border, border - 1.0f) + 1.0f};
}

}  // namespace

FaceUvs clampedUvs(const Face& face, const FaceUvs& uvs) {
    Extent u;
    Extent v;
    for (std::size_t i = 0; i < face.corners(); ++i) {
        u.take(uvs[i].u);
        v.take(uvs[i].v);
    }
    if (!isInOneTile(u) || !isInOneTile(v)) return uvs;
    const auto [lowU, highU] = innerBorders(u.start());
    const auto [lowV, highV] = innerBorders(v.start());
    FaceUvs clamped = uvs;
    for (Uv& corner : clamped)
        corner = {std::clamp(corner.u, lowU, highU), std::clamp(corner.v, lowV, highV)};
    return clamped;
}

std::size_t clampUvs(VemoMesh& mesh) {
    std::size_t moved = 0;
    for (std::size_t i = 0; i < mesh.faces.size(); ++i) {
        const FaceUvs before = std::exchange(mesh.uvs[i], clampedUvs(mesh.faces[i], mesh.uvs[i]));
        for (std::size_t corner = 0; corner < mesh.faces[i].corners(); ++corner)
            moved += before[corner] != mesh.uvs[i][corner];
    }
    return moved;
}
