#include "mesh/UVTiles.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <utility>

#include "bytes/Bytes.h"
#include "bytes/Numbers.h"
#include "bytes/Text.h"
#include "mesh/VemoOps.h"
#include "pixels/Lanes.h"

namespace {

constexpr int kNumberedNames = 2;  // the naming mode of tile numbers

constexpr std::int32_t kFirstWholeFloat = 1 << 23;  // from here on a float has no fraction

// Filled by setUVtilesOut, emptied by clearUVtilesOut; lives as long as the library is loaded.
TileFilter UVtilesOut;

constexpr std::size_t kFacesAtOnce = 8;

// The first corners of two faces: u, v, u, v.
Lanes<float> firstCorners(const std::uint8_t* face) {
    const Lanes<std::uint64_t> pairs{loadLe64(face), loadLe64(face + kFaceUvBytes)};
    Lanes<float> corners;
    std::memcpy(&corners, &pairs, sizeof corners);
    return corners;
}

// How many faces, from the first on, have their first corner within the borders: whole blocks of
// kFacesAtOnce.
std::size_t facesInBlocks(const TileBorders& u, const TileBorders& v, const std::uint8_t* faces,
                          std::size_t count) {
    const Lanes<float> low{u.low, v.low, u.low, v.low};
    const Lanes<float> high{u.high, v.high, u.high, v.high};
    std::size_t i = 0;
    for (; i + kFacesAtOnce <= count; i += kFacesAtOnce) {
        Lanes<std::int32_t> within = ~Lanes<std::int32_t>{};
        for (std::size_t pair = 0; pair < kFacesAtOnce; pair += 2) {
            const Lanes<float> corners = firstCorners(faces + (i + pair) * kFaceUvBytes);
            within &= (corners >= low) & (corners < high);
        }
        if (!everyBitIs<std::int32_t>(~std::uint64_t{0}, within)) break;
    }
    return i;
}

// The same to the last face.
std::size_t facesWithin(const TileBorders& u, const TileBorders& v, const std::uint8_t* faces,
                        std::size_t count) {
    std::size_t i = facesInBlocks(u, v, faces, count);
    while (i < count && u.hold(loadLeFloat(faces + i * kFaceUvBytes)) &&
           v.hold(loadLeFloat(faces + i * kFaceUvBytes + 4)))
        ++i;
    return i;
}

// Which group ids occur, taken as unsigned.
using GroupIds = std::array<bool, 65536>;

constexpr std::size_t kIdsAtOnce = 32;

// Whether kIdsAtOnce ids are all that one.
bool areAll(std::uint16_t id, const std::uint8_t* ids) {
    const Lanes<std::uint16_t> wanted = Lanes<std::uint16_t>{} + id;
    Lanes<std::uint16_t> differing{};
    for (std::size_t at = 0; at < kIdsAtOnce * kFaceGroupBytes; at += kLanesBytes)
        differing |= loadLanes<std::uint16_t>(ids + at) ^ wanted;
    return everyBitIs<std::uint16_t>(0, differing);
}

// Meshes keep the faces of a group together, so that most blocks need no more than a comparison.
void addIds(GroupIds& met, const std::uint8_t* ids, std::size_t count) {
    std::uint16_t last = 0;
    const auto addOne = [&](std::size_t i) {
        last = loadLe16(ids + i * kFaceGroupBytes);
        met[last] = true;
    };
    std::size_t i = 0;
    for (; i + kIdsAtOnce <= count; i += kIdsAtOnce) {
        if (met[last] && areAll(last, ids + i * kFaceGroupBytes)) continue;
        for (std::size_t k = 0; k < kIdsAtOnce; ++k)
            addOne(i + k);
    }
    for (; i < count; ++i)
        addOne(i);
}

std::string placeName(const char* beforeU, std::int64_t u, const char* beforeV, std::int64_t v) {
    std::string name(beforeU);
    name += std::to_string(u);
    name += beforeV;
    name += std::to_string(v);
    return name;
}

}  // namespace

TileBorders::TileBorders(std::int32_t tile) {
    if (tile < 0 || tile >= kFirstWholeFloat) return;
    low = static_cast<float>(tile);
    high = low + 1.0f;
}

