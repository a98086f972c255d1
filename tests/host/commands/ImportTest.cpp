#include <gmock/gmock.h>

#include <cmath>

#include "bytes/Bytes.h"
#include "host/Quillon.h"

namespace {

using ::testing::ElementsAre;
using ::testing::FloatEq;
using ::testing::HasSubstr;

constexpr std::uint32_t kTriangle = 0xFFFFFFFF;

std::vector<std::uint32_t> wordsAt(const ByteList& bytes, std::size_t offset, std::size_t count) {
    std::vector<std::uint32_t> words;
    for (std::size_t i = 0; i < count && offset + 4 <= bytes.size(); ++i, offset += 4)
        words.push_back(loadLe32(&bytes[offset]));
    return words;
}

std::vector<float> floatsAt(const ByteList& bytes, std::size_t offset, std::size_t count) {
    std::vector<float> floats;
    for (const std::uint32_t word : wordsAt(bytes, offset, count))
        floats.push_back(std::bit_cast<float>(word));
    return floats;
}

struct Import : ::testing::Test {
    // Imports a model and returns the mesh file's bytes.
    ByteList import(const std::string& obj, const std::vector<std::string>& options = {}) {
        dir.write("model.obj", obj);
        std::vector<std::string> arguments = {"import", dir.path("model.obj"), dir.path("m.Vemo")};
        arguments.insert(arguments.end(), options.begin(), options.end());
        const Ended ended = quillon(arguments);
        EXPECT_EQ(ended.exitStatus, 0) << ended.err;
        EXPECT_EQ(ended.err, "");
        return readBytes(dir.path("m.Vemo"));
    }

    // The sentence with which an import stops; no mesh file may be there.
    std::string failure(const std::string& model) {
        const Ended ended = quillon({"import", model, dir.path("m.Vemo")});
        EXPECT_EQ(ended.exitStatus, 1);
        EXPECT_EQ(ended.out, "");
        EXPECT_FALSE(dir.has("m.Vemo"));
        return ended.err;
    }
    std::string failureOf(std::string_view obj) { return failure(dir.write("model.obj", obj)); }

