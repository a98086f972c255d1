#include <gmock/gmock.h>

#include "host/ExportedQuads.h"

namespace {

using ::testing::ElementsAre;
using ::testing::EndsWith;
using ::testing::FloatEq;
using ::testing::HasSubstr;
using ::testing::StartsWith;

std::vector<float> floatsAt(const ByteList& bytes, std::size_t offset, std::size_t count) {
    std::vector<float> floats;
    for (std::size_t i = 0; i < count; ++i)
        floats.push_back(loadLeFloat(&bytes.at(offset + 4 * i)));
    return floats;
}

struct Import : ::testing::Test {
    // Imports a model and returns the mesh file's bytes.
    ByteList import(std::string_view obj, const Words& options = {}) const {
        const Ended ended =
            quillon({"import", dir.write("model.obj", obj), dir.path("m.Vemo")}, options);
        EXPECT_EQ(ended.exitStatus, 0) << ended.err;
        EXPECT_EQ(ended.err, "");
        return readBytes(dir.path("m.Vemo"));
    }

    // The sentence with which an import stops; no mesh file may be there.
    std::string failure(const std::string& model) const {
        const Ended ended = quillon({"import", model, dir.path("m.Vemo")});
        EXPECT_EQ(ended.exitStatus, 1);
        EXPECT_EQ(ended.out, "");
        EXPECT_FALSE(dir.has("m.Vemo"));
        return ended.err;
    }
    std::string failureOf(std::string_view obj) const {
        return failure(dir.write("model.obj", obj));
    }

