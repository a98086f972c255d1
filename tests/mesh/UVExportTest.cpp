#include <gmock/gmock.h>

#include <filesystem>

#include "mesh/VemoOps.h"
#include "support/TempDir.h"
#include "support/VemoBuilder.h"

namespace {

using testing::ElementsAre;

class UVExport : public testing::Test {
protected:
    UVExport() { clearUVTileString(); }

    float writeUvs(const VemoBuilder& vemo, int mode = 2) {
        return GetUVsFromVemo(mesh(vemo).c_str(), dir.path("out.tif").c_str(), mode);
    }
    float writeMasks(const VemoBuilder& vemo, int mode = 2) {
        return GetUVsFromVemoMASK(mesh(vemo).c_str(), dir.path("out.tif").c_str(), mode);
    }
    std::string mesh(const VemoBuilder& vemo) const { return dir.write("mesh.in", vemo.bytes()); }
    ByteList written(std::string_view name) const { return readBytes(dir.path(name)); }

    const TempDir dir;
};

std::string nameAt(int position) {
    char name[64] = "none";
    getUVTileString(position, name);
    return name;
}

// The quad ends with the first vertex, and the triangle with the lowest of all negative indices.
VemoBuilder quadAndTriangle() {
    return VemoBuilder()
        .vertices({{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}, {2, 0, 0}, {9, 9, 9}})
        .faces({{1, 2, 3, 0}, {1, 4, 2, INT32_MIN}})
        .flatFaceUvs({{0.5f, 0.5f}, {1.5f, 0.5f}});
}

TEST_F(UVExport, ATilesMeshIsTheInputUpToTheUvsThenLocalUvsThenTheClosing) {
    const VemoBuilder before = VemoBuilder().vertices({{1, 2, 3}}).faces({{0, 0, 0, -1}});
    const VemoBuilder input = VemoBuilder(before)
                                  .faceUvs({{1.5f, 2.25f, 1.0f, 2.0f, 1.75f, 2.5f, 1.5f, 2.25f}})
                                  .groups({4})
                                  .closing();
    const VemoBuilder expected = VemoBuilder(before)
                                     .faceUvs({{0.5f, 0.25f, 0.0f, 0.0f, 0.75f, 0.5f, 0.5f, 0.25f}})
                                     .closing();
    EXPECT_EQ(writeUvs(input, 3), 1.0f);
    EXPECT_EQ(written("outu1v2.Vemo"), expected.bytes());
}

TEST_F(UVExport, ACornerInAnotherTileIsMinusOne) {
    EXPECT_EQ(
        writeUvs(VemoBuilder().faceUvs({{0.9f, 0.5f, 1.1f, 0.5f, 0.25f, 1.5f, -0.25f, 0.5f}})),
        1.0f);
    EXPECT_EQ(written("out1001.Vemo"),
              VemoBuilder().faceUvs({{0.9f, 0.5f, -1, -1, -1, -1, -1, -1}}).closing().bytes());
}

TEST_F(UVExport, NamesAreOrderedAsTextNotAsNumbers) {
    EXPECT_EQ(writeUvs(VemoBuilder().flatFaceUvs({{9.5f, 0.5f}, {10.5f, 0.5f}}), 3), 2.0f);
    EXPECT_EQ(nameAt(0), "u10v0");
    EXPECT_EQ(nameAt(1), "u9v0");
}

// Both places have the number 1011; the one that comes first in the file gives the tile its place.
TEST_F(UVExport, OfTilesWithOneNumberTheFirstInTheFileIsWritten) {
    EXPECT_EQ(writeUvs(VemoBuilder().flatFaceUvs({{10.5f, 0.5f}, {0.25f, 1.5f}})), 1.0f);
    EXPECT_EQ(written("out1011.Vemo"),
              VemoBuilder().flatFaceUvs({{0.5f, 0.5f}, {-1, -1}}).closing().bytes());
}

TEST_F(UVExport, TheFilterChoosesTheTilesThatAreWritten) {
    ASSERT_EQ(setUVtilesOut(dir.write("filter.txt", "1002").c_str()), 0.0f);
    EXPECT_EQ(writeUvs(VemoBuilder().flatFaceUvs({{0.5f, 0.5f}, {1.5f, 0.5f}})), 1.0f);
    EXPECT_EQ(writeUvs(VemoBuilder().flatFaceUvs({{0.5f, 0.5f}, {1.5f, 0.5f}}), 1), 2.0f);
    clearUVtilesOut();
    EXPECT_THAT(dir.names(), ElementsAre("filter.txt", "mesh.in", "out1002.Vemo", "out_u1_v1.Vemo",
                                         "out_u2_v1.Vemo"));
}

TEST_F(UVExport, MoreTilesThanMayBeOpenAtOnceAreAllWritten) {
    std::vector<std::array<float, 2>> uvs;
    for (int i = 0; i < 100; ++i)
        uvs.push_back({static_cast<float>(i % 10) + 0.5f, static_cast<float>(i / 10) + 0.25f});
    EXPECT_EQ(writeUvs(VemoBuilder().flatFaceUvs(uvs)), 100.0f);
    for (std::size_t i = 0; i < 100; ++i) {
        const std::string name = std::to_string(1001 + i);
        std::vector<std::array<float, 2>> expected(100, {-1, -1});
        expected[i] = {0.5f, 0.25f};
        EXPECT_EQ(nameAt(static_cast<int>(i)), name);
        EXPECT_EQ(written("out" + name + ".Vemo"),
                  VemoBuilder().flatFaceUvs(expected).closing().bytes());
    }
}

TEST_F(UVExport, AMeshOfManyPiecesIsWrittenWhole) {
    std::vector<std::array<float, 2>> uvs;
    std::vector<std::array<float, 2>> expected;
    for (int i = 0; i < 5000; ++i) {
        const float within = static_cast<float>(i) / 8192.0f;
        uvs.push_back({static_cast<float>(i % 2) + within, within});
        expected.push_back(i % 2 == 0 ? std::array{within, within} : std::array{-1.0f, -1.0f});
    }
    EXPECT_EQ(writeUvs(VemoBuilder().flatFaceUvs(uvs)), 2.0f);
    EXPECT_EQ(written("out1001.Vemo"), VemoBuilder().flatFaceUvs(expected).closing().bytes());
}

// A mesh of one tile is written while its tiles are sought, unless there is a file already.
TEST_F(UVExport, AMeshOfOneTileIsWrittenTheSameOverAnOldFile) {
    std::vector<std::array<float, 2>> uvs;
    std::vector<std::array<float, 2>> expected;
    for (int i = 0; i < 20000; ++i) {
        const float within = static_cast<float>(i) / 32768.0f;
        uvs.push_back({1.0f + within, within});
        expected.push_back({within, within});
    }
    const ByteList whole = VemoBuilder().flatFaceUvs(expected).closing().bytes();
    const VemoBuilder mesh = VemoBuilder().flatFaceUvs(uvs).groups({1});
    for (const ByteList& old : {ByteList(), ByteList(3), ByteList(whole.size() + 5)}) {
        if (!old.empty()) dir.write("out1002.Vemo", old);
        clearUVTileString();
        EXPECT_EQ(writeUvs(mesh), 1.0f);
        EXPECT_EQ(written("out1002.Vemo"), whole);
        EXPECT_EQ(nameAt(0), "1002");
        EXPECT_EQ(nameAt(1), "none");
    }
}

// The mesh seems to have one tile until the odd face comes.
TEST_F(UVExport, AFaceOfAnotherTileIsNoticedWhereverItIs) {
    const std::vector<std::array<float, 2>> uvs(20000, {1.5f, 0.5f});
    const std::vector<std::array<float, 2>> inside(uvs.size(), {0.5f, 0.5f});
    for (const std::size_t odd : {0u, 1u, 1332u, 8191u, 8192u, 10001u, 19998u, 19999u}) {
        SCOPED_TRACE(odd);
        std::vector<std::array<float, 2>> faces = uvs;
        std::vector<std::array<float, 2>> first(uvs.size(), {-1, -1});
        std::vector<std::array<float, 2>> second = inside;
        faces[odd] = {0.25f, 0.5f};
        first[odd] = {0.25f, 0.5f};
        second[odd] = {-1, -1};
        EXPECT_EQ(writeUvs(VemoBuilder().flatFaceUvs(faces)), 2.0f);
        EXPECT_EQ(written("out1001.Vemo"), VemoBuilder().flatFaceUvs(first).closing().bytes());
        EXPECT_EQ(written("out1002.Vemo"), VemoBuilder().flatFaceUvs(second).closing().bytes());
        EXPECT_EQ(nameAt(0) + nameAt(1) + nameAt(2), "10011002none");
        for (const char* tile : {"out1001.Vemo", "out1002.Vemo"})
            std::filesystem::remove(dir.path(tile));
    }
}

// Face 1, which comes before all others of its number, is in another place than they.
TEST_F(UVExport, OfManyTilesWithOneNumberTheFirstIsWritten) {
    ASSERT_EQ(setUVtilesOut(dir.write("filter.txt", "1011").c_str()), 0.0f);
    std::vector<std::array<float, 2>> uvs(1000, {0.25f, 1.5f});
    std::vector<std::array<float, 2>> expected(1000, {-1, -1});
    uvs[0] = {0.5f, 0.5f};
    uvs[1] = {10.5f, 0.5f};
    expected[1] = {0.5f, 0.5f};
    EXPECT_EQ(writeUvs(VemoBuilder().flatFaceUvs(uvs)), 1.0f);
    clearUVtilesOut();
    EXPECT_EQ(written("out1011.Vemo"), VemoBuilder().flatFaceUvs(expected).closing().bytes());
}

TEST_F(UVExport, ALinkThatLeadsNowhereBecomesTheFileThatItNames) {
    for (const auto& uvs : {std::vector<std::array<float, 2>>{{0.5f, 0.5f}},
                            std::vector<std::array<float, 2>>{{0.5f, 0.5f}, {1.5f, 0.5f}}}) {
        const TempDir other;
        std::filesystem::remove(dir.path("out1001.Vemo"));
        std::filesystem::create_symlink(other.path("real"), dir.path("out1001.Vemo"));
        EXPECT_EQ(writeUvs(VemoBuilder().flatFaceUvs(uvs)), static_cast<float>(uvs.size()));
        EXPECT_TRUE(std::filesystem::is_symlink(dir.path("out1001.Vemo")));
        EXPECT_EQ(readBytes(other.path("real")).size(), 64 + 32 * uvs.size());
    }
}

TEST_F(UVExport, AMeshWithoutFacesWritesNothing) {
    EXPECT_EQ(writeUvs(VemoBuilder().faceUvs({})), 0.0f);
    EXPECT_THAT(dir.names(), ElementsAre("mesh.in"));
    EXPECT_EQ(nameAt(0), "none");
}

TEST_F(UVExport, AMissingOutputFolderStopsAtTheFirstTile) {
    const std::string input = mesh(quadAndTriangle().closing());
    for (const auto exportTiles : {GetUVsFromVemo, GetUVsFromVemoMASK}) {
        EXPECT_EQ(exportTiles(input.c_str(), dir.path("no/out").c_str(), 2), 1501.0f);
        EXPECT_EQ(nameAt(0), "none");
    }
}

TEST_F(UVExport, TilesBeforeAFileThatCannotBeCreatedStayWhole) {
    dir.makeFolder("out1003.Vemo");
    const VemoBuilder mesh =
        VemoBuilder().flatFaceUvs({{0.5f, 0.5f}, {1.5f, 0.5f}, {2.5f, 0.5f}, {3.5f, 0.5f}});
    EXPECT_EQ(writeUvs(mesh), 1503.0f);
    EXPECT_EQ(written("out1002.Vemo").size(), mesh.bytes().size() + 16);
    EXPECT_FALSE(dir.has("out1004.Vemo"));
    EXPECT_EQ(nameAt(1), "1002");
    EXPECT_EQ(nameAt(2), "none");
}

TEST_F(UVExport, AMeshWithoutWholeUvsIsRefusedBeforeAnythingIsWritten) {
    EXPECT_EQ(writeUvs(VemoBuilder().vertices({{1, 2, 3}})), -18.0f);
    EXPECT_EQ(writeUvs(VemoBuilder().chunk(25001, 80, 2, ByteList(32))), -18.0f);
    EXPECT_THAT(dir.names(), ElementsAre("mesh.in"));
}

TEST_F(UVExport, AMissingMeshHasAStatusOfItsOwnAndLeavesNoNames) {
    const std::string missing = dir.path("missing");
    for (const auto exportTiles : {GetUVsFromVemo, GetUVsFromVemoMASK}) {
        EXPECT_EQ(writeUvs(VemoBuilder().flatFaceUvs({{0.5f, 0.5f}})), 1.0f);
        EXPECT_EQ(nameAt(0), "1001");
        EXPECT_EQ(exportTiles(missing.c_str(), dir.path("out").c_str(), 0), -1760.0f);
        EXPECT_EQ(nameAt(0), "none");
    }
}

TEST_F(UVExport, APositionThatDoesNotExistChangesNothing) {
    EXPECT_EQ(writeUvs(VemoBuilder().flatFaceUvs({{0.5f, 0.5f}})), 1.0f);
    EXPECT_EQ(nameAt(1), "none");
    EXPECT_EQ(nameAt(-1), "none");
    getUVTileString(0, nullptr);
    clearUVTileString();
    EXPECT_EQ(nameAt(0), "none");
}

// Two tiles, the second one over the mesh, through a link or by its own name: both are written from
// what the mesh held.
TEST_F(UVExport, AnOutputOverTheInputIsWrittenFromWhatTheInputHeld) {
    const VemoBuilder input = VemoBuilder().flatFaceUvs({{1.5f, 0.5f}, {0.25f, 0.5f}}).groups({1});
    for (const char* name : {"mesh.Vemo", "body1002.Vemo"}) {
        const std::string path = dir.write(name, input.bytes());
        if (!dir.has("body1002.Vemo"))
            std::filesystem::create_hard_link(path, dir.path("body1002.Vemo"));
        EXPECT_EQ(GetUVsFromVemo(path.c_str(), dir.path("body.obj").c_str(), 2), 2.0f);
        EXPECT_EQ(written("body1001.Vemo"),
                  VemoBuilder().flatFaceUvs({{-1, -1}, {0.25f, 0.5f}}).closing().bytes());
        EXPECT_EQ(readBytes(path),
                  VemoBuilder().flatFaceUvs({{0.5f, 0.5f}, {-1, -1}}).closing().bytes());
    }
}

TEST_F(UVExport, AMaskFileIsTheMeshWithAMaskBeforeItsClosing) {
    const auto masked = [](const ByteList& mask) {
        return quadAndTriangle().chunk(30001, 22, 6, mask).closing().bytes();
    };
    EXPECT_EQ(writeMasks(quadAndTriangle().closing()), 2.0f);
    EXPECT_EQ(written("out1001.Vemo"), masked({0, 0, 0, 0, 255, 255}));
    EXPECT_EQ(written("out1002.Vemo"), masked({255, 0, 0, 255, 0, 255}));
    EXPECT_EQ(nameAt(0), "1001");
    EXPECT_EQ(nameAt(1), "1002");
}

// Tiles of two faces each: the one vertex that they do not share shows which of them are in a tile.
TEST_F(UVExport, ManyTilesHaveAMaskEach) {
    constexpr std::size_t kTiles = 70;
    std::vector<std::array<float, 2>> uvs;
    std::vector<VemoBuilder::Face> faces;
    for (std::size_t i = 0; i < 2 * kTiles; ++i) {
        const std::size_t tile = i % kTiles;
        uvs.push_back({static_cast<float>(tile % 10) + 0.5f, static_cast<float>(tile / 10) + 0.5f});
        faces.push_back({0, 1, static_cast<std::int32_t>(2 + i), -1});
    }
    const VemoBuilder mesh =
        VemoBuilder()
            .vertices(std::vector<VemoBuilder::Vertex>(2 * kTiles + 2, {1, 2, 3}))
            .faces(faces)
            .flatFaceUvs(uvs);
    EXPECT_EQ(writeMasks(VemoBuilder(mesh).closing()), static_cast<float>(kTiles));
    for (std::size_t tile = 0; tile < kTiles; ++tile) {
        ByteList mask(2 * kTiles + 2, 255);
        for (const std::size_t vertex :
             {std::size_t{0}, std::size_t{1}, 2 + tile, 2 + kTiles + tile})
            mask[vertex] = 0;
        EXPECT_EQ(written("out" + std::to_string(1001 + tile) + ".Vemo"),
                  VemoBuilder(mesh).chunk(30001, 16 + 142, 142, mask).closing().bytes())
            << tile;
    }
}

TEST_F(UVExport, AMaskFollowsTheFirstCornerOfEachFace) {
    const VemoBuilder mesh = VemoBuilder()
                                 .vertices({{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}})
                                 .faces({{0, 1, 2, 3}})
                                 .faceUvs({{1.5f, 0.5f, 0.5f, 0.5f, 0.5f, 0.5f, 0.5f, 0.5f}})
                                 .closing();
    EXPECT_EQ(writeMasks(mesh, 3), 1.0f);
    EXPECT_THAT(dir.names(), ElementsAre("mesh.in", "outu1v0.Vemo"));
}

// A mask needs the three chunks whole and in this order, as many face UVs as faces, and faces that
// name vertices.
TEST_F(UVExport, AMeshThatCannotBeMaskedIsRefusedBeforeAnythingIsWritten) {
    const VemoBuilder empty;
    const VemoBuilder vertex = VemoBuilder().vertices({{1, 2, 3}});
    const VemoBuilder::Face face = {0, 0, 0, 0};
    const auto faces = [](VemoBuilder before, const std::vector<VemoBuilder::Face>& all) {
        return before.faces(all);
    };
    const auto uvs = [](VemoBuilder before) { return before.flatFaceUvs({{0.5f, 0.5f}}); };
    const auto claimed = [](std::uint32_t id) {
        VemoBuilder mesh;
        for (const std::uint32_t chunk : {10001u, 20001u, 25001u})
            mesh.chunk(chunk, 16, chunk == id ? 1000 : 0);
        return mesh;
    };
    const struct {
        const char* what;
        VemoBuilder mesh;
        float status;
    } rows[] = {
        {"no vertices", uvs(faces(empty, {face})), -18.0f},
        {"no faces", uvs(vertex), -19.0f},
        {"no face UVs", faces(vertex, {face}), -18.0f},
        {"faces first", uvs(faces(empty, {face}).vertices({{1, 2, 3}})), -19.0f},
        {"two faces, one face UV", uvs(faces(vertex, {face, face})), -18.0f},
        {"a vertex too high", uvs(faces(vertex, {{0, 1, 0, 0}})), -19.0f},
        {"a fourth vertex too high", uvs(faces(vertex, {{0, 0, 0, 1}})), -19.0f},
        {"a negative vertex", uvs(faces(vertex, {{-1, 0, 0, 0}})), -19.0f},
        {"the lowest vertex", uvs(faces(vertex, {{0, 0, INT32_MIN, -1}})), -19.0f},
        {"1000 vertices in a small file", claimed(10001), -18.0f},
        {"1000 faces in a small file", claimed(20001), -18.0f},
        {"1000 face UVs in a small file", claimed(25001), -18.0f},
    };
    for (const auto& row : rows)
        EXPECT_EQ(writeMasks(VemoBuilder(row.mesh).closing()), row.status) << row.what;
    EXPECT_THAT(dir.names(), ElementsAre("mesh.in"));
}

TEST_F(UVExport, AMeshWithoutFacesHasNoMasks) {
    EXPECT_EQ(writeMasks(VemoBuilder().vertices({{1, 2, 3}}).faces({}).flatFaceUvs({}).closing()),
              0.0f);
    EXPECT_EQ(writeMasks(VemoBuilder().vertices({}).faces({}).flatFaceUvs({}).closing()), 0.0f);
    EXPECT_THAT(dir.names(), ElementsAre("mesh.in"));
}

// Every truncated length in a file of its own, so that the sanitizer sees the edge. The face UVs
// end at byte 248 and the groups at 284; the repeated byte makes up for one that is missing.
TEST_F(UVExport, ATruncatedMeshIsRefusedAndLeftAsItIs) {
    const ByteList whole = quadAndTriangle().closing().groups({1, 2}).bytes();
    for (std::size_t length = 0; length <= whole.size(); ++length) {
        SCOPED_TRACE(length);
        const ByteList bytes = firstBytes(whole, length);
        const std::string path = dir.write("short.in", bytes);
        const bool hasUvs = length >= 247;
        char name[64];
        EXPECT_EQ(GetUVTile(path.c_str(), name, 2), hasUvs ? 2.0f : -18.0f);
        EXPECT_EQ(GetUVGroup(path.c_str()), length >= 283 ? 2.0f : -18.0f);
        EXPECT_EQ(GetUVsFromVemo(path.c_str(), dir.path("uv").c_str(), 2), hasUvs ? 2.0f : -18.0f);
        const float masks = GetUVsFromVemoMASK(path.c_str(), dir.path("mask").c_str(), 2);
        EXPECT_TRUE(hasUvs ? masks == 2.0f : masks == -18.0f || masks == -19.0f) << masks;
        ASSERT_EQ(readBytes(path), bytes);
    }
}

}  // namespace