    TempDir dir;
};

constexpr const char* kPolygons =
    "v 0 0 0\nv 1 0 0\nv 1 1 0\nv 0 1 0\nv 2 0.5 0\n"
    "vt 0 0\nvt 0.5 0\nvt 0.5 1\nvt 0 1\nvt 0.75 0.5\n"
    "g quad\nf 1/1 2/2 3/3 4/4\n"
    "g triangle\nf 2/2 5/5 3/3\n"
    "g pentagon\nf 1/1 2/2 5/5 3/3 4/4\n";

TEST_F(Import, WritesVerticesFacesUvsGroupsAndTheClosingHeader) {
    const ByteList mesh = import(kPolygons);
    ASSERT_EQ(mesh.size(), 372u);
    EXPECT_THAT(wordsAt(mesh, 0, 8), ElementsAre(0, 0, 0, 0, 0, 0, 0, 0));
    EXPECT_THAT(wordsAt(mesh, 32, 4), ElementsAre(10001, 76, 5, 0));
    EXPECT_THAT(floatsAt(mesh, 96, 3), ElementsAre(2.0f, 0.5f, 0.0f));
    EXPECT_THAT(wordsAt(mesh, 108, 4), ElementsAre(20001, 80, 4, 0));
    EXPECT_THAT(wordsAt(mesh, 188, 4), ElementsAre(25001, 144, 4, 0));
    EXPECT_THAT(wordsAt(mesh, 332, 4), ElementsAre(40001, 24, 4, 0));
    EXPECT_THAT(wordsAt(mesh, 348, 6), ElementsAre(0x00010000, 0x00020002, 0, 0, 0, 0));
}

TEST_F(Import, KeepsQuadsAndTrianglesAndFansOutLargerPolygons) {
    const ByteList mesh = import(kPolygons);
    EXPECT_THAT(wordsAt(mesh, 124, 4), ElementsAre(0, 1, 2, 3));
    EXPECT_THAT(wordsAt(mesh, 140, 4), ElementsAre(1, 4, 2, kTriangle));
    EXPECT_THAT(wordsAt(mesh, 156, 4), ElementsAre(0, 1, 4, 2));
    EXPECT_THAT(wordsAt(mesh, 172, 4), ElementsAre(0, 2, 3, kTriangle));
}

TEST_F(Import, ATrianglesFourthUvRepeatsItsThird) {
    const ByteList mesh = import(kPolygons);
    EXPECT_THAT(floatsAt(mesh, 236, 8),
                ElementsAre(0.5f, 0.0f, 0.75f, 0.5f, 0.5f, 1.0f, 0.5f, 1.0f));
}

TEST_F(Import, MaterialsAreTheGroupsOfAModelWithOneGroup) {
    dir.write("two.mtl", "newmtl red\nnewmtl blue\n");
    const ByteList mesh = import(
        "mtllib two.mtl\nv 0 0 0\nv 1 0 0\nv 1 1 0\nvt 0 0\n"
        "usemtl blue\nf 1/1 2/1 3/1\nusemtl red\nf 1/1 3/1 2/1\nusemtl blue\nf 3/1 2/1 1/1\n");
    ASSERT_EQ(mesh.size(), 32u + 52 + 64 + 112 + 22 + 16);
    EXPECT_THAT(ByteList(mesh.begin() + 276, mesh.begin() + 282), ElementsAre(0, 0, 1, 0, 0, 0));
}

TEST_F(Import, AGroupThatContinuesLaterIsOneGroup) {
    const ByteList mesh = import(
        "v 0 0 0\nv 1 0 0\nv 1 1 0\nvt 0 0\n"
        "g a\nf 1/1 2/1 3/1\ng b\nf 1/1 3/1 2/1\ng a\nf 3/1 2/1 1/1\n");
    EXPECT_THAT(ByteList(mesh.begin() + 276, mesh.begin() + 282), ElementsAre(0, 0, 1, 0, 0, 0));
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

TEST_F(Import, RefusesWhatIsNoModelWithAReason) {
    EXPECT_EQ(failure(dir.path("none.obj")),
              "quillon: there is no model " + dir.path("none.obj") + "\n");
    EXPECT_EQ(failure(dir.path()), "quillon: " + dir.path() + " is not a file\n");
    EXPECT_THAT(failureOf(""), HasSubstr("has no faces"));
    EXPECT_THAT(failureOf(std::string_view("\0\xFF\x01v f\0", 7)), HasSubstr("has no faces"));
}

TEST_F(Import, RefusesABrokenModelWithAReason) {
    const std::string start = "v 0 0 0\nv 1 0 0\nv 1 1 0\nvt 0 0\n";
    EXPECT_THAT(failureOf(start + "f 1/1 2/1 4/1\n"), HasSubstr("vertex that does not exist"));
    EXPECT_THAT(failureOf(start + "f 1/1 2/1 -9/1\n"), HasSubstr("vertex that does not exist"));
    EXPECT_THAT(failureOf(start + "f 1/1 2/1 3/2\n"), HasSubstr("UVs that do not exist"));
    EXPECT_THAT(failureOf(start + "f 0/1 2/1 3/1\n"), HasSubstr("is broken: "));
    EXPECT_THAT(failureOf(start + "v 1e999 0 0\nf 1/1 2/1 3/1\n"), HasSubstr("range of numbers"));
}

TEST_F(Import, RefusesAPolygonOfMoreThan255Corners) {
    std::string obj = "v 0 0 0\nvt 0 0\nf";
    for (int i = 0; i < 259; ++i)
        obj += " 1/1";
    EXPECT_THAT(failureOf(obj + "\n"), HasSubstr("more than 255 corners"));
}

TEST_F(Import, RefusesAModelWithoutUvs) {
    EXPECT_THAT(failureOf("v 0 0 0\nv 1 0 0\nv 1 1 0\nf 1 2 3\n"),
                HasSubstr("has faces without UVs; give them UVs first"));
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
