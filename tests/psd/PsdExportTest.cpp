#include <gmock/gmock.h>

#include <limits>

#include "export/Quillon.h"
#include "support/PsdFile.h"

namespace {

using testing::ElementsAre;

float call(ExportFunction* exported, const char* text, double value, std::string buffer = {}) {
    return exported(text, value, buffer.empty() ? nullptr : buffer.data(), 0, nullptr, 0, nullptr);
}

TEST(MergeMapsPsd, FoldsTheFirstFileIntoTheSecond) {
    const TempDir dir;
    const std::string tile = dir.write("tile", PsdFile(2, 1).pixels({{9, 9, 9}, {1, 2, 3}}));
    const std::string map = dir.write("map", PsdFile(2, 1).filled(6, 9));
    EXPECT_EQ(call(mergeMapsPSD, tile.c_str(), 0, map), 0.0f);
    EXPECT_THAT(imageData(map), ElementsAre(9, 1, 9, 2, 9, 3));
    EXPECT_EQ(call(mergeMapsPSD, tile.c_str(), 0, dir.path("missing")), -1.0f);
}

TEST(MergeMapsPsd, NullPathsAreRefused) {
    EXPECT_EQ(call(mergeMapsPSD, nullptr, 0, "map"), -9.0f);
    EXPECT_EQ(call(mergeMapsPSD, "tile", 0), -9.0f);
}

// The value is truncated, so a half passes as mode 0, which writes no planes.
TEST(SwapRgbPsd, ValuesAboveZeroAndBelowFourAreTruncatedToTheMode) {
    struct Swap {
        double value;
        ByteList planes;
    };
    for (const auto& [value, planes] :
         {Swap{0.5, {}}, Swap{1.0, {1, 3, 2}}, Swap{2.0, {3, 1, 2}}, Swap{3.9, {2, 3, 1}}}) {
        const TempDir dir;
        const std::string map = dir.write("map", PsdFile(1, 1).planes({1, 2, 3}));
        EXPECT_EQ(call(swapRGBPSD, map.c_str(), value), 0.0f) << value;
        EXPECT_EQ(imageData(map), planes) << value;
    }
}

TEST(SwapRgbPsd, OtherValuesAndNullAreRefused) {
    const TempDir dir;
    const ByteList bytes = PsdFile(1, 1).planes({1, 2, 3});
    const std::string map = dir.write("map", bytes);
    for (const double value : {0.0, -1.0, 4.0, std::numeric_limits<double>::quiet_NaN()})
        EXPECT_EQ(call(swapRGBPSD, map.c_str(), value), -9.0f) << value;
    EXPECT_EQ(call(swapRGBPSD, nullptr, 1.0), -9.0f);
    EXPECT_EQ(readBytes(map), bytes);
}

}  // namespace
