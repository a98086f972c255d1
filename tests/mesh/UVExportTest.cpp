#include <gmock/gmock.h>

#include <cstring>
#include <filesystem>

#include "mesh/VemoOps.h"
#include "support/Append.h"
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

// The floats of a file from a byte on, without the 16 zero bytes at its end.
std::vector<float> floatsFrom(const ByteList& bytes, std::size_t start) {
    std::vector<float> floats;
    for (std::size_t i = start; i + 16 < bytes.size(); i += 4) {
        float value = 0;
        std::memcpy(&value, &bytes[i], 4);
        floats.push_back(value);
    }
    return floats;
}

ByteList concatenated(std::initializer_list<ByteList> parts) {
    ByteList all;
    for (const ByteList& part : parts)
        append(all, part);
    return all;
}

const ByteList kClosing(16, 0);

TEST_F(UVExport, WritesOneMeshPerTileNamedAfterIt) {
    EXPECT_EQ(writeUvs(VemoBuilder().flatFaceUvs({{0.5f, 0.5f}})), 1.0f);
    EXPECT_THAT(dir.names(), ElementsAre("mesh.in", "out1001.Vemo"));
    EXPECT_EQ(nameAt(0), "1001");
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
    EXPECT_THAT(floatsFrom(written("out1001.Vemo"), 48),
                ElementsAre(0.9f, 0.5f, -1, -1, -1, -1, -1, -1));
}

TEST_F(UVExport, ACornerBelowZeroIsCountedFromItsTilesLowerBorder) {
    EXPECT_EQ(writeUvs(VemoBuilder().flatFaceUvs({{-0.25f, 0.5f}}), 0), 1.0f);
    EXPECT_THAT(floatsFrom(written("out_u-1_v0.Vemo"), 48),
                ElementsAre(0.75f, 0.5f, 0.75f, 0.5f, 0.75f, 0.5f, 0.75f, 0.5f));
}

TEST_F(UVExport, AWholeNegativeCoordinateIsNegativeZeroInItsTile) {
    EXPECT_EQ(writeUvs(VemoBuilder().flatFaceUvs({{-1.0f, 0.0f}}), 3), 1.0f);
    const ByteList tile = written("outu-2v0.Vemo");
    EXPECT_EQ(ByteList(tile.begin() + 48, tile.begin() + 56),
              (ByteList{0, 0, 0, 0x80, 0, 0, 0, 0}));
}

TEST_F(UVExport, TilesAreWrittenInTheOrderOfTheirNames) {
    const VemoBuilder mesh =
        VemoBuilder().flatFaceUvs({{2.5f, 0.5f}, {0.5f, 0.5f}, {0.5f, 1.5f}, {10.5f, 5.5f}});
    EXPECT_EQ(writeUvs(mesh), 4.0f);
    EXPECT_EQ(nameAt(0), "1001");
    EXPECT_EQ(nameAt(1), "1003");
    EXPECT_EQ(nameAt(2), "1011");
    EXPECT_EQ(nameAt(3), "1061");
}

TEST_F(UVExport, NamesAreOrderedAsTextNotAsNumbers) {
    EXPECT_EQ(writeUvs(VemoBuilder().flatFaceUvs({{9.5f, 0.5f}, {10.5f, 0.5f}}), 3), 2.0f);
    EXPECT_EQ(nameAt(0), "u10v0");
    EXPECT_EQ(nameAt(1), "u9v0");
}

