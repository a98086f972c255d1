// A disk that fills while an export writes many files at once.
#include <gmock/gmock.h>

#include <string>

#include "faults/System.h"
#include "support/Plugin.h"
#include "support/TempDir.h"
#include "support/VemoBuilder.h"

namespace {

constexpr std::size_t kTiles = 40;  // more than are written at the same time

// One face in each of the tiles 1001 to 1040; of the mask export all that it needs.
ByteList mesh() {
    std::vector<std::array<float, 2>> uvs;
    std::vector<VemoBuilder::Face> faces;
    for (std::size_t tile = 0; tile < kTiles; ++tile) {
        uvs.push_back({static_cast<float>(tile % 10) + 0.5f, static_cast<float>(tile / 10) + 0.5f});
        faces.push_back({0, 0, 0, -1});
    }
    return VemoBuilder().vertices({{1, 2, 3}}).faces(faces).flatFaceUvs(uvs).closing().bytes();
}

class FullDiskUVExport : public testing::TestWithParam<const char*> {
protected:
    float exportTo(const TempDir& folder) const {
        Block out(folder.path("t"));
        return plugin.call(GetParam(), {.text = path.c_str(), .value = 2.0, .buffer1 = out});
    }
    std::size_t namesKept() const {
        std::size_t count = 0;
        for (;; ++count) {
            Block name;
            plugin.call("getUVString", {.value = static_cast<double>(count), .buffer1 = name});
            if (name.text() == "untouched") return count;
        }
    }

    const Plugin plugin;
    const TempDir dir;
    const std::string path = dir.write("mesh.Vemo", mesh());
};

TEST_P(FullDiskUVExport, TilesBeforeTheOneReportedAreWholeAndOfTheOthersNothingIsLeft) {
    const TempDir whole;
    ASSERT_EQ(exportTo(whole), static_cast<float>(kTiles));
    const std::vector<std::string> names = whole.names();
    const std::size_t tileBytes = readBytes(whole.path(names.front())).size();

    for (const std::size_t fit : {0u, 1u, 2u, 17u, 31u, 32u, 33u, 39u}) {
        for (const std::size_t space : {fit * tileBytes, (fit + 1) * tileBytes - 1}) {
            SCOPED_TRACE(space);
            const TempDir full;
            {
                const SmallDisk disk(full.path().c_str(), space);
                EXPECT_EQ(exportTo(full), 1501.0f + static_cast<float>(fit));
            }
            EXPECT_EQ(full.names(),
                      std::vector<std::string>(names.begin(),
                                               names.begin() + static_cast<std::ptrdiff_t>(fit)));
            for (const std::string& name : full.names())
                EXPECT_EQ(readBytes(full.path(name)), readBytes(whole.path(name)));
            EXPECT_EQ(namesKept(), fit + 1) << "the tile that failed counts as begun";
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Exports, FullDiskUVExport, testing::Values("getUVs", "getUVsMask"),
                         [](const auto& name) { return std::string(name.param); });

}  // namespace