    TempDir dir;
};

constexpr const char* kPolygons =
    "v 0 0 0\nv 1 0 0\nv 1 1 0\nv 0 1 0\nv 2 0.5 0\n"
    "vt 0 0\nvt 0.5 0\nvt 0.5 1\nvt 0 1\nvt 0.75 0.5\n"
    "g quad\nf 1/1 2/2 3/3 4/4\n"
    "g triangle\nf 2/2 5/5 3/3\n"
    "g pentagon\nf 1/1 2/2 5/5 3/3 4/4\n";

// The pentagon becomes a quad and a triangle. A triangle's fourth UV repeats its third.
TEST_F(Import, WritesVerticesFacesUvsGroupsAndTheClosingHeader) {
    ByteList want = VemoBuilder()
                        .vertices({{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}, {2, 0.5f, 0}})
                        .faces({{0, 1, 2, 3}, {1, 4, 2, -1}, {0, 1, 4, 2}, {0, 2, 3, -1}})
                        .faceUvs({{0, 0, 0.5f, 0, 0.5f, 1, 0, 1},
                                  {0.5f, 0, 0.75f, 0.5f, 0.5f, 1, 0.5f, 1},
                                  {0, 0, 0.5f, 0, 0.75f, 0.5f, 0.5f, 1},
                                  {0, 0, 0.5f, 1, 0, 1, 0, 1}})
                        .groups({0, 1, 2, 2})
                        .closing()
                        .bytes();
    std::fill_n(want.begin(), 32, std::uint8_t{0});  // what is never read
    EXPECT_EQ(import(kPolygons), want);
}

// Three triangles, of which the last one belongs to the first one's group again. A model with one
// group has its materials as groups, also without the file that describes them.
TEST_F(Import, GroupsAreNumberedByTheirFirstFaces) {
    const std::string corners = "v 0 0 0\nv 1 0 0\nv 1 1 0\nvt 0 0\n";
    for (const std::string faces :
         {"g a\nf 1/1 2/1 3/1\ng b\nf 1/1 3/1 2/1\ng a\nf 3/1 2/1 1/1\n",
          "mtllib none.mtl\nusemtl blue\nf 1/1 2/1 3/1\nusemtl red\nf 1/1 3/1 2/1\n"
          "usemtl blue\nf 3/1 2/1 1/1\n"}) {
        const ByteList mesh = import(corners + faces);
        ASSERT_EQ(mesh.size(), 32u + 52 + 64 + 112 + 22 + 16);
        EXPECT_THAT(ByteList(mesh.begin() + 276, mesh.begin() + 282),
                    ElementsAre(0, 0, 1, 0, 0, 0));
    }
}

// A triangle in each of `count` groups, with the three UVs given.
std::string groups(int count, const std::string& uvs) {
    std::string obj = "v 0 0 0\nv 1 0 0\nv 0 1 0\n" + uvs;
    for (int i = 0; i < count; ++i)
        obj += "g g" + std::to_string(i) + "\nf 1/1 2/2 3/3\n";
    return obj;
}

// The UVs start behind the header, three vertices and `faces` faces.
constexpr std::size_t uvOffset(std::size_t faces) {
    return 32 + 52 + 16 + 16 * faces + 16;
}

TEST_F(Import, GroupsMoveToTheirOwnTilesByWholeTiles) {
    const ByteList mesh =
        import(groups(2, "vt 3.25 -1.75\nvt 3.5 -1.75\nvt 3.25 -1.5\n"), {"--tile-per-group"});
    EXPECT_THAT(floatsAt(mesh, uvOffset(2), 6),
                ElementsAre(0.25f, 0.25f, 0.5f, 0.25f, 0.25f, 0.5f));
    EXPECT_THAT(floatsAt(mesh, uvOffset(2) + 32, 6),
                ElementsAre(1.25f, 0.25f, 1.5f, 0.25f, 1.25f, 0.5f));
}

TEST_F(Import, TheUpperBorderStaysWithinTheTile) {
    const ByteList mesh = import(groups(12, "vt 0 0\nvt 1 0\nvt 0 1\n"), {"--tile-per-group"});
    EXPECT_THAT(floatsAt(mesh, uvOffset(12), 6),
                ElementsAre(0, 0, 0.9999847412109375f, 0, 0, 0.9999847412109375f));
    EXPECT_THAT(floatsAt(mesh, uvOffset(12) + 9 * 32, 4),
                ElementsAre(9, 0, 9.9999847412109375f, 0));
    EXPECT_THAT(floatsAt(mesh, uvOffset(12) + 11 * 32, 6),
                ElementsAre(1, 1, 1.9999847412109375f, 1, 1, 1.9999847412109375f));
}

TEST_F(Import, AGroupLargerThanATileIsMadeSmallerAsAWhole) {
    const ByteList mesh = import(groups(1, "vt -1 0\nvt 3 0\nvt -1 1\n"), {"--tile-per-group"});
    EXPECT_THAT(floatsAt(mesh, uvOffset(1), 6),
                ElementsAre(0, 0, FloatEq(0.99998474f), 0, 0, FloatEq(0.24999619f)));
}

TEST_F(Import, AGroupAcrossABorderIsMovedWithoutBeingMadeLarger) {
    const ByteList mesh =
        import(groups(1, "vt 0.75 0\nvt 1.25 0\nvt 0.75 0.5\n"), {"--tile-per-group"});
    EXPECT_THAT(floatsAt(mesh, uvOffset(1), 6), ElementsAre(0, 0, 0.5f, 0, 0, 0.5f));
}

// grep counts the vertices, faces and groups; a separate reading of the UVs in Python, which reach below
// 0 and beyond 1, finds nine tiles and the faces in several of them.
TEST_F(Import, ReadsARealModel) {
    const std::string mesh = dir.path("m.Vemo");
    const Words import = {"import", "/usr/share/assimp/models/OBJ/spider.obj", mesh};
    const std::string out = quillon(import).out;
    EXPECT_THAT(out, StartsWith(mesh + ": vertices 762, quads 0, triangles 1368, groups 19\n"));
    EXPECT_THAT(out, HasSubstr("\n  group Bein1Re: tiles 1001 1002 1011\n"));
    EXPECT_THAT(out, HasSubstr("\n  group Zahn: tile 1001\n"));
    EXPECT_THAT(
        out, HasSubstr("\n317 faces reach out of their tiles and are not painted: face 20 (group "
                       "HLeib01), face 21 (group HLeib01), face 23 (group HLeib01) and 314 more\n"
                       "to paint those that end exactly where the next tile begins (235), import "
                       "the model with --clamp-uv\n"
                       "to paint those that reach further (82), move their UVs into one tile, or "
                       "import the model with --tile-per-group\n"));
    EXPECT_THAT(quillon({"call", "getUVTile", mesh}).out, StartsWith("status   9\n"));
    EXPECT_THAT(quillon(import, {"--tile-per-group"}).out,
                EndsWith("\n  group Auge: tile 1018\n  group Duplicate05: tile 1019\n"));
    EXPECT_THAT(quillon({"call", "getUVTile", mesh}).out, StartsWith("status   19\n"));
}

TEST_F(Import, RefusesWhatIsNoModelWithAReason) {
    EXPECT_EQ(failure(dir.path("none.obj")),
              "quillon: there is no model " + dir.path("none.obj") + "\n");
    EXPECT_EQ(failure(dir.path()), "quillon: " + dir.path() + " is not a file\n");
    EXPECT_THAT(failureOf(""), HasSubstr("has no faces"));
    EXPECT_THAT(failureOf(std::string_view("\0\xFF\x01v f\0", 7)), HasSubstr("has no faces"));
}

// Each row: lines 5 and 6 of a model, and the end of the error.
TEST_F(Import, RefusesABrokenModelWithALineAndAReason) {
    constexpr const char* kNoVertex = "line 5: the face names a vertex that does not exist\n";
    constexpr const char* kNoUvs = "line 5: the face has no UVs; give the model UVs first\n";
    const std::vector<std::pair<std::string, const char*>> kCases = {
        {"f 1/1 2/1 4/1", kNoVertex},
        {"f 1/1 2/1 -9/1", kNoVertex},
        {"f 1/1 2/1 3/1 -9/1", kNoVertex},
        {"f 0/1 2/1 3/1", kNoVertex},
        {"f 1/1 2/1 3/2", "line 5: the face names UVs that do not exist\n"},
        {"f 1 2 3", kNoUvs},
        {"f 1/1 2/1 3//1", kNoUvs},
        {"v a b c", "line 5: \"a\" is not a finite number\n"},
        {"v 1 nan 0", "line 5: \"nan\" is not a finite number\n"},
        {"v 1 0 -inf", "line 5: \"-inf\" is not a finite number\n"},
        {"v 1e999 0 0", "line 5: \"1e999\" is not a finite number\n"},
        {"v 1e39 0 0", "line 5: \"1e39\" is too large for a 32-bit float\n"},
        {"v 1 2", "line 5: the line needs 3 numbers and has 2\n"},
        {"vt 0,5 0,5", "line 5: \"0,5\" is not a finite number; write decimals with a point\n"},
        {"vt 0.5\t", "line 5: the line needs 2 numbers and has 1\n"},
        {"vt 0 1e30", "line 5: \"1e30\" is too far from 0: UVs reach up to 1000000\n"},
        {"v 0 \\\n0 0\nvt x 0", "line 7: \"x\" is not a finite number\n"},
    };
    for (const auto& [lines, sentence] : kCases)
        EXPECT_THAT(failureOf("v 0 0 0\nv 1 0 0\nv 1 1 0\nvt 0 0\n" + lines + "\nf 1/1 2/1 3/1\n"),
                    EndsWith("model.obj, " + std::string(sentence)));
}

// Each row: the same model, written in another way.
TEST_F(Import, ReadsLinesHoweverTheyAreWritten) {
    const ByteList want = import("v 0 0 0\nv 1 0 0\nv 1 1 0\nvt 0 0\nf 1/1 2/1 3/1\n");
    for (const char* const text :
         {"\xEF\xBB\xBFv 0 0 0\nv 1 0 0\nv 1 1 0\nvt 0 0\nf 1/1 2/1 3/1",
          "v 0 0 0\rv 1 0 0\rv 1 1 0\rvt 0 0\rf 1/1 2/1 3/1",
          "v 0 0 0\r\nv 1 0 0\r\nv 1 1 0\r\nvt 0 0\r\nf 1/1 2/1 3/1\r\n",
          "v 0 \\\n0 0\nv 1\\\r\n0\\\r0\n  v\t+1. 1e0 1e-999 9\n# C:\\\nvt 0 .0\nf 1/1 2/1 "
          "\\\n3/1\\",
          "f 1/1 2/1 3/1\nf 1/1 2/1\nv 0 0 0 red\nv 1 0 0\nv 1 1 0\nvt 0 0 nan\n"})
        EXPECT_EQ(import(text), want) << text;
}

// A unit square, whose corners at 1 are in the next tiles.
constexpr const char* kUnitSquare =
    "v 0 0 0\nv 1 0 0\nv 1 1 0\nv 0 1 0\nvt 0 0\nvt 1 0\nvt 1 1\nvt 0 1\n"
    "g cloth\nf 1/1 2/2 3/3 4/4\n";

TEST_F(Import, CornersAtTheEndOfATileAreReportedOrMoved) {
    const Words words{"import", dir.write("square.obj", kUnitSquare), dir.path("m.Vemo")};
    EXPECT_EQ(
        quillon(words).out,
        dir.path("m.Vemo") +
            ": vertices 4, quads 1, triangles 0, groups 1\n"
            "  group cloth: tile 1001\n"
            "1 face reaches out of its tile and is not painted: face 0 (group cloth)\n"
            "to paint those that end exactly where the next tile begins (1), import the model "
            "with --clamp-uv\n");
    EXPECT_THAT(quillon(words, {"--json"}).out,
                HasSubstr(R"("groups":1,"tilesOfGroups":[{"group":"cloth","tiles":["1001"]}],)"
                          R"("crossing":{"count":1,"touching":1,"first":[{"face":0,)"
                          R"("group":"cloth"}]},"sharedNames":[]})"));
    EXPECT_THAT(quillon(words, {"--clamp-uv"}).out,
                EndsWith("  group cloth: tile 1001\n"
                         "corners moved below the end of their tiles: 3\n"));
    EXPECT_THAT(quillon(words, {"--clamp-uv", "--json"}).out,
                HasSubstr(R"("clampedCorners":3,"crossing":{"count":0,)"));
}

// Without --clamp-uv the map stays as the background, black. The pixel in the corner, from which merges
// take the background, always does.
TEST_F(Import, AClampedUnitSquareIsPaintedToItsEdges) {
    const std::string model = dir.write("square.obj", kUnitSquare);
    const Words words{"import", model, dir.path("m.Vemo")};
    for (const bool clamped : {false, true}) {
        quillon(words, clamped ? Words{"--clamp-uv"} : Words{});
        quillon({"export", dir.path("m.Vemo"), "--out", dir.path("maps"), "--size", "16"});
        for (const std::uint32_t x : {1u, 15u})
            EXPECT_EQ(Map(dir.path("maps/m_normal.tif")).rgb(x, 0),
                      clamped ? kFacesZ : kBackground);
    }
}

TEST_F(Import, AFullDiskOrAMissingFolderIsReported) {
    const std::string model = dir.write("model.obj", kPolygons);
    EXPECT_EQ(quillon({"import", model, "/dev/full"}).err,
              "quillon: cannot write /dev/full: No space left on device\n");
    const std::string out = dir.path("none/m.Vemo");
    const Ended ended = quillon({"import", model, out});
    EXPECT_EQ(ended.exitStatus, 1);
    EXPECT_EQ(ended.err, "quillon: cannot write " + out + ": No such file or directory\n");
}

TEST_F(Import, NeverOverwritesTheModelItself) {
    const std::string model = dir.write("model.obj", kPolygons);
    EXPECT_EQ(quillon({"import", model, dir.path("./model.obj")}).exitStatus, 1);
    EXPECT_EQ(readBytes(model).size(), std::string(kPolygons).size());
}

}  // namespace
