// The range and the mean of samples that quillon inspect prints. All are worked out by hand; the
// OpenEXR files are written by OpenEXR's own library.

#include <gmock/gmock.h>

#include <limits>
#include <nlohmann/json.hpp>

#include "host/ExrFile.h"
#include "host/Quillon.h"
#include "support/BmpFile.h"
#include "support/PsdFile.h"
#include "support/TiffFile.h"

namespace {

using nlohmann::json;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

constexpr float kNan = std::numeric_limits<float>::quiet_NaN();
constexpr float kInfinity = std::numeric_limits<float>::infinity();

struct Statistics : ::testing::Test {
    json inspected(const std::string& file) const {
        const Ended ended = quillon({"inspect", file, "--json"});
        EXPECT_EQ(ended.exitStatus, 0) << ended.err;
        return json::parse(ended.out);
    }
    // Each channel as "name minimum maximum mean finite nan infinite".
    Words samples(const std::string& file) const {
        Words all;
        const json object = inspected(file);
        for (const json& channel : object["samples"]) {
            std::string line = channel["channel"];
            for (const char* member : {"minimum", "maximum", "mean", "finite", "nan", "infinite"})
                line += ' ' + channel[member].dump();
            all.push_back(line);
        }
        return all;
    }
    Words samples(std::string_view name, const ByteList& bytes) const {
        return samples(dir.write(name, bytes));
    }
    TempDir dir;
};

TEST_F(Statistics, OfHeightMaps) {
    EXPECT_THAT(
        samples("a.tif", TiffFile(3, 2).grey32({0.5f, kNan, -0.1f, kInfinity, 2, -kInfinity})),
        ElementsAre("grey -0.1 2 0.8 3 1 2"));
    EXPECT_THAT(samples("b.tif", TiffFile(2, 1).grey16({7, 65535})),
                ElementsAre("grey 7 65535 32771 2 0 0"));
    EXPECT_THAT(samples("c.psd", PsdFile(1, 2).grey16().planes({0x01, 0x02, 0xFF, 0xFE})),
                ElementsAre("grey 258 65534 32896 2 0 0"));
    EXPECT_THAT(samples("d.tif", TiffFile(1, 1).grey32({kNan})),
                ElementsAre("grey null null null 0 1 0"));
}

TEST_F(Statistics, AreOfEachChannel) {
    EXPECT_THAT(samples("a.tif", TiffFile(2, 1).rgb32({1, 2, 3, 3, 2, kNan})),
                ElementsAre("red 1 3 2 2 0 0", "green 2 2 2 2 0 0", "blue 3 3 3 1 1 0"));
    EXPECT_THAT(
        samples("b.psd", PsdFile(2, 1).depth(16).planes({0, 1, 0, 3, 0, 9, 0, 9, 1, 0, 1, 2})),
        ElementsAre("red 1 3 2 2 0 0", "green 9 9 9 2 0 0", "blue 256 258 257 2 0 0"));
}

// A picture of 8 bits is no map of heights, and compressed samples are not read.
TEST_F(Statistics, AreNotOfOtherFiles) {
    EXPECT_THAT(samples("a.bmp", BmpFile(2, 2)), IsEmpty());
    EXPECT_THAT(samples("b.tif", TiffFile(2, 1).grey16({1, 2}).entry(259, 1, 5)), IsEmpty());
}

TEST_F(Statistics, AreOfTheSamplesThatAFileHas) {
    ByteList bytes = TiffFile(2, 2, TiffFile::Order::kDirectoryFirst).grey32({1, 2, 3, 4});
    bytes.resize(bytes.size() - 5);
    EXPECT_THAT(samples("cut.tif", bytes), ElementsAre("grey 1 2 1.5 2 0 0"));
}

// 70 rows are decoded in three runs.
TEST_F(Statistics, OfTheChannelsOfAnOpenExrFile) {
    std::vector<float> rising(140);
    for (std::size_t i = 0; i < rising.size(); ++i)
        rising[i] = static_cast<float>(i);
    std::vector<float> depth(140, -0.25f);
    depth[139] = kNan;
    const std::string file = dir.path("map.exr");
    writeExr(file, 2, 70, {{"Z", depth}, {"R", rising}, {"A", {rising.rbegin(), rising.rend()}}});
    EXPECT_THAT(samples(file), ElementsAre("A 0 139 69.5 140 0 0", "R 0 139 69.5 140 0 0",
                                           "Z -0.25 -0.25 -0.25 139 1 0"));
    ByteList cut = readBytes(file);
    cut.resize(cut.size() - 100);
    const json broken = inspected(dir.write("cut.exr", cut));
    EXPECT_THAT(broken["samples"], IsEmpty());
    EXPECT_THAT(broken["notes"].dump(), HasSubstr("the samples of " + dir.path("cut.exr")));
    EXPECT_EQ(broken["width"], 2);
}

TEST_F(Statistics, ArePrintedAsLines) {
    const std::string file = dir.write("a.tif", TiffFile(3, 1).grey32({-0.5f, 1, kInfinity}));
    const Ended ended = quillon({"inspect", file});
    EXPECT_THAT(
        ended.out,
        HasSubstr("\n  channel               minimum      maximum         mean        NaN   "
                  "infinite\n"
                  "  grey                     -0.5            1         0.25          0   "
                  "       1\n"));
}

}  // namespace
