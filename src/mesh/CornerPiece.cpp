#include "mesh/CornerPiece.h"

#include <algorithm>
#include <bit>
#include <utility>

#include "bytes/Bytes.h"
#include "pixels/Lanes.h"

namespace {

// A piece is written as it is in memory.
static_assert(std::endian::native == std::endian::little);

constexpr std::uint32_t kOneBits = std::bit_cast<std::uint32_t>(1.0f);

// The UVs of a corner that lies in another tile.
constexpr std::uint32_t kOutsideBits = std::bit_cast<std::uint32_t>(-1.0f);

constexpr std::uint32_t kSignBit = 0x80000000u;

// Up to 2^22 a coordinate moves by 1 and stays well within the integers. As bits, without the sign,
// so that a NaN is beyond it.
constexpr std::uint32_t kFarthest = std::bit_cast<std::uint32_t>(4194304.0f);

bool allNear(const std::uint8_t* coordinates, std::size_t count) {
    std::uint32_t beyond = 0;
    for (std::size_t i = 0; i < count; ++i)
        beyond |= kFarthest - (loadLe32(coordinates + 4 * i) & ~kSignBit);
    return (beyond & kSignBit) == 0;
}

// All bits set if `condition` holds: a mask to select with, without a branch.
std::uint32_t maskOf(bool condition) {
    return 0u - static_cast<std::uint32_t>(condition);
}

float oneIf(bool condition) {
    return std::bit_cast<float>(maskOf(condition) & kOneBits);
}

// placeOf for coordinates that are near, without a branch. On an exact border the coordinate's sign
// stays, as that of the zero.
void splitNear(const std::uint8_t* coordinates, std::size_t count, std::int32_t* tiles,
               std::uint32_t* locals) {
    for (std::size_t i = 0; i < count; ++i) {
        const float coordinate = loadLeFloat(coordinates + 4 * i);
        const float moved = coordinate - oneIf(coordinate < 0.0f);
        const auto tile = static_cast<std::int32_t>(moved);
        const float fraction = moved - static_cast<float>(tile);
        const float local = fraction + oneIf(fraction < 0.0f);
        const std::uint32_t borderSign =
            maskOf(fraction == 0.0f) & std::bit_cast<std::uint32_t>(moved) & kSignBit;
        tiles[i] = tile;
        locals[i] = std::bit_cast<std::uint32_t>(local) | borderSign;
    }
}

void splitAny(const std::uint8_t* coordinates, std::size_t count, std::int32_t* tiles,
              std::uint32_t* locals) {
    for (std::size_t i = 0; i < count; ++i) {
        const TilePlace place = placeOf(loadLeFloat(coordinates + 4 * i));
        tiles[i] = place.tile;
        locals[i] = std::bit_cast<std::uint32_t>(place.local);
    }
}

// The same for corners that all lie surely in one tile, in fewer steps: meshes keep the faces of a
// tile together. False when they do not, or do not fill whole lanes.
bool splitWithin(TileAt tile, const std::uint8_t* corners, std::size_t count,
                 std::uint8_t* locals) {
    if (count % kLanes<std::uint64_t> != 0) return false;
    const TileBorders u(tile.u);
    const TileBorders v(tile.v);
    const Lanes<float> low{u.low, v.low, u.low, v.low};
    const Lanes<float> high{u.high, v.high, u.high, v.high};
    Lanes<std::int32_t> within = ~Lanes<std::int32_t>{};
    for (std::size_t at = 0; at < count * kCornerBytes; at += kLanesBytes) {
        const auto coordinates = loadLanes<float>(corners + at);
        within &= (coordinates >= low) & (coordinates < high);
        storeLanes<float>(locals + at, coordinates - low);
    }
    return everyBitIs<std::int32_t>(~std::uint64_t{0}, within);
}

// The corners that lie in the tile keep their places; the others show that they are outside.
void selectCorners(const std::int32_t* tiles, TileAt tile, const std::uint32_t* locals,
                   std::uint32_t* out, std::size_t corners) {
    for (std::size_t i = 0; i < 2 * corners; i += 2) {
        const std::uint32_t inside = maskOf(tiles[i] == tile.u) & maskOf(tiles[i + 1] == tile.v);
        out[i] = (locals[i] & inside) | (kOutsideBits & ~inside);
        out[i + 1] = (locals[i + 1] & inside) | (kOutsideBits & ~inside);
    }
}

}  // namespace

void CornerPiece::split(const std::uint8_t* corners, std::size_t count, std::uint64_t offset) {
    count_ = count;
    locals_.moveFor(offset);
    seen_.moveFor(offset);
    if (outside_.moveFor(offset)) std::fill_n(outside_.data, 2 * kPieceCorners, kOutsideBits);

    lowest_ = highest_ = tileAt(corners);
    if (tileAt(corners + (count - 1) * kCornerBytes) == lowest_ &&
        splitWithin(lowest_, corners, count, locals_.bytes()))
        return;
    const auto splitAll = allNear(corners, 2 * count) ? splitNear : splitAny;
    splitAll(corners, 2 * count, tiles_.data(), locals_.data);
    for (std::size_t i = 0; i < 2 * count; i += 2) {
        lowest_ = {std::min(lowest_.u, tiles_[i]), std::min(lowest_.v, tiles_[i + 1])};
        highest_ = {std::max(highest_.u, tiles_[i]), std::max(highest_.v, tiles_[i + 1])};
    }
}

const std::uint8_t* CornerPiece::seenFrom(TileAt tile) {
    const bool mayBeInside =
        tile.u >= lowest_.u && tile.u <= highest_.u && tile.v >= lowest_.v && tile.v <= highest_.v;
    if (!mayBeInside) return outside_.bytes();
    if (lowest_ == highest_) return locals_.bytes();
    selectCorners(tiles_.data(), tile, locals_.data, seen_.data, count_);
    return seen_.bytes();
}

bool CornerPiece::Coordinates::moveFor(std::uint64_t offset) {
    std::uint8_t* const place = piece.moveTo(offset, kPieceCorners * kCornerBytes);
    auto* const before = std::exchange(data, reinterpret_cast<std::uint32_t*>(place));
    return data != before;
}

std::uint8_t* CornerPiece::Coordinates::bytes() const {
    return reinterpret_cast<std::uint8_t*>(data);
}
