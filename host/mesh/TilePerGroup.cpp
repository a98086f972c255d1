#include "mesh/TilePerGroup.h"

#include <algorithm>
#include <cmath>

#include "mesh/Extent.h"

namespace {

constexpr std::size_t kTilesPerRow = 10;

// A coordinate of exactly 1 belongs to the next tile, so a layout ends this far below.
constexpr double kLast = 1.0 - 1.0 / 65536.0;

struct GroupExtent {
    Extent u;
    Extent v;
};

// How a group is moved into the unit square: coordinate = (coordinate - start) * scale.
struct Fit {
    double startU;
    double startV;
    double scale;
};

Fit fitOf(const GroupExtent& extent) {
    if (extent.u.liesInOneTile() && extent.v.liesInOneTile())
        return {extent.u.start(), extent.v.start(), 1.0};
    const double size = std::max(extent.u.size(), extent.v.size());
    return {extent.u.low, extent.v.low, std::min(1.0, kLast / size)};
}

// The sum may round up to the next tile where floats are further apart.
float inTile(double local, std::size_t tile) {
    const auto start = static_cast<float>(tile);
    const float moved = static_cast<float>(static_cast<double>(tile) + std::min(local, kLast));
    return std::min(moved, std::nextafter(start + 1.0f, 0.0f));
}

std::vector<GroupExtent> extentsOf(const ObjModel& model) {
    std::vector<GroupExtent> extents(model.groupNames.size());
    for (std::size_t face = 0; face < model.mesh.faces.size(); ++face) {
        GroupExtent& extent = extents[static_cast<std::size_t>(model.mesh.groups[face])];
        for (const Uv& uv : model.mesh.uvs[face]) {
            extent.u.take(uv.u);
            extent.v.take(uv.v);
        }
    }
    return extents;
}

}  // namespace

void moveGroupsToTiles(ObjModel& model) {
    const std::vector<GroupExtent> extents = extentsOf(model);
    for (std::size_t face = 0; face < model.mesh.faces.size(); ++face) {
        const auto group = static_cast<std::size_t>(model.mesh.groups[face]);
        const Fit fit = fitOf(extents[group]);
        for (Uv& uv : model.mesh.uvs[face]) {
            uv.u = inTile((uv.u - fit.startU) * fit.scale, group % kTilesPerRow);
            uv.v = inTile((uv.v - fit.startV) * fit.scale, group / kTilesPerRow);
        }
    }
}
