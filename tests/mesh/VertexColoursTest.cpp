#include <gmock/gmock.h>

#include <filesystem>
#include <string>

#include "mesh/VemoOps.h"
#include "support/ColourBlock.h"
#include "support/FullDevice.h"
#include "support/TempDir.h"
#include "support/VemoBuilder.h"

namespace {

using testing::ElementsAre;

class VertexColours : public testing::Test {
protected:
    float writeTo(std::string path, const ByteList& mesh) const {
        return ReadVertColorVemo(dir.write("mesh.in", mesh).c_str(), path.data());
    }
    float write(const ByteList& mesh) const { return writeTo(dir.path("out.txt"), mesh); }

    std::string text() const { return readText(dir.path("out.txt")); }

    const TempDir dir;
};

TEST_F(VertexColours, AreTheColoursOfTheFirstChunk) {
    EXPECT_EQ(
        write(VemoBuilder()
                  .vertexColours({{0x10, 0x20, 0x30, 0x40}, {0xFF, 0xFF, 0xFF, 0}, {0, 0xFF, 0, 9}})
                  .closing()
                  .bytes()),
        0.0f);
    EXPECT_EQ(text(), kColourBlockStart + "#RGB  302010 ffffff 00ff00\n# End of RGB block\n");
}

TEST_F(VertexColours, HaveEachDigitInEachPlace) {
    std::vector<VemoBuilder::Colour> colours;
    for (std::uint8_t i = 0; i < 8; ++i) {
        const auto low = static_cast<std::uint8_t>(0x10 * (2 * i) + 2 * i + 1);
        const auto high = static_cast<std::uint8_t>(0x10 * (2 * i + 1) + 2 * i);
        colours.push_back({low, high, low, high});
        colours.push_back({high, low, high, low});
    }
    EXPECT_EQ(write(VemoBuilder().vertexColours(colours).bytes()), 0.0f);
    EXPECT_EQ(text(), kColourBlockStart +
                          "#RGB  011001 100110 233223 322332 455445 544554 677667 766776"
                          " 899889 988998 abbaab baabba cddccd dccddc effeef feeffe"
                          "\n# End of RGB block\n");
}

// A full last row is followed by an empty line.
TEST_F(VertexColours, Are32ARow) {
    std::string row = "#RGB ";
    for (int i = 0; i < 32; ++i)
        row += " ababab";
    const struct {
        std::size_t count;
        std::string rows;
    } kCases[] = {{32, row + "\n"}, {33, row + "\n#RGB  ababab"}, {64, row + "\n" + row + "\n"}};
    for (const auto& test : kCases) {
        const VemoBuilder::Colour colour = {0xAB, 0xAB, 0xAB, 0};
        EXPECT_EQ(write(VemoBuilder().vertexColours(std::vector(test.count, colour)).bytes()),
                  0.0f);
        EXPECT_EQ(text(), kColourBlockStart + test.rows + "\n# End of RGB block\n");
    }
}

TEST_F(VertexColours, MayBeInAFirstChunkOfAnyId) {
    EXPECT_EQ(write(VemoBuilder().chunk(7, 0, 1, {1, 2, 3, 4}).bytes()), 0.0f);
    EXPECT_EQ(text(), kColourBlockStart + "#RGB  030201\n# End of RGB block\n");
}

TEST_F(VertexColours, AMissingMeshWritesNothing) {
    EXPECT_EQ(ReadVertColorVemo(dir.path("none").c_str(), dir.path("out.txt").data()), -1760.0f);
    EXPECT_EQ(ReadVertColorVemo(nullptr, dir.path("out.txt").data()), -1760.0f);
    EXPECT_THAT(dir.names(), ElementsAre());
}

TEST_F(VertexColours, ATextThatCannotBeCreatedIsReported) {
    EXPECT_EQ(writeTo(dir.path("no/out.txt"), VemoBuilder().vertexColours({}).bytes()), -2.0f);
}

TEST_F(VertexColours, ADiskThatIsFullIsNotReported) {
    NEEDS_FULL_DEVICE();
    std::filesystem::create_symlink("/dev/full", dir.path("out.txt"));
    EXPECT_EQ(write(VemoBuilder().vertexColours({{1, 2, 3, 4}}).bytes()), 0.0f);
}

TEST_F(VertexColours, TheMeshItselfMayBeReplaced) {
    const std::string mesh =
        dir.write("out.txt", VemoBuilder().vertexColours({{3, 2, 1, 0}}).bytes());
    EXPECT_EQ(ReadVertColorVemo(mesh.c_str(), std::string(mesh).data()), 0.0f);
    EXPECT_EQ(text(), kColourBlockStart + "#RGB  010203\n# End of RGB block\n");
}

// The colours end at byte 56; the repeated byte makes up for one that is missing.
TEST_F(VertexColours, AMeshCutShortIsRefusedBeforeAnythingIsWritten) {
    const ByteList whole = VemoBuilder().vertexColours({{1, 2, 3, 4}, {5, 6, 7, 8}}).bytes();
    for (std::size_t length = 0; length <= whole.size(); ++length) {
        const ByteList mesh = firstBytes(whole, length);
        EXPECT_EQ(write(mesh), length < 55 ? -18.0f : 0.0f) << length;
        ASSERT_EQ(dir.has("out.txt"), length >= 55) << length;
        ASSERT_EQ(readBytes(dir.path("mesh.in")), mesh) << length;
    }
}

}  // namespace
