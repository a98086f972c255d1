#include "mesh/CornerPiece.h"

#include <gmock/gmock.h>

#include <bit>
#include <cstring>
#include <limits>
#include <vector>

#include "bytes/Bytes.h"
#include "mesh/UVTiles.h"

namespace {

using testing::ElementsAre;

std::vector<std::uint8_t> bytesOf(const std::vector<float>& coordinates) {
    std::vector<std::uint8_t> bytes(4 * coordinates.size());
    for (std::size_t i = 0; i < coordinates.size(); ++i)
        storeLeFloat(&bytes[4 * i], coordinates[i]);
    return bytes;
}

std::vector<std::uint32_t> seen(CornerPiece& piece, TileAt tile, std::size_t coordinates) {
    const std::uint8_t* bytes = piece.seenFrom(tile);
    std::vector<std::uint32_t> bits;
    for (std::size_t i = 0; i < coordinates; ++i)
        bits.push_back(loadLe32(bytes + 4 * i));
    return bits;
}

// What the piece must show, a corner at a time.
std::vector<std::uint32_t> seenOneByOne(const std::vector<float>& coordinates, TileAt tile) {
    std::vector<std::uint32_t> bits;
    for (std::size_t i = 0; i < coordinates.size(); i += 2) {
        const TilePlace u = placeOf(coordinates[i]);
        const TilePlace v = placeOf(coordinates[i + 1]);
        const bool inside = u.tile == tile.u && v.tile == tile.v;
        bits.push_back(std::bit_cast<std::uint32_t>(inside ? u.local : -1.0f));
        bits.push_back(std::bit_cast<std::uint32_t>(inside ? v.local : -1.0f));
    }
    return bits;
}

void expectAsOneByOne(const std::vector<float>& coordinates, std::size_t misaligned = 0) {
    const std::vector<std::uint8_t> bytes = bytesOf(coordinates);
    std::vector<std::uint8_t> moved(bytes.size() + misaligned);
    std::memcpy(moved.data() + misaligned, bytes.data(), bytes.size());
    const auto piece = std::make_unique<CornerPiece>();
    piece->split(moved.data() + misaligned, coordinates.size() / 2, 36 + misaligned);
    for (const TileAt tile : {TileAt{0, 0}, TileAt{1, 0}, TileAt{-1, 0}, TileAt{-2, 3},
                              TileAt{2, 2}, TileAt{0, 2147483647}, TileAt{-2147483647 - 1, 0}})
        EXPECT_EQ(seen(*piece, tile, coordinates.size()), seenOneByOne(coordinates, tile))
            << coordinates.size() << " coordinates, tile " << tile.u << ", " << tile.v;
}

TEST(CornerPiece, CornersOfOtherTilesAreMinusOne) {
    const auto piece = std::make_unique<CornerPiece>();
    piece->split(bytesOf({0.5f, 0.25f, 1.5f, 0.75f, 0.125f, 0.0f}).data(), 3, 0);

    const std::uint32_t half = 0x3F000000, quarter = 0x3E800000, threeQuarters = 0x3F400000;
    const std::uint32_t eighth = 0x3E000000, outside = 0xBF800000;
    EXPECT_THAT(seen(*piece, {0, 0}, 6), ElementsAre(half, quarter, outside, outside, eighth, 0u));
    EXPECT_THAT(seen(*piece, {1, 0}, 6),
                ElementsAre(outside, outside, half, threeQuarters, outside, outside));
    EXPECT_THAT(seen(*piece, {5, 5}, 6),
                ElementsAre(outside, outside, outside, outside, outside, outside));
}

TEST(CornerPiece, APieceWithinOneTileIsThatTilesAlone) {
    const auto piece = std::make_unique<CornerPiece>();
    piece->split(bytesOf({2.5f, 0.0f, 2.5f, 0.5f}).data(), 2, 0);
    EXPECT_THAT(seen(*piece, {2, 0}, 4), ElementsAre(0x3F000000u, 0u, 0x3F000000u, 0x3F000000u));
    EXPECT_THAT(seen(*piece, {0, 0}, 2), ElementsAre(0xBF800000u, 0xBF800000u));
}

TEST(CornerPiece, EveryLengthIsAsOneByOne) {
    std::vector<float> coordinates;
    std::uint32_t state = 1;
    for (int corners = 1; corners <= 40; ++corners) {
        for (int i = 0; i < 2; ++i) {
            state = state * 1664525u + 1013904223u;
            coordinates.push_back(static_cast<float>(state >> 8) / 4194304.0f - 1.5f);
        }
        expectAsOneByOne(coordinates, static_cast<std::size_t>(corners % 4));
    }
}

TEST(CornerPiece, BordersAndSpecialValuesAreAsOneByOne) {
    constexpr float kInfinity = std::numeric_limits<float>::infinity();
    const std::vector<float> near = {0.0f,         -0.0f,       1.0f,   -1.0f,   -2.0f,  2.0f,
                                     -0.99999994f, 0.99999994f, 1e-30f, -1e-30f, -0.25f, 3.0f};
    expectAsOneByOne(near);
    for (const float special : {kInfinity, -kInfinity, 4194304.0f, -4194304.0f, 8388608.0f, 3e9f,
                                -3e9f, std::bit_cast<float>(0x7FC01234u)}) {
        std::vector<float> coordinates = near;
        coordinates.insert(coordinates.end(), {special, 0.5f, 0.5f, special});
        expectAsOneByOne(coordinates);
    }
}

TEST(CornerPiece, TilesBesideAllCornersSeeNone) {
    const auto piece = std::make_unique<CornerPiece>();
    piece->split(bytesOf({1.5f, 1.5f, 2.5f, 2.5f}).data(), 2, 0);
    const std::uint32_t outside = 0xBF800000;
    for (const TileAt tile : {TileAt{0, 1}, TileAt{3, 1}, TileAt{1, 0}, TileAt{1, 3}})
        EXPECT_THAT(seen(*piece, tile, 4), ElementsAre(outside, outside, outside, outside))
            << tile.u << ", " << tile.v;
}

// Where a piece lies in memory depends on where it is written.
TEST(CornerPiece, PiecesForDifferentPlacesInTheFilesAreAsOneByOne) {
    const auto piece = std::make_unique<CornerPiece>();
    const std::uint32_t half = 0x3F000000, quarter = 0x3E800000, threeQuarters = 0x3F400000;
    const std::uint32_t outside = 0xBF800000;
    for (const std::uint64_t offset : {0u, 224u, 4095u, 5000u}) {
        SCOPED_TRACE(offset);
        piece->split(bytesOf({0.5f, 0.25f, 1.5f, 0.75f}).data(), 2, offset);
        EXPECT_THAT(seen(*piece, {0, 0}, 4), ElementsAre(half, quarter, outside, outside));
        EXPECT_THAT(seen(*piece, {7, 0}, 4), ElementsAre(outside, outside, outside, outside));
        piece->split(bytesOf({1.5f, 0.75f}).data(), 1, offset + 16);
        EXPECT_THAT(seen(*piece, {1, 0}, 2), ElementsAre(half, threeQuarters));
    }
}

}  // namespace
