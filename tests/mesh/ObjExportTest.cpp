#include <gmock/gmock.h>
#include <tiny_obj_loader.h>

#include <cstdint>
#include <filesystem>
#include <limits>
#include <sstream>
#include <string>
#include <vector>

#include "mesh/VemoOps.h"
#include "support/ColourBlock.h"
#include "support/FullDevice.h"
#include "support/TempDir.h"
#include "support/VemoBuilder.h"

namespace {

using testing::ElementsAre;
using testing::EndsWith;

class ObjExport : public testing::Test {
protected:
    ObjExport() { countFaces(VemoBuilder().faces({}), 1.0); }

    // Sets the number of faces that each face of a base mesh became.
    float countFaces(const VemoBuilder& base, double level) const {
        return GetFaceIDsVemo(dir.write("base.in", base.bytes()).c_str(), level);
    }
    float write(const ByteList& mesh) const {
        return writeOBJfromVemo(dir.write("mesh.in", mesh).c_str(), dir.path("out.obj").data());
    }
    float write(const VemoBuilder& mesh) const { return write(mesh.bytes()); }

    std::string text() const { return readText(dir.path("out.obj")); }

    // How many faces follow each line "#FaceID".
    std::vector<int> groupSizes() const {
        std::vector<int> sizes;
        std::istringstream lines(text());
        for (std::string line; std::getline(lines, line);) {
            if (line.starts_with("#FaceID ")) sizes.push_back(0);
            if (line.starts_with("f ")) ++sizes.at(sizes.size() - 1);
        }
        return sizes;
    }