// Both places have the number 1011; the one that comes first in the file gives the tile its place.
TEST_F(UVExport, OfTilesWithOneNumberTheFirstInTheFileIsWritten) {
    EXPECT_EQ(writeUvs(VemoBuilder().flatFaceUvs({{10.5f, 0.5f}, {0.25f, 1.5f}})), 1.0f);
    EXPECT_THAT(floatsFrom(written("out1011.Vemo"), 48),
                ElementsAre(0.5f, 0.5f, 0.5f, 0.5f, 0.5f, 0.5f, 0.5f, 0.5f,  //
                            -1, -1, -1, -1, -1, -1, -1, -1));
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
    for (int i = 0; i < 100; ++i) {
        uvs.push_back({static_cast<float>(i % 10) + 0.5f, static_cast<float>(i / 10) + 0.25f});
    }
    EXPECT_EQ(writeUvs(VemoBuilder().flatFaceUvs(uvs)), 100.0f);
    for (std::size_t i = 0; i < 100; ++i) {
        const std::string name = std::to_string(1001 + i);
        EXPECT_EQ(nameAt(static_cast<int>(i)), name);
        const std::vector<float> local = floatsFrom(written("out" + name + ".Vemo"), 48);
        ASSERT_EQ(local.size(), 800u);
        EXPECT_EQ(local[8 * i], 0.5f);
        EXPECT_EQ(local[8 * i + 1], 0.25f);
        EXPECT_EQ(std::count(local.begin(), local.end(), -1.0f), 792);
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

TEST_F(UVExport, AMeshWithoutFacesWritesNothing) {
    EXPECT_EQ(writeUvs(VemoBuilder().faceUvs({})), 0.0f);
    EXPECT_THAT(dir.names(), ElementsAre("mesh.in"));
    EXPECT_EQ(nameAt(0), "none");
}

TEST_F(UVExport, AMissingOutputFolderStopsAtTheFirstTile) {
    const std::string input = mesh(VemoBuilder().flatFaceUvs({{0.5f, 0.5f}}));
    EXPECT_EQ(GetUVsFromVemo(input.c_str(), dir.path("no/out").c_str(), 2), 1501.0f);
    EXPECT_EQ(GetUVsFromVemoMASK(mesh(VemoBuilder()
                                          .vertices({{1, 2, 3}})
                                          .faces({{0, 0, 0, 0}})
                                          .flatFaceUvs({{0.5f, 0.5f}})
                                          .closing())
                                     .c_str(),
                                 dir.path("no/out").c_str(), 2),
              1501.0f);
    EXPECT_EQ(nameAt(0), "none");
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

TEST_F(UVExport, ATileThatTheDiskCannotTakeIsTheOneReported) {
    std::filesystem::create_symlink("/dev/full", dir.path("out1002.Vemo"));
    const VemoBuilder mesh = VemoBuilder().flatFaceUvs({{0.5f, 0.5f}, {1.5f, 0.5f}, {2.5f, 0.5f}});
    EXPECT_EQ(writeUvs(mesh), 1502.0f);
    EXPECT_EQ(written("out1001.Vemo").size(), mesh.bytes().size() + 16);
    EXPECT_THAT(dir.names(), ElementsAre("mesh.in", "out1001.Vemo"));
    EXPECT_EQ(nameAt(1), "1002") << "it was begun";
    EXPECT_EQ(nameAt(2), "none");
}

TEST_F(UVExport, AMissingMeshHasAStatusOfItsOwn) {
    const std::string missing = dir.path("missing");
    EXPECT_EQ(GetUVsFromVemo(missing.c_str(), dir.path("out").c_str(), 0), -1760.0f);
    EXPECT_EQ(GetUVsFromVemoMASK(missing.c_str(), dir.path("out").c_str(), 0), -1760.0f);
}

TEST_F(UVExport, AMeshWithoutWholeUvsIsRefusedBeforeAnythingIsWritten) {
    EXPECT_EQ(writeUvs(VemoBuilder().vertices({{1, 2, 3}})), -18.0f);
    EXPECT_EQ(writeUvs(VemoBuilder().chunk(25001, 80, 2, ByteList(32))), -18.0f);
    EXPECT_THAT(dir.names(), ElementsAre("mesh.in"));
}

TEST_F(UVExport, EachExportForgetsTheNamesOfTheOneBefore) {
    EXPECT_EQ(writeUvs(VemoBuilder().flatFaceUvs({{0.5f, 0.5f}, {1.5f, 0.5f}})), 2.0f);
    EXPECT_EQ(GetUVsFromVemo(dir.path("missing").c_str(), dir.path("out").c_str(), 0), -1760.0f);
    EXPECT_EQ(nameAt(0), "none");
}

TEST_F(UVExport, APositionThatDoesNotExistChangesNothing) {
    EXPECT_EQ(writeUvs(VemoBuilder().flatFaceUvs({{0.5f, 0.5f}})), 1.0f);
    EXPECT_EQ(nameAt(1), "none");
    EXPECT_EQ(nameAt(-1), "none");
    getUVTileString(0, nullptr);
    clearUVTileString();
    EXPECT_EQ(nameAt(0), "none");
}

// Two tiles, the second one over the mesh: both are written from what the mesh held.
TEST_F(UVExport, AnOutputOverTheInputIsWrittenFromWhatTheInputHeld) {
    const VemoBuilder input = VemoBuilder().flatFaceUvs({{1.5f, 0.5f}, {0.25f, 0.5f}}).groups({1});
    const std::string path = dir.write("body1002.Vemo", input.bytes());
    EXPECT_EQ(GetUVsFromVemo(path.c_str(), dir.path("body.obj").c_str(), 2), 2.0f);
    EXPECT_EQ(written("body1001.Vemo"),
              VemoBuilder().flatFaceUvs({{-1, -1}, {0.25f, 0.5f}}).closing().bytes());
    EXPECT_EQ(readBytes(path),
              VemoBuilder().flatFaceUvs({{0.5f, 0.5f}, {-1, -1}}).closing().bytes());
}

TEST_F(UVExport, AnOutputThatIsALinkToTheInputIsWrittenFromWhatTheInputHeld) {
    const std::string path =
        dir.write("mesh.Vemo", VemoBuilder().flatFaceUvs({{1.5f, 0.5f}}).groups({1}).bytes());
    std::filesystem::create_hard_link(path, dir.path("body1002.Vemo"));
    EXPECT_EQ(GetUVsFromVemo(path.c_str(), dir.path("body.obj").c_str(), 2), 1.0f);
    EXPECT_EQ(readBytes(path), VemoBuilder().flatFaceUvs({{0.5f, 0.5f}}).closing().bytes());
}

VemoBuilder quadAndTriangle() {
    return VemoBuilder()
        .vertices({{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}, {2, 0, 0}, {9, 9, 9}})
        .faces({{0, 1, 2, 3}, {1, 4, 2, -1}})
        .flatFaceUvs({{0.5f, 0.5f}, {1.5f, 0.5f}})
        .closing();
}

TEST_F(UVExport, AMaskFileIsTheMeshWithAMaskBeforeItsClosing) {
    const VemoBuilder input = quadAndTriangle();
    EXPECT_EQ(writeMasks(input), 2.0f);
    const ByteList mesh(input.bytes().begin(), input.bytes().end() - 16);
    const ByteList maskHeader = {0x31, 0x75, 0, 0, 22, 0, 0, 0, 6, 0, 0, 0, 0, 0, 0, 0};
    EXPECT_EQ(written("out1001.Vemo"),
              concatenated({mesh, maskHeader, {0, 0, 0, 0, 255, 255}, kClosing}));
    EXPECT_EQ(written("out1002.Vemo"),
              concatenated({mesh, maskHeader, {255, 0, 0, 255, 0, 255}, kClosing}));
    EXPECT_EQ(nameAt(0), "1001");
    EXPECT_EQ(nameAt(1), "1002");
}

TEST_F(UVExport, AMaskThatTheDiskCannotTakeIsTheOneReported) {
    std::filesystem::create_symlink("/dev/full", dir.path("out1002.Vemo"));
    EXPECT_EQ(writeMasks(quadAndTriangle()), 1502.0f);
    EXPECT_THAT(dir.names(), ElementsAre("mesh.in", "out1001.Vemo"));
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

TEST_F(UVExport, AQuadMayEndWithTheFirstVertex) {
    EXPECT_EQ(writeMasks(VemoBuilder()
                             .vertices({{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}})
                             .faces({{1, 2, 3, 0}})
                             .flatFaceUvs({{0.5f, 0.5f}})
                             .closing()),
              1.0f);
    const ByteList file = written("out1001.Vemo");
    EXPECT_EQ(ByteList(file.end() - 20, file.end() - 16), (ByteList{0, 0, 0, 0}));
}

TEST_F(UVExport, MasksNeedAllThreeChunks) {
    const auto uvs = [](VemoBuilder vemo) { return vemo.flatFaceUvs({{0.5f, 0.5f}}).closing(); };
    EXPECT_EQ(writeMasks(uvs(VemoBuilder().faces({{0, 0, 0, 0}}))), -18.0f);
    EXPECT_EQ(writeMasks(uvs(VemoBuilder().vertices({{1, 2, 3}}))), -19.0f);
    EXPECT_EQ(writeMasks(VemoBuilder().vertices({{1, 2, 3}}).faces({{0, 0, 0, 0}}).closing()),
              -18.0f);
    EXPECT_THAT(dir.names(), ElementsAre("mesh.in"));
}

TEST_F(UVExport, MasksNeedTheChunksInTheirOrder) {
    EXPECT_EQ(writeMasks(VemoBuilder()
                             .faces({{0, 0, 0, 0}})
                             .vertices({{1, 2, 3}})
                             .flatFaceUvs({{0.5f, 0.5f}})
                             .closing()),
              -19.0f);
}

TEST_F(UVExport, AFaceThatNamesNoVertexIsRefusedBeforeAnythingIsWritten) {
    for (const VemoBuilder::Face& face :
         {VemoBuilder::Face{0, 1, 0, 0}, {-1, 0, 0, 0}, {0, 0, 0, 1}, {0, 0, INT32_MIN, -1}}) {
        EXPECT_EQ(writeMasks(VemoBuilder()
                                 .vertices({{1, 2, 3}})
                                 .faces({face})
                                 .flatFaceUvs({{0.5f, 0.5f}})
                                 .closing()),
                  -19.0f);
    }
    EXPECT_THAT(dir.names(), ElementsAre("mesh.in"));
}

TEST_F(UVExport, AnyNegativeFourthIndexIsATriangle) {
    EXPECT_EQ(writeMasks(VemoBuilder()
                             .vertices({{1, 2, 3}})
                             .faces({{0, 0, 0, INT32_MIN}})
                             .flatFaceUvs({{0.5f, 0.5f}})
                             .closing()),
              1.0f);
}

TEST_F(UVExport, MasksNeedOneFaceUvPerFace) {
    EXPECT_EQ(writeMasks(VemoBuilder()
                             .vertices({{1, 2, 3}})
                             .faces({{0, 0, 0, 0}, {0, 0, 0, 0}})
                             .flatFaceUvs({{0.5f, 0.5f}})
                             .closing()),
              -18.0f);
}

TEST_F(UVExport, AMeshWithoutFacesHasNoMasks) {
    EXPECT_EQ(writeMasks(VemoBuilder().vertices({{1, 2, 3}}).faces({}).flatFaceUvs({}).closing()),
              0.0f);
    EXPECT_EQ(writeMasks(VemoBuilder().vertices({}).faces({}).flatFaceUvs({}).closing()), 0.0f);
    EXPECT_THAT(dir.names(), ElementsAre("mesh.in"));
}

// 1000 vertices, faces or face UVs where the file has room for a few.
TEST_F(UVExport, MasksNeedEveryChunkWhole) {
    for (const std::uint32_t id : {10001u, 20001u, 25001u}) {
        VemoBuilder mesh;
        for (const std::uint32_t chunk : {10001u, 20001u, 25001u})
            mesh.chunk(chunk, 16, chunk == id ? 1000 : 0);
        EXPECT_EQ(writeMasks(mesh.closing()), -18.0f) << id;
    }
    EXPECT_THAT(dir.names(), ElementsAre("mesh.in"));
}

// Every truncated length in a file of its own, so that the sanitizer sees the edge: none may crash,
// and the mesh itself never changes.
TEST_F(UVExport, ATruncatedMeshIsNeverReadPastItsEnd) {
    const ByteList whole = quadAndTriangle().groups({1, 2}).bytes();
    for (std::size_t length = 0; length <= whole.size(); ++length) {
        const ByteList bytes(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(length));
        const std::string path = dir.write("short.in", bytes);
        char name[64];
        GetUVTile(path.c_str(), name, 2);
        GetUVGroup(path.c_str());
        const float uvs = GetUVsFromVemo(path.c_str(), dir.path("uv").c_str(), 2);
        const float masks = GetUVsFromVemoMASK(path.c_str(), dir.path("mask").c_str(), 2);
        // The UVs end at byte 248; one byte less is made good by the repeated one.
        EXPECT_EQ(uvs, length < 247 ? -18.0f : 2.0f) << length;
        if (length >= 247) {
            EXPECT_EQ(masks, 2.0f) << length;
        } else {
            EXPECT_LT(masks, 0.0f) << length;
        }
        ASSERT_EQ(readBytes(path), bytes) << length;
    }
}

}  // namespace