TilePlace placeOf(float coordinate) {
    const float moved = coordinate < 0.0f ? coordinate - 1.0f : coordinate;
    if (std::isnan(moved)) return {0, coordinate};

    const std::int32_t tile = saturatedInt(moved);
    const bool hasFraction = std::abs(moved) < static_cast<float>(kFirstWholeFloat);
    const float whole = hasFraction ? static_cast<float>(tile) : moved;
    const float fraction = std::isinf(moved) ? 0.0f : moved - whole;
    return {tile, fraction < 0.0f ? fraction + 1.0f : std::copysign(fraction, moved)};
}

TileAt tileAt(const std::uint8_t* corner) {
    return {placeOf(loadLeFloat(corner)).tile, placeOf(loadLeFloat(corner + 4)).tile};
}

std::size_t facesInTile(TileAt tile, const std::uint8_t* faces, std::size_t count) {
    return 1 +
           facesWithin(TileBorders(tile.u), TileBorders(tile.v), faces + kFaceUvBytes, count - 1);
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

TileFinder::TileFinder(int mode, const TileFilter& filter)
    : mode_(mode), filter_(mode == kNumberedNames && !filter.isEmpty() ? &filter : nullptr) {}

void TileFinder::add(const std::uint8_t* faces, std::size_t count) {
    for (std::size_t i = 0; i < count;) {
        const std::uint8_t* face = faces + i * kFaceUvBytes;
        const TileAt tile = tileAt(face);
        addTile(tile);
        i += facesInTile(tile, face, count - i);
    }
}

void TileFinder::addTile(TileAt tile) {
    last_ = tile;
    if (!isNew(tile)) return;
    std::string name = tileName(tile.u, tile.v, mode_);
    if (filter_ == nullptr || filter_->contains(name))
        tiles_.insert({std::move(name), tile.u, tile.v});
}

bool TileFinder::isNew(TileAt tile) {
    const std::uint64_t column = static_cast<std::uint32_t>(tile.u);
    const std::uint64_t row = static_cast<std::uint32_t>(tile.v);
    if (column >= 64 || row >= near_.size()) return far_.insert(row << 32 | column).second;
    const std::uint64_t before = near_[row];
    near_[row] |= std::uint64_t{1} << column;
    return near_[row] != before;
}

TilesFound TileFinder::found() && {
    std::string last = last_ ? tileName(last_->u, last_->v, mode_) : std::string();
    return {std::move(tiles_), std::move(last)};
}

TileFinder tileFinder(int mode) {
    return {mode, UVtilesOut};
}

std::optional<TilesFound> findTiles(VemoFile& vemo, const ChunkElements& faceUvs, int mode) {
    TileFinder finder = tileFinder(mode);
    const auto add = [&](const std::uint8_t* faces, std::size_t count) {
        finder.add(faces, count);
    };
    if (!vemo.forEachElement(faceUvs, kFaceUvBytes, add)) return {};
    return std::move(finder).found();
}

float GetUVTile(const char* path, char* out, int mode) {
    VemoFile vemo(path);
    if (!vemo.isGood()) return vemo_status::kMeshNotOpened;
    const auto faceUvs = vemo.findElements(kFaceUvChunk, ZeroLength::kEndsSearch, kFaceUvBytes);
    if (!faceUvs) return whyMissing(vemo, vemo_status::kMeshNotOpened);

    const auto found = findTiles(vemo, *faceUvs, mode);
    if (!found) return vemo_status::kMeshNotOpened;
    copyText(out, found->lastName);
    return static_cast<float>(found->tiles.size());
}

float GetUVGroup(const char* path) {
    VemoFile vemo(path);
    if (!vemo.isGood()) return vemo_status::kMeshNotOpened;
    const auto groups =
        vemo.findElements(kFaceGroupChunk, ZeroLength::kCountsAs16, kFaceGroupBytes);
    if (!groups) return whyMissing(vemo, vemo_status::kMeshNotOpened);

    GroupIds met{};
    const auto add = [&](const std::uint8_t* ids, std::size_t count) { addIds(met, ids, count); };
    if (!vemo.forEachElement(*groups, kFaceGroupBytes, add)) return vemo_status::kMeshNotOpened;
    return static_cast<float>(std::count(met.begin(), met.end(), true));
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
