#include "mesh/TileList.h"

#include <gmock/gmock.h>

#include <cmath>

#include "mesh/ClampUvs.h"
#include "support/Plugin.h"
#include "support/VemoBuilder.h"

namespace {

using ::testing::ElementsAre;
using ::testing::Pair;

// A mesh of separate faces; a face whose last two corners are equal is a triangle.
VemoMesh meshOf(const std::vector<FaceUvs>& uvs, const std::vector<std::int16_t>& groups = {}) {
    VemoMesh mesh{{{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}}, {}, uvs, groups};
    for (const FaceUvs& face : uvs)
        mesh.faces.push_back({{0, 1, 2, face[2] == face[3] ? -1 : 3}});
    return mesh;
}

FaceUvs square(float left, float bottom, float right, float top) {
    return {{{left, bottom}, {right, bottom}, {right, top}, {left, top}}};
}

// Tiles from column and row -3 to 12 in no order: one face in each, a second one in every third.
// Every fifth face reaches into the next column.
VemoMesh manyTiles() {
    std::vector<FaceUvs> uvs;
    for (int i = 0; i < 256; ++i) {
        const int shuffled = i * 77 % 256;
        const auto column = static_cast<float>(shuffled % 16 - 3);
        const auto row = static_cast<float>(shuffled / 16 - 3);
        const float right = column + (i % 5 == 0 ? 1.25f : 0.75f);
        for (int repeated = 0; repeated < (i % 3 == 0 ? 2 : 1); ++repeated)
            uvs.push_back(square(column + 0.25f, row + 0.25f, right, row + 0.75f));
    }
    return meshOf(uvs);
}

// What the library writes for a tile.
struct Written {
    std::string name;
    std::size_t faces = 0;
    std::size_t crossing = 0;
    bool operator==(const Written&) const = default;
};
void PrintTo(const Written& tile, std::ostream* out) {
    *out << tile.name << ' ' << tile.faces << ' ' << tile.crossing;
}

Written readTile(const std::string& name, const std::string& path) {
    Written tile{name};
    for (const FaceUvs& uvs : readVemo(path).uvs) {
        if (!isInTile(uvs[0])) continue;
        ++tile.faces;
        if (!std::ranges::all_of(uvs, isInTile)) ++tile.crossing;
    }
    return tile;
}

std::vector<Written> writtenTiles(const std::string& mesh, int naming) {
    const TempDir dir;
    const Plugin library;
    Block out(dir.path("m.Vemo"));
    const Arguments arguments{mesh.c_str(), static_cast<double>(naming), out};
    const float count = library.call("getUVs", arguments);
    Block last;
    EXPECT_EQ(library.call("getUVTile", {arguments.text, arguments.value, last}), count);
    std::vector<Written> tiles;
    for (float i = 0; i < count; ++i) {
        Block name;
        library.call("getUVString", {nullptr, i, name});
        tiles.push_back(readTile(name.text(), dir.path("m" + name.text() + ".Vemo")));
    }
    return tiles;
}

// Of a name that several tiles have, the library writes the tile that comes first.
TEST(TileList, IsThatOfTheLibraryInEachNamingMode) {
    const TempDir dir;
    const VemoMesh mesh = manyTiles();
    const std::string path = dir.path("mesh.Vemo");
    writeVemo(path, mesh);
    for (int naming = 0; naming < kNamings; ++naming) {
        std::vector<Written> listed;
        for (const UvTile& tile : tilesOf(mesh, naming)) {
            const std::string name = nameOf(tile, naming);
            if (listed.empty() || listed.back().name != name)
                listed.push_back({name, tile.faces, tile.crossing.count});
        }
        EXPECT_EQ(listed, writtenTiles(path, naming)) << naming;
    }
}

TEST(TileList, SaysWhatEachTileHas) {
    const VemoMesh mesh = meshOf({square(1.25f, 0.5f, 1.75f, 0.75f), square(0, 0, 1, 1),
                                  square(0.5f, -0.25f, 0.75f, 0.25f), square(0, 0, 0.5f, 0.5f)},
                                 {7, 7, -1, 0});
    const std::vector<UvTile> tiles = tilesOf(mesh, 2);
    ASSERT_EQ(tiles.size(), 3u);
    EXPECT_EQ(nameOf(tiles[0], 2), "1001");
    EXPECT_EQ(nameOf(tiles[1], 2), "1002");
    EXPECT_EQ(nameOf(tiles[2], 2), "991");
    EXPECT_THAT(tiles[0].groups, ElementsAre(Pair(0, 1u), Pair(7, 1u)));
    EXPECT_EQ(tiles[1].u.low, 1.25f);
    EXPECT_EQ(tiles[1].u.high, 1.75f);
    EXPECT_EQ(tiles[1].v.low, 0.5f);
    EXPECT_EQ(tiles[1].v.high, 0.75f);
    EXPECT_EQ(tiles[1].crossing.count, 0u);
    const CrossingFaces crossing = crossingFaces(tiles);
    EXPECT_EQ(crossing.count, 2u);
    EXPECT_EQ(crossing.touching, 1u);
    EXPECT_EQ(textOf(crossing), "face 1 (group 7), face 2 (group -1)");
    EXPECT_EQ(textOf({12, 0, {{3, 0}, {4, 1}, {9, {}}}}, {"head"}),
              "face 3 (group head), face 4 (group 1), face 9 and 9 more");
}

// Columns beyond 9 have the numbers of the next row.
TEST(TileList, NamesThatSeveralTilesHaveAreFound) {
    const VemoMesh mesh =
        meshOf({square(10, 0, 10.5f, 0.5f), square(1, 0, 1.5f, 0.5f), square(0, 1, 0.5f, 1.5f)});
    const std::vector<SharedName> shared = collisions(tilesOf(mesh, 2), 2);
    ASSERT_EQ(shared.size(), 1u);
    EXPECT_EQ(shared[0].name, "1011");
    ASSERT_EQ(shared[0].tiles.size(), 2u);
    EXPECT_EQ(shared[0].tiles[0].column, 10);
    EXPECT_EQ(shared[0].tiles[1].row, 1);
    for (const int naming : {0, 1, 3})
        EXPECT_TRUE(collisions(tilesOf(mesh, naming), naming).empty());
}

// The fourth corner of a triangle is no corner of the face.
TEST(TileList, ATriangleHasThreeCorners) {
    VemoMesh mesh = meshOf({{{{0, 0}, {0.5f, 0}, {0, 0.5f}, {0, 0.5f}}}});
    mesh.uvs[0][3] = {5, 5};
    const std::vector<UvTile> tiles = tilesOf(mesh, 2);
    EXPECT_EQ(tiles[0].crossing.count, 0u);
    EXPECT_EQ(tiles[0].u.high, 0.5f);
}

// Groups in another number than faces are no face groups.
TEST(VemoMesh, HasTheFaceGroupsOfAFile) {
    const TempDir dir;
    VemoBuilder file;
    file.vertices({{0, 0, 0}}).faces({{0, 0, 0, 0}, {0, 0, 0, -1}}).faceUvs({{}, {}});
    EXPECT_THAT(readVemo(dir.write("none.Vemo", file.bytes())).groups, ElementsAre());
    VemoBuilder one = file;
    EXPECT_THAT(readVemo(dir.write("one.Vemo", one.groups({7}).bytes())).groups, ElementsAre());
    EXPECT_THAT(readVemo(dir.write("two.Vemo", file.groups({-1, 300}).bytes())).groups,
                ElementsAre(-1, 300));
}

// Each row: the left and right side of a square as they are and as they become. Below 0 a coordinate is
// moved down by 1 before its place is found, and must still be a float then.
TEST(ClampUvs, BringsCornersOnABorderIntoTheTile) {
    constexpr float kBelow1 = 0.99999994f;
    const float kCases[][4] = {
        {0, 1, 0, kBelow1},
        {0.5f, 1, 0.5f, kBelow1},
        {1, 0.5f, kBelow1, 0.5f},
        {1, 2, 1, 1.9999999f},
        {9, 10, 9, 9.999999f},
        {-1, 0, -0.99999988f, -0.00000011920929f},
        {-2, -1.5f, -1.9999998f, -1.5f},
        {0.25f, 0.75f, 0.25f, 0.75f},
        {0, 1.5f, 0, 1.5f},
        {-0.25f, 1, -0.25f, 1},
        {1e30f, 1e30f, 1e30f, 1e30f},
    };
    for (const auto& [left, right, newLeft, newRight] : kCases) {
        VemoMesh mesh = meshOf({square(left, 0, right, 0.5f)});
        const std::size_t moved = (left != newLeft ? 2u : 0u) + (right != newRight ? 2u : 0u);
        EXPECT_EQ(clampUvs(mesh), moved) << left;
        EXPECT_EQ(mesh.uvs[0], square(newLeft, 0, newRight, 0.5f)) << left << ' ' << right;
    }
}

// The library finds the clamped corners at the ends of their tile, above 0 and below.
TEST(ClampUvs, TheLibrarySeesTheCornersAtTheEndsOfTheTile) {
    for (const float column : {-2000.0f, -3.0f, -2.0f, -1.0f, 0.0f, 1.0f, 9.0f, 2000.0f}) {
        const TempDir dir;
        VemoMesh mesh = meshOf({square(column, 0.25f, column + 1, 0.75f)});
        clampUvs(mesh);
        const std::string path = dir.path("m.Vemo");
        writeVemo(path, mesh);
        Block out(path);
        ASSERT_EQ(Plugin().call("getUVs", {path.c_str(), 0, out}), 1.0f) << column;
        const std::string name = "m" + nameOf(tilesOf(mesh, 0)[0], 0) + ".Vemo";
        EXPECT_EQ(name, "m_u" + std::to_string(static_cast<int>(column)) + "_v0.Vemo");
        const FaceUvs local = readVemo(dir.path(name)).uvs[0];
        EXPECT_NEAR(local[0].u, 0.0f, 0.001f);
        EXPECT_NEAR(local[1].u, 1.0f, 0.001f);
    }
}

}  // namespace
