#include "mesh/TileList.h"

#include <algorithm>
#include <tuple>
#include <utility>

#include "bytes/Numbers.h"
#include "mesh/ClampUvs.h"

namespace {

using Place = std::pair<std::int32_t, std::int32_t>;  // column, row

Place placeOf(const Uv& corner) {
    return {tileOf(corner.u), tileOf(corner.v)};
}

bool crosses(const Face& face, const FaceUvs& uvs) {
    const auto isElsewhere = [&](const Uv& corner) { return placeOf(corner) != placeOf(uvs[0]); };
    return std::any_of(uvs.begin(), uvs.begin() + static_cast<std::ptrdiff_t>(face.corners()),
                       isElsewhere);
}

FaceInGroup faceInGroup(const VemoMesh& mesh, std::size_t face) {
    if (mesh.groups.empty()) return {face, std::nullopt};
    return {face, mesh.groups[face]};
}

void addCrossing(const VemoMesh& mesh, std::size_t face, CrossingFaces& crossing) {
    if (crossing.count++ < CrossingFaces::kNamed) crossing.first.push_back(faceInGroup(mesh, face));
    const FaceUvs clamped = clampedUvs(mesh.faces[face], mesh.uvs[face]);
    if (!crosses(mesh.faces[face], clamped)) ++crossing.touching;
}

void addFace(const VemoMesh& mesh, std::size_t face, UvTile& tile) {
    ++tile.faces;
    if (!mesh.groups.empty()) ++tile.groups[mesh.groups[face]];
    for (std::size_t i = 0; i < mesh.faces[face].corners(); ++i) {
        tile.u.take(mesh.uvs[face][i].u);
        tile.v.take(mesh.uvs[face][i].v);
    }
    if (crosses(mesh.faces[face], mesh.uvs[face])) addCrossing(mesh, face, tile.crossing);
}

std::string placeName(const char* beforeColumn, std::int64_t column, const char* beforeRow,
                      std::int64_t row) {
    return beforeColumn + std::to_string(column) + beforeRow + std::to_string(row);
}

}  // namespace

std::int32_t tileOf(float coordinate) {
    return saturatedInt(coordinate < 0.0f ? coordinate - 1.0f : coordinate);
}

std::vector<UvTile> tilesOf(const VemoMesh& mesh, int naming) {
    std::vector<UvTile> tiles;
    std::map<Place, std::size_t> indices;
    for (std::size_t face = 0; face < mesh.faces.size(); ++face) {
        const Place place = placeOf(mesh.uvs[face][0]);
        const auto [entry, isNew] = indices.try_emplace(place, tiles.size());
        if (isNew) tiles.emplace_back();
        UvTile& tile = tiles[entry->second];
        std::tie(tile.column, tile.row) = place;
        addFace(mesh, face, tile);
    }
    std::ranges::stable_sort(tiles, {}, [&](const UvTile& tile) { return nameOf(tile, naming); });
    return tiles;
}

std::string nameOf(const UvTile& tile, int naming) {
    const std::int64_t column = tile.column;
    const std::int64_t row = tile.row;
    switch (naming) {
        case 0:
            return placeName("_u", column, "_v", row);
        case 1:
            return placeName("_u", column + 1, "_v", row + 1);
        case kNumberNaming:
            return std::to_string(1001 + column + 10 * row);
        default:
            return placeName("u", column, "v", row);
    }
}

std::vector<SharedName> collisions(const std::vector<UvTile>& tiles, int naming) {
    std::vector<SharedName> names;
    for (const UvTile& tile : tiles) {
        std::string name = nameOf(tile, naming);
        if (names.empty() || names.back().name != name) names.push_back({std::move(name), {}});
        names.back().tiles.push_back(tile);
    }
    std::erase_if(names, [](const SharedName& shared) { return shared.tiles.size() == 1; });
    return names;
}

CrossingFaces crossingFaces(const std::vector<UvTile>& tiles) {
    CrossingFaces all;
    for (const UvTile& tile : tiles) {
        all.count += tile.crossing.count;
        all.touching += tile.crossing.touching;
        all.first.insert(all.first.end(), tile.crossing.first.begin(), tile.crossing.first.end());
    }
    std::ranges::sort(all.first, {}, &FaceInGroup::face);
    all.first.resize(std::min(all.first.size(), CrossingFaces::kNamed));
    return all;
}

std::string groupsText(const FacesByGroup& groups) {
    constexpr std::size_t kShown = 8;
    std::string text;
    std::size_t shown = 0;
    for (const auto& [group, faces] : groups) {
        if (shown == kShown)
            return text + " and " + std::to_string(groups.size() - kShown) + " more";
        if (shown++ > 0) text += ' ';
        text += std::to_string(group);
    }
    return text;
}

std::string groupText(std::int16_t group, const std::vector<std::string>& names) {
    const auto index = static_cast<std::size_t>(group);
    return group >= 0 && index < names.size() ? names[index] : std::to_string(group);
}

std::string textOf(const CrossingFaces& faces, const std::vector<std::string>& groupNames) {
    std::string text;
    for (const FaceInGroup& face : faces.first) {
        text += (text.empty() ? "face " : ", face ") + std::to_string(face.face);
        if (face.group) text += " (group " + groupText(*face.group, groupNames) + ")";
    }
    const std::size_t more = faces.count - faces.first.size();
    return more == 0 ? text : text + " and " + std::to_string(more) + " more";
}
