#include "mesh/UVTiles.h"

#include <gmock/gmock.h>

#include <array>
#include <bit>
#include <cmath>
#include <limits>

#include "mesh/VemoOps.h"
#include "support/TempDir.h"
#include "support/VemoBuilder.h"

namespace {

constexpr int kLowest = std::numeric_limits<int>::min();
constexpr int kHighest = std::numeric_limits<int>::max();

class UVTiles : public testing::Test {
protected:
    ~UVTiles() override { clearUVtilesOut(); }

    std::string mesh(const VemoBuilder& vemo) const { return dir.write("mesh.Vemo", vemo.bytes()); }
    // The tile count, with the name copied out in `name`.
    float count(const VemoBuilder& vemo, int mode) {
        char out[64] = "untouched";
        const float tiles = GetUVTile(mesh(vemo).c_str(), out, mode);
        name = out;
        return tiles;
    }
    void setFilter(std::string_view text) {
        ASSERT_EQ(setUVtilesOut(dir.write("filter.txt", text).c_str()), 0.0f);
    }

    const TempDir dir;
    std::string name;
};

VemoBuilder threeTiles() {
    return VemoBuilder().flatFaceUvs({{0.5f, 0.5f}, {1.5f, 0.5f}, {0.2f, 1.7f}});
}

// The names of the tiles and of the last one, from faces that come `run` at a time.
std::vector<std::string> tilesInRuns(const std::vector<std::array<float, 8>>& faces,
                                     std::size_t run) {
    TileFinder finder(0, {});
    for (std::size_t i = 0; i < faces.size(); i += run)
        finder.add(reinterpret_cast<const std::uint8_t*>(&faces[i]), run);
    const TilesFound found = std::move(finder).found();
    std::vector<std::string> names{found.lastName};
    for (const UV_tile& tile : found.tiles)
        names.push_back(tile.name);
    return names;
}

struct PlaceCase {
    float coordinate;
    int tile;
    float local;
};

TEST(PlaceOf, SplitsACoordinateIntoTileAndPlaceWithin) {
    const float infinity = std::numeric_limits<float>::infinity();
    const PlaceCase cases[] = {
        {0.0f, 0, 0.0f},
        {0.25f, 0, 0.25f},
        {1.0f, 1, 0.0f},
        {2.75f, 2, 0.75f},
        {-0.25f, -1, 0.75f},
        {-1.0f, -2, -0.0f},
        {-1.25f, -2, 0.75f},
        {-0.0f, 0, -0.0f},
        {8388609.0f, 8388609, 0.0f},
        {3e9f, kHighest, 0.0f},
        {-3e9f, kLowest, -0.0f},
        {infinity, kHighest, 0.0f},
        {-infinity, kLowest, -0.0f},
        // 0.3 below zero: the nearest floats are -1.29999995 after the move and 0.70000005 within.
        {-0.3f, -1, std::bit_cast<float>(0x3F333334u)},
        // So close below zero that moving it down by 1 leaves exactly -1.
        {-1e-10f, -1, -0.0f},
    };
    for (const PlaceCase& test : cases) {
        const TilePlace place = placeOf(test.coordinate);
        EXPECT_EQ(place.tile, test.tile) << test.coordinate;
        EXPECT_EQ(std::bit_cast<std::uint32_t>(place.local),
                  std::bit_cast<std::uint32_t>(test.local))
            << test.coordinate << " gives " << place.local;
    }
}

TEST(PlaceOf, NotANumberStaysOneInTileZero) {
    const TilePlace place = placeOf(std::bit_cast<float>(0x7FC01234u));
    EXPECT_EQ(place.tile, 0);
    EXPECT_EQ(std::bit_cast<std::uint32_t>(place.local), 0x7FC01234u);
}

TEST(TileName, FollowsTheNamingMode) {
    EXPECT_EQ(tileName(0, 0, 0), "_u0_v0");
    EXPECT_EQ(tileName(2, 1, 0), "_u2_v1");
    EXPECT_EQ(tileName(0, 0, 1), "_u1_v1");
    EXPECT_EQ(tileName(2, 1, 1), "_u3_v2");
    EXPECT_EQ(tileName(0, 0, 2), "1001");
    EXPECT_EQ(tileName(2, 1, 2), "1013");
    EXPECT_EQ(tileName(0, 0, 3), "u0v0");
    EXPECT_EQ(tileName(2, 1, 3), "u2v1");
    EXPECT_EQ(tileName(-2, 0, 0), "_u-2_v0");
    EXPECT_EQ(tileName(10, 0, 2), "1011");
    EXPECT_EQ(tileName(kHighest, kHighest, 2), "23622321118");
    EXPECT_EQ(tileName(kHighest, kLowest, 1), "_u2147483648_v-2147483647");
}

TEST_F(UVTiles, CountsTheTilesOfTheFirstCorners) {
    EXPECT_EQ(count(threeTiles(), 2), 3.0f);
    EXPECT_EQ(name, "1011");
}

TEST_F(UVTiles, OnlyAFacesFirstCornerCounts) {
    const VemoBuilder mesh =
        VemoBuilder().faceUvs({{0.9f, 0.5f, 1.1f, 0.5f, 2.1f, 0.6f, 0.9f, 0.6f}});
    EXPECT_EQ(count(mesh, 0), 1.0f);
    EXPECT_EQ(name, "_u0_v0");
}

TEST_F(UVTiles, TheFilterCountsInNumberedNamesOnly) {
    setFilter("1001");
    EXPECT_EQ(count(threeTiles(), 2), 1.0f);
    EXPECT_EQ(name, "1011") << "the last face's tile, although the filter does not list it";
    for (const int mode : {0, 1, 3})
        EXPECT_EQ(count(threeTiles(), mode), 3.0f) << mode;
}

TEST_F(UVTiles, AFilterLastsUntilItIsReplacedOrCleared) {
    setFilter("1001");
    setFilter("1002 - 1011");
    EXPECT_EQ(count(threeTiles(), 2), 2.0f);
    clearUVtilesOut();
    EXPECT_EQ(count(threeTiles(), 2), 3.0f);
    setFilter("1001");
    setFilter(" , 9-1");
    EXPECT_EQ(count(threeTiles(), 2), 3.0f) << "lists nothing";
    setFilter("1001");
    EXPECT_EQ(setUVtilesOut(dir.path("missing").c_str()), -1.0f);
    EXPECT_EQ(count(threeTiles(), 2), 3.0f) << "cannot be read";
}

TEST_F(UVTiles, TilesFarOutCountLikeOthers) {
    EXPECT_EQ(count(VemoBuilder().flatFaceUvs({{0.5f, 63.5f},
                                               {0.5f, 64.5f},
                                               {63.5f, 0.5f},
                                               {64.5f, 0.5f},
                                               {0.5f, 63.5f},
                                               {0.5f, 64.5f},
                                               {64.5f, 0.5f}}),
                    0),
              4.0f)
        << "a face that returns to a tile does not count again";
    EXPECT_EQ(name, "_u64_v0");
    EXPECT_EQ(count(VemoBuilder().flatFaceUvs({{8388608.0f, 0.5f}, {8388609.0f, 0.5f}}), 0), 2.0f);
    EXPECT_EQ(name, "_u8388609_v0");
}

TEST_F(UVTiles, AMeshWithoutFacesHasNone) {
    EXPECT_EQ(count(VemoBuilder().faceUvs({}), 2), 0.0f);
    EXPECT_EQ(name, "");
}

// Runs of faces in one tile are compared in blocks. Each face is also given by itself, which makes
// no block: coordinates on and beside the borders, one odd face at each place of runs of each length.
TEST(TileFinder, FindsTheSameTilesInRunsAsFaceByFace) {
    const float odd[] = {0.0f, -0.0f,      0.99999994f, 1.0f, -0.25f, -1.0f,
                         2.0f, 8388608.0f, -8388609.0f, 3e9f, NAN,    INFINITY};
    for (const float home : {0.5f, 1.0f, 3.25f, -0.5f}) {
        for (const std::size_t length : {1u, 7u, 8u, 9u, 16u, 17u, 31u}) {
            for (std::size_t place = 0; place < length; ++place) {
                for (const float coordinate : odd) {
                    std::vector<std::array<float, 8>> faces(length);
                    for (auto& face : faces)
                        face = {home, home, 7, 7, 7, 7, 7, 7};
                    faces[place][place % 2] = coordinate;
                    EXPECT_EQ(tilesInRuns(faces, length), tilesInRuns(faces, 1));
                }
            }
        }
    }
}

TEST(TileFinder, SeesAFaceElsewhereAmongFacesOfZeros) {
    for (std::size_t place = 1; place < 17; ++place) {
        std::vector<std::array<float, 8>> faces(17);
        faces[place] = {1.5f, 0.5f};
        EXPECT_EQ(tilesInRuns(faces, 17).size(), 3u) << place;  // two tiles, and the last name
    }
}

TEST_F(UVTiles, AMissingMeshAndAMissingChunkHaveAStatusEach) {
    char out[] = "untouched";
    EXPECT_EQ(GetUVTile(dir.path("missing").c_str(), out, 0), -17.0f);
    EXPECT_EQ(GetUVTile(dir.path().c_str(), out, 0), -17.0f);
    EXPECT_STREQ(out, "untouched");
    EXPECT_EQ(count(VemoBuilder().vertices({{1, 2, 3}}), 0), -18.0f);
    EXPECT_EQ(name, "untouched");
    EXPECT_EQ(GetUVGroup(dir.path("missing").c_str()), -17.0f);
    EXPECT_EQ(GetUVGroup(mesh(VemoBuilder().vertices({{1, 2, 3}})).c_str()), -18.0f);
}

TEST_F(UVTiles, GroupsAreCountedByTheirSignedIds) {
    EXPECT_EQ(GetUVGroup(mesh(VemoBuilder().groups({5, 5, 2, -1})).c_str()), 3.0f);
    EXPECT_EQ(GetUVGroup(mesh(VemoBuilder().groups({-32768, 32767, 0})).c_str()), 3.0f);
    EXPECT_EQ(GetUVGroup(mesh(VemoBuilder().groups({})).c_str()), 0.0f);
}

TEST_F(UVTiles, AGroupOfOneFaceIsCountedWhereverItIs) {
    for (const std::int16_t most : {std::int16_t{0}, std::int16_t{-7}}) {
        for (std::size_t odd = 0; odd < 100; ++odd) {
            std::vector<std::int16_t> groups(100, most);
            EXPECT_EQ(GetUVGroup(mesh(VemoBuilder().groups(groups)).c_str()), 1.0f);
            groups[odd] = 256;
            EXPECT_EQ(GetUVGroup(mesh(VemoBuilder().groups(groups)).c_str()), 2.0f) << odd;
        }
    }
}

TEST_F(UVTiles, ManyFacesOfAGroupAndOfItsNegativeAreTwoGroups) {
    std::vector<std::int16_t> groups(64, 5);
    std::fill(groups.begin() + 32, groups.end(), std::int16_t{-5});
    EXPECT_EQ(GetUVGroup(mesh(VemoBuilder().groups(groups)).c_str()), 2.0f);
}

TEST_F(UVTiles, GroupsAreFoundAfterAZeroLength) {
    EXPECT_EQ(GetUVGroup(mesh(VemoBuilder().chunk(9, 0, 0).groups({1, 2})).c_str()), 2.0f);
}

}  // namespace
