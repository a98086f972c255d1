// A real model, from its OBJ file to the tiles' meshes: the corners of the tiles, moved back, are the
// model's corners.

#include <gtest/gtest.h>

#include <cstdio>
#include <vector>

#include "bytes/Bytes.h"
#include "host/Quillon.h"
#include "support/Plugin.h"

namespace {

constexpr const char* kSpider = "/usr/share/assimp/models/OBJ/spider.obj";
constexpr std::uint32_t kFaceUvChunk = 25001;

struct Uv {
    float u;
    float v;
};

// The corners of the face UV chunk. Chunks are walked by their lengths from byte 32 on.
std::vector<Uv> cornersOf(const std::string& path) {
    const ByteList bytes = readBytes(path);
    std::size_t chunk = 32;
    while (chunk + 16 <= bytes.size() && loadLe32(&bytes[chunk]) != kFaceUvChunk)
        chunk += loadLe32(&bytes[chunk + 4]);
    std::vector<Uv> corners;
    if (chunk + 16 > bytes.size()) return corners;
    const std::uint32_t count = 4 * loadLe32(&bytes[chunk + 8]);
    for (std::size_t i = 0; i < count; ++i) {
        const std::uint8_t* corner = &bytes.at(chunk + 16 + 8 * i);
        corners.push_back({loadLeFloat(corner), loadLeFloat(corner + 4)});
    }
    return corners;
}

bool isOutside(const Uv& corner) {
    return corner.u == -1.0f && corner.v == -1.0f;
}

class RealModel : public testing::Test {
protected:
    // The corners of the tiles' meshes, each moved back to its tile, in the model's order; how
    // often each corner was found.
    struct Restored {
        std::vector<Uv> corners;
        std::vector<int> found;
    };

    void import(std::vector<std::string> options = {}) {
        std::vector<std::string> arguments = {"import", kSpider, mesh};
        arguments.insert(arguments.end(), options.begin(), options.end());
        ASSERT_EQ(quillon(arguments).exitStatus, 0);
    }
    Restored exportAndRestore(float expectedTiles) const;
    void exportAndCompare(float expectedTiles) const;

    const TempDir dir;
    const std::string mesh = dir.path("spider.in");
};

RealModel::Restored RealModel::exportAndRestore(float expectedTiles) const {
    const Plugin plugin;
    Block out(dir.path("tile.Vemo"));
    const float tiles = plugin.call("getUVs", {.text = mesh.c_str(), .value = 3.0, .buffer1 = out});
    EXPECT_EQ(tiles, expectedTiles);
    Restored restored;
    for (int position = 0; position < static_cast<int>(tiles); ++position) {
        Block name;
        plugin.call("getUVString", {.value = static_cast<double>(position), .buffer1 = name});
        int u = 0;
        int v = 0;
        EXPECT_EQ(std::sscanf(name.text().c_str(), "u%dv%d", &u, &v), 2);
        const std::vector<Uv> corners = cornersOf(dir.path("tile" + name.text() + ".Vemo"));
        restored.corners.resize(corners.size());
        restored.found.resize(corners.size());
        for (std::size_t i = 0; i < corners.size(); ++i) {
            if (isOutside(corners[i])) continue;
            restored.corners[i] = {corners[i].u + static_cast<float>(u),
                                   corners[i].v + static_cast<float>(v)};
            ++restored.found[i];
        }
    }
    return restored;
}

void RealModel::exportAndCompare(float expectedTiles) const {
    const std::vector<Uv> model = cornersOf(mesh);
    ASSERT_EQ(model.size(), 4u * 1368);  // the model's 1,368 faces
    const Restored restored = exportAndRestore(expectedTiles);
    ASSERT_EQ(restored.corners.size(), model.size());
    for (std::size_t i = 0; i < model.size(); ++i) {
        ASSERT_EQ(restored.found[i], 1) << i;
        ASSERT_NEAR(restored.corners[i].u, model[i].u, 1e-6) << i;
        ASSERT_NEAR(restored.corners[i].v, model[i].v, 1e-6) << i;
    }
}

TEST_F(RealModel, ATilePerGroupGivesEveryCornerBackOnce) {
    ASSERT_NO_FATAL_FAILURE(import({"--tile-per-group"}));
    exportAndCompare(19.0f);
}

// The model's own UVs reach below 0 and beyond 1. A separate reading of its text finds nine tiles.
TEST_F(RealModel, ItsOwnUvsComeBackOnce) {
    ASSERT_NO_FATAL_FAILURE(import());
    exportAndCompare(9.0f);
}

}  // namespace
