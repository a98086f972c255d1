#include "mesh/CornerPiece.h"

#include <gmock/gmock.h>

#include <bit>
#include <cmath>
#include <limits>
#include <memory>
#include <random>
#include <vector>

#include "bytes/Bytes.h"
#include "mesh/UVTiles.h"
#include "support/Append.h"

namespace {

using testing::Each;
using testing::ElementsAre;

constexpr std::uint32_t kQuarter = std::bit_cast<std::uint32_t>(0.25f);
constexpr std::uint32_t kHalf = std::bit_cast<std::uint32_t>(0.5f);
constexpr std::uint32_t kThreeQuarters = std::bit_cast<std::uint32_t>(0.75f);
constexpr std::uint32_t kOutside = std::bit_cast<std::uint32_t>(-1.0f);

// The coordinates as a mesh file has them, after some other bytes.
ByteList bytesOf(const std::vector<float>& coordinates, std::size_t before = 0) {
    ByteList bytes(before);
    for (const float coordinate : coordinates)
        appendLeFloat(bytes, coordinate);
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
    const ByteList bytes = bytesOf(coordinates, misaligned);
    const auto piece = std::make_unique<CornerPiece>();
    piece->split(bytes.data() + misaligned, coordinates.size() / 2, 36 + misaligned);
    for (const TileAt tile : {TileAt{0, 0}, TileAt{1, 0}, TileAt{-1, 0}, TileAt{-2, 3},
                              TileAt{2, 2}, TileAt{0, 2147483647}, TileAt{-2147483647 - 1, 0}})
        EXPECT_EQ(seen(*piece, tile, coordinates.size()), seenOneByOne(coordinates, tile))
            << coordinates.size() << " coordinates, tile " << tile.u << ", " << tile.v;
}

TEST(CornerPiece, CornersThatAreAllInOneTileAreOutsideAnyOther) {
    const auto piece = std::make_unique<CornerPiece>();
    piece->split(bytesOf({2.5f, 3.0f, 2.25f, 3.5f}).data(), 2, 0);
    EXPECT_THAT(seen(*piece, {2, 3}, 4), ElementsAre(kHalf, 0u, kQuarter, kHalf));
    for (const TileAt tile : {TileAt{1, 3}, TileAt{3, 3}, TileAt{2, 2}, TileAt{2, 4}})
        EXPECT_THAT(seen(*piece, tile, 4), Each(kOutside)) << tile.u << ", " << tile.v;
}

TEST(CornerPiece, EveryLengthIsAsOneByOne) {
    std::mt19937 random(1);
    std::vector<float> coordinates;
    for (std::size_t corners = 1; corners <= 40; ++corners) {
        for (int i = 0; i < 2; ++i)
            coordinates.push_back(static_cast<float>(random() % 4096) / 1024.0f - 1.5f);
        expectAsOneByOne(coordinates, corners % 4);
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
        expectAsOneByOne({0.5f, 0.5f, 0.5f, special}, 16);
    }
}

// Long runs in one tile are taken apart in another way, up to an odd corner anywhere among them.
TEST(CornerPiece, ManyCornersInOneTileAreAsOneByOne) {
    for (const float low : {0.0f, 2.0f, -1.0f, 8388608.0f}) {
        std::vector<float> coordinates;
        for (int i = 0; i < 32; ++i)
            coordinates.push_back(low + static_cast<float>(i) / 32.0f);
        coordinates[2] = low == 0.0f ? -0.0f : low;
        expectAsOneByOne(coordinates, 3);
        for (std::size_t odd = 0; odd < 32; ++odd) {
            for (const float elsewhere :
                 {low + 1.0f, low - 0.5f, std::nextafter(low + 1.0f, 0.0f)}) {
                std::vector<float> with = coordinates;
                with[odd] = elsewhere;
                expectAsOneByOne(with);
            }
        }
    }
}

// A piece's place in memory depends on where it is written.
TEST(CornerPiece, OnePieceServesForDifferentPlacesInTheFiles) {
    const auto piece = std::make_unique<CornerPiece>();
    for (const std::uint64_t offset : {0u, 224u, 4095u, 5000u}) {
        SCOPED_TRACE(offset);
        piece->split(bytesOf({0.5f, 0.25f, 1.5f, 0.75f}).data(), 2, offset);
        EXPECT_THAT(seen(*piece, {0, 0}, 4), ElementsAre(kHalf, kQuarter, kOutside, kOutside));
        EXPECT_THAT(seen(*piece, {7, 0}, 4), Each(kOutside));
        piece->split(bytesOf({1.5f, 0.75f}).data(), 1, offset + 16);
        EXPECT_THAT(seen(*piece, {1, 0}, 2), ElementsAre(kHalf, kThreeQuarters));
    }
}

}  // namespace
