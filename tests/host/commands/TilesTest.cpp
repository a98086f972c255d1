#include <gmock/gmock.h>

#include "host/Quillon.h"

namespace {

using ::testing::HasSubstr;

VemoBuilder::FaceUvs square(float left, float bottom, float side) {
    return {left, bottom, left + side, bottom, left + side, bottom + side, left, bottom + side};
}

// A face that fills the first tile, one within it, two in tiles with the same number, and one that
// reaches from the first tile into the next.
struct Tiles : ::testing::Test {
    static ByteList fiveFaces() {
        return VemoBuilder()
            .vertices({{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}})
            .faces(std::vector(5, VemoBuilder::Face{0, 1, 2, 3}))
            .faceUvs({square(0, 0, 1), square(0.25f, 0.25f, 0.5f), square(10, 0, 0.5f),
                      square(0, 1, 0.25f), square(0.5f, 0.5f, 0.75f)})
            .groups({0, 3, 0, 0, 3})
            .closing()
            .bytes();
    }

    TempDir dir;
    std::string mesh = dir.write("m.Vemo", fiveFaces());
};

TEST_F(Tiles, AreListedWithWhatNoMapShows) {
    EXPECT_EQ(
        quillon({"tiles", mesh}).out,
        mesh +
            ": tiles 3, faces 5\n"
            "  mode 0   mode 1   mode 2  mode 3  column  row  faces  reach out  u from    to"
            "  v from    to  groups\n"
            "  _u0_v0   _u1_v1   1001    u0v0         0    0      3          2       0  1.25"
            "       0  1.25  0 3\n"
            "  _u10_v0  _u11_v1  1011    u10v0       10    0      1          0      10  10.5"
            "       0   0.5  0\n"
            "  _u0_v1   _u1_v2   1011    u0v1         0    1      1          0       0  0.25"
            "       1  1.25  0\n"
            "2 faces reach out of their tiles and are not painted: face 0 (group 0), face 4 "
            "(group 3)\n"
            "to paint those that end exactly where the next tile begins (1), import the model "
            "with --clamp-uv\n"
            "to paint those that reach further (1), move their UVs into one tile, or import "
            "the model with --tile-per-group\n"
            "2 tiles are named 1011: column 10 row 0, column 0 row 1; only the first is "
            "painted\n"
            "to paint all of them, export with --naming 0, 1 or 3\n");
}

TEST_F(Tiles, AreThereAsJson) {
    const std::string out = quillon({"tiles", mesh, "--json"}).out;
    EXPECT_THAT(out, HasSubstr(R"({"names":["_u0_v0","_u1_v1","1001","u0v0"],"column":0,"row":0,)"
                               R"("faces":3,"crossing":{"count":2,"touching":1,"first":[)"
                               R"({"face":0,"group":"0"},{"face":4,"group":"3"}]},)"
                               R"("u":{"from":0,"to":1.25},"v":{"from":0,"to":1.25},)"
                               R"("groups":[{"group":0,"faces":1},{"group":3,"faces":2}]})"));
    EXPECT_THAT(out, HasSubstr(R"("sharedNames":[{"name":"1011","tiles":[{"column":10,"row":0},)"
                               R"({"column":0,"row":1}]}])"));
}

TEST_F(Tiles, OfAMeshWithoutGroupsAndCrossingFacesAreATable) {
    mesh = dir.write("two.Vemo", twoQuads());
    EXPECT_EQ(quillon({"tiles", mesh}).out,
              mesh +
                  ": tiles 2, faces 2\n"
                  "  mode 0  mode 1  mode 2  mode 3  column  row  faces  reach out  u from    to"
                  "  v from    to  groups\n"
                  "  _u0_v0  _u1_v1  1001    u0v0         0    0      1          0    0.25  0.75"
                  "    0.25  0.75\n"
                  "  _u1_v0  _u2_v1  1002    u1v0         1    0      1          0    1.25  1.75"
                  "    0.25  0.75\n");
}

}  // namespace
