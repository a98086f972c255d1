#include "mesh/UVTiles.h"

#include <bitset>
#include <cmath>
#include <optional>
#include <unordered_set>
#include <utility>

#include "bytes/Numbers.h"
#include "bytes/Text.h"
#include "mesh/VemoOps.h"

namespace {

constexpr int kNumberedNames = 2;  // the naming mode of tile numbers

// Filled by setUVtilesOut, emptied by clearUVtilesOut; lives as long as the library is loaded.
TileFilter UVtilesOut;

std::uint64_t placeKey(std::int32_t u, std::int32_t v) {
    return std::uint64_t{static_cast<std::uint32_t>(u)} << 32 | static_cast<std::uint32_t>(v);
}

std::string placeName(const char* beforeU, std::int64_t u, const char* beforeV, std::int64_t v) {
    std::string name(beforeU);
    name += std::to_string(u);
    name += beforeV;
    name += std::to_string(v);
    return name;
}

}  // namespace

TilePlace placeOf(float coordinate) {
    const float moved = coordinate < 0.0f ? coordinate - 1.0f : coordinate;
    if (std::isnan(moved)) return {0, coordinate};

    const std::int32_t tile = saturatedInt(moved);
    // From 2^23 on a float has no fraction; an infinity has none either.
    const float whole = std::abs(moved) < 8388608.0f ? static_cast<float>(tile) : moved;
    const float fraction = std::isinf(moved) ? 0.0f : moved - whole;
    return {tile, fraction < 0.0f ? fraction + 1.0f : std::copysign(fraction, moved)};
}

std::string tileName(std::int32_t u, std::int32_t v, int mode) {
    const std::int64_t column = u;
    const std::int64_t row = v;
    switch (mode) {
        case 0:
            return placeName("_u", column, "_v", row);
        case 1:
            return placeName("_u", column + 1, "_v", row + 1);
        case kNumberedNames:
            return std::to_string(column + 10 * row + 1001);
        default:
            return placeName("u", column, "v", row);
    }
}

TilesFound findTiles(const VemoFile& vemo, const ChunkElements& faceUvs, int mode,
                     const TileFilter& filter) {
    const bool filtered = mode == kNumberedNames && !filter.isEmpty();
    const std::uint8_t* face = vemo.file.data.get() + faceUvs.offset;
    TilesFound found;
    std::unordered_set<std::uint64_t> seen;
    std::int32_t u = 0;
    std::int32_t v = 0;
    for (std::uint32_t i = 0; i < faceUvs.count; ++i, face += kFaceUvBytes) {
        const std::int32_t previousU = std::exchange(u, placeOf(loadLeFloat(face)).tile);
        const std::int32_t previousV = std::exchange(v, placeOf(loadLeFloat(face + 4)).tile);
        const bool sameAsBefore = i > 0 && u == previousU && v == previousV;
        if (sameAsBefore || !seen.insert(placeKey(u, v)).second) continue;
        std::string name = tileName(u, v, mode);
        if (!filtered || filter.contains(name)) found.tiles.insert({std::move(name), u, v});
    }
    if (faceUvs.count > 0) found.lastName = tileName(u, v, mode);
    return found;
}

const TileFilter& currentTileFilter() {
    return UVtilesOut;
}

float GetUVTile(const char* path, char* out, int mode) {
    const VemoFile vemo = loadVemo(path);
    if (!vemo.isOpen()) return vemo_status::kMeshNotOpened;
    const auto faceUvs =
        findElements(vemo, kFaceUvChunk, kFirstChunk, ZeroLength::kEndsSearch, kFaceUvBytes);
    if (!faceUvs) return vemo_status::kChunkMissing;

    const TilesFound found = findTiles(vemo, *faceUvs, mode, UVtilesOut);
    copyText(out, found.lastName);
    return static_cast<float>(found.tiles.size());
}

float GetUVGroup(const char* path) {
    const VemoFile vemo = loadVemo(path);
    if (!vemo.isOpen()) return vemo_status::kMeshNotOpened;
    const auto groups =
        findElements(vemo, kFaceGroupChunk, kFirstChunk, ZeroLength::kCountsAs16, kFaceGroupBytes);
    if (!groups) return vemo_status::kChunkMissing;

    const std::uint8_t* group = vemo.file.data.get() + groups->offset;
    std::bitset<65536> ids;
    for (std::uint32_t i = 0; i < groups->count; ++i, group += kFaceGroupBytes)
        ids.set(loadLe16(group));
    return static_cast<float>(ids.count());
}

float setUVtilesOut(const char* path) {
    UVtilesOut.clear();
    const FileBytes file = loadFile(path);
    if (file.data == nullptr) return vemo_status::kFilterNotOpened;
    TileFilter filter;  // whole or none: half a filter would drop tiles silently
    filter.add({reinterpret_cast<const char*>(file.data.get()), file.size});
    UVtilesOut = std::move(filter);
    return vemo_status::kOk;
}

void clearUVtilesOut() {
    UVtilesOut.clear();
}