    const TempDir dir;
};

const std::string kStart = "# File exported by Morvane plugin\n#Vertex count ";
const std::string kEmptyBlock = kColourBlockStart + "\n# End of RGB block\n";

constexpr VemoBuilder::Face kQuad = {0, 1, 2, 3};
constexpr VemoBuilder::Face kTriangle = {0, 1, 2, -1};

VemoBuilder faces(std::size_t count, const VemoBuilder::Face& face = kQuad) {
    return VemoBuilder().vertices({}).vertexColours({}).faces(
        std::vector<VemoBuilder::Face>(count, face));
}

VemoBuilder paintedMesh() {
    return VemoBuilder()
        .vertices({{0, 0, 0}, {1, 0.5f, 0}, {1, 1, -2.25f}})
        .vertexColours({{0x10, 0x20, 0x30, 0x40}, {0, 0, 0xFF, 0}, {0xFF, 0, 0, 0}})
        .faces({{0, 1, 2, 0}, {2, 1, 0, -1}});
}

TEST_F(ObjExport, WritesCountsVerticesColoursAndGroups) {
    EXPECT_EQ(countFaces(VemoBuilder().faces({kTriangle}), 1.0), 1.0f);
    EXPECT_EQ(write(paintedMesh().closing()), 0.0f);
    EXPECT_EQ(text(), kStart +
                          "3\n"
                          "#Face count 2\n"
                          "v 0 0 0\n"
                          "v 1 0.5 0\n"
                          "v 1 1 -2.25\n" +
                          kColourBlockStart +
                          "#RGB  302010 ff0000 0000ff\n"
                          "# End of RGB block\n"
                          "#FaceID 1\n"
                          "f 1 2 3 1\n"
                          "f 3 2 1\n");
}

TEST_F(ObjExport, AnotherFirstChunkIsReportedBeforeAnythingIsWritten) {
    EXPECT_EQ(write(VemoBuilder().faces({kQuad}).closing()), 20001.0f);
    EXPECT_FALSE(dir.has("out.obj"));
}

TEST_F(ObjExport, AnotherSecondOrThirdChunkIsReportedAfterWhatComesBeforeIt) {
    const VemoBuilder oneVertex = VemoBuilder().vertices({{1, 2, 3}});
    const struct {
        VemoBuilder mesh;
        float status;
        std::string text;
    } rows[] = {
        {VemoBuilder(oneVertex).flatFaceUvs({{0.5f, 0.5f}}).faces({kQuad, kQuad}), 25001.0f,
         kStart + "1\n#Face count 2\nv 1 2 3\n"},
        {VemoBuilder().vertices({}).vertexColours({}).groups({1, 2}), 40001.0f,
         kStart + "0\n#Face count 2\n" + kEmptyBlock},
        // Without a third chunk there is no count of faces.
        {VemoBuilder().vertices({}).faces({kQuad}), 20001.0f, kStart + "0\n#Face count 0\n"},
        // The closing header of a mesh that ends early has the id 0.
        {VemoBuilder(oneVertex).closing(), 0.0f, kStart + "1\n#Face count 0\nv 1 2 3\n"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(write(row.mesh), row.status);
        EXPECT_EQ(text(), row.text);
    }
}

// The lengths lead to the number of faces in the second line, the counts to the chunks themselves.
TEST_F(ObjExport, WrongLengthsDoNotMoveTheChunks) {
    EXPECT_EQ(countFaces(VemoBuilder().faces({kQuad}), 1.0), 1.0f);
    EXPECT_EQ(write(VemoBuilder()
                        .chunk(10001, 0xFFFFFFFF, 0)
                        .chunk(35001, 0xFFFFFFFF, 0)
                        .faces({kTriangle})),
              0.0f);
    EXPECT_EQ(text(), kStart + "0\n#Face count 0\n" + kEmptyBlock + "#FaceID 1\nf 1 2 3\n");
}

TEST_F(ObjExport, AMissingMeshWritesNothing) {
    EXPECT_EQ(writeOBJfromVemo(dir.path("none").c_str(), dir.path("out.obj").data()), -1760.0f);
    EXPECT_FALSE(dir.has("out.obj"));
}

TEST_F(ObjExport, AnObjThatCannotBeCreatedIsReported) {
    const std::string mesh = dir.write("mesh.in", paintedMesh().bytes());
    EXPECT_EQ(writeOBJfromVemo(mesh.c_str(), dir.path("no/out.obj").data()), -2.0f);
}

TEST_F(ObjExport, ADiskThatIsFullIsNotReported) {
    NEEDS_FULL_DEVICE();
    std::filesystem::create_symlink("/dev/full", dir.path("out.obj"));
    EXPECT_EQ(write(paintedMesh()), 0.0f);
}

// The faces end at byte 160; the repeated byte makes up for one that is missing.
TEST_F(ObjExport, AMeshCutShortIsRefusedBeforeAnythingIsWritten) {
    const ByteList whole = paintedMesh().bytes();
    for (std::size_t length = 0; length <= whole.size(); ++length) {
        const ByteList mesh = firstBytes(whole, length);
        EXPECT_EQ(write(mesh), length < 159 ? -18.0f : 0.0f) << length;
        ASSERT_EQ(dir.has("out.obj"), length >= 159) << length;
        ASSERT_EQ(readBytes(dir.path("mesh.in")), mesh) << length;
    }
}

TEST_F(ObjExport, AnyNegativeFourthIndexIsATriangle) {
    constexpr std::int32_t kLowest = std::numeric_limits<std::int32_t>::min();
    EXPECT_EQ(countFaces(VemoBuilder().faces({{0, 0, 0, kLowest}}), 1.0), 1.0f);
    EXPECT_EQ(write(faces(4, {6, 7, 8, kLowest})), 0.0f);
    EXPECT_THAT(text(), EndsWith("#FaceID 1\nf 7 8 9\nf 7 8 9\nf 7 8 9\n"));
}

TEST_F(ObjExport, VertexNumbersOutsideTheMeshAreWrittenAsTheyAre) {
    EXPECT_EQ(countFaces(VemoBuilder().faces({kQuad}), 1.0), 1.0f);
    EXPECT_EQ(write(faces(1, {2147483647, -1, -2147483647, 0})), 0.0f);
    EXPECT_THAT(text(), EndsWith("#FaceID 1\nf 2147483648 0 -2147483646 1\n"));
}

TEST_F(ObjExport, CountsOutlastAFailureAndAreUsedOnce) {
    EXPECT_EQ(countFaces(VemoBuilder().faces({kQuad}), 1.0), 1.0f);
    EXPECT_EQ(write(VemoBuilder().vertices({}).vertexColours({}).groups({1})), 40001.0f);
    EXPECT_EQ(write(VemoBuilder().vertices({}).closing()), 0.0f);
    EXPECT_EQ(write(faces(1)), 0.0f);
    EXPECT_THAT(groupSizes(), ElementsAre(1));
    EXPECT_EQ(write(faces(1)), 0.0f);
    EXPECT_THAT(groupSizes(), ElementsAre());
}

// A base mesh of a quad and a triangle, a mesh of 100 faces.
TEST_F(ObjExport, TheLevelGivesTheFacesPerBaseFace) {
    constexpr double kInf = std::numeric_limits<double>::infinity();
    constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
    const struct {
        double level;
        std::vector<int> groups;
    } kCases[] = {
        {1.0, {4, 3}},   {2.0, {16, 12}}, {3.0, {64, 36}},  // 48, but for the end of the mesh
        {1.25, {4, 3}},                                     // 1.41 a corner
        {1.5, {8, 6}},   {1.75, {8, 6}},                    // 2 and 2.83 a corner
        {0.99, {0, 0}},  {0.0, {0, 0}},   {-5.0, {0, 0}},  {-1e308, {0, 0}},
        {-kInf, {0, 0}}, {kNan, {0, 0}},  //
        {16.0, {100}},   {17.0, {100}},   {1e308, {100}},  {kInf, {100}},
    };
    for (const auto& row : kCases) {
        SCOPED_TRACE(row.level);
        EXPECT_EQ(countFaces(VemoBuilder().faces({kQuad, kTriangle}), row.level), 2.0f);
        EXPECT_EQ(write(faces(100)), 0.0f);
        EXPECT_EQ(groupSizes(), row.groups);
    }
}

TEST_F(ObjExport, TheBaseMeshsFacesAreItsFirstChunkWhateverItsId) {
    EXPECT_EQ(countFaces(VemoBuilder().chunk(7, 0, 1, ByteList(16)), 1.0), 1.0f);
    EXPECT_EQ(write(faces(9)), 0.0f);
    EXPECT_THAT(groupSizes(), ElementsAre(4));
}

TEST_F(ObjExport, AMissingBaseMeshLeavesNoCounts) {
    EXPECT_EQ(countFaces(VemoBuilder().faces({kQuad}), 1.0), 1.0f);
    EXPECT_EQ(GetFaceIDsVemo(dir.path("none").c_str(), 1.0), -1760.0f);
    EXPECT_EQ(write(faces(1)), 0.0f);
    EXPECT_THAT(groupSizes(), ElementsAre());
}

// The faces end at byte 80; the repeated byte makes up for one that is missing.
TEST_F(ObjExport, ABaseMeshCutShortLeavesNoCounts) {
    const ByteList whole = VemoBuilder().faces({kQuad, kQuad}).bytes();
    for (std::size_t length = 0; length <= whole.size(); ++length) {
        const ByteList base = firstBytes(whole, length);
        const std::string path = dir.write("base.in", base);
        EXPECT_EQ(GetFaceIDsVemo(path.c_str(), 1.0), length < 79 ? -18.0f : 2.0f) << length;
        EXPECT_EQ(write(faces(8)), 0.0f);
        EXPECT_EQ(groupSizes().size(), length < 79 ? 0u : 2u) << length;
        ASSERT_EQ(readBytes(path), base) << length;
    }
}

// tinyobjloader reads what was written: coordinates of up to six digits come back as they were.
TEST_F(ObjExport, AnotherReaderFindsTheSameMesh) {
    std::vector<VemoBuilder::Vertex> vertices;
    std::vector<VemoBuilder::Face> quads;
    for (std::int32_t i = 0; i < 20'000; ++i) {
        const auto x = static_cast<float>(i);
        vertices.push_back({x, -0.5f * x, 1e-5f});
        quads.push_back({i, (i + 1) % 20'000, (i + 2) % 20'000, i % 3 == 0 ? -7 : 0});
    }
    EXPECT_EQ(countFaces(VemoBuilder().faces({kQuad}), 9.0), 1.0f);
    EXPECT_EQ(write(VemoBuilder()
                        .vertices(vertices)
                        .vertexColours(std::vector<VemoBuilder::Colour>(20'000))
                        .faces(quads)
                        .closing()),
              0.0f);

    tinyobj::ObjReaderConfig asWritten;
    asWritten.triangulate = false;
    tinyobj::ObjReader reader;
    ASSERT_TRUE(reader.ParseFromFile(dir.path("out.obj"), asWritten)) << reader.Error();
    EXPECT_EQ(reader.Warning(), "");
    const std::vector<float>& read = reader.GetAttrib().vertices;
    ASSERT_EQ(read.size(), 60'000u);
    for (std::size_t i = 0; i < read.size(); ++i)
        ASSERT_FLOAT_EQ(read[i], vertices[i / 3][i % 3]);
    ASSERT_EQ(reader.GetShapes().size(), 1u);
    const tinyobj::mesh_t& mesh = reader.GetShapes()[0].mesh;
    ASSERT_EQ(mesh.num_face_vertices.size(), 20'000u);
    auto corner = mesh.indices.begin();
    for (std::size_t i = 0; i < quads.size(); ++i) {
        const std::size_t corners = i % 3 == 0 ? 3 : 4;
        ASSERT_EQ(mesh.num_face_vertices[i], corners);
        for (std::size_t c = 0; c < corners; ++c, ++corner)
            ASSERT_EQ(corner->vertex_index, quads[i][c]);
    }
}

}  // namespace
