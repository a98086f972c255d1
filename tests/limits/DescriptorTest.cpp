// A full table of descriptors, and one with room for a file, or two: what each export returns, and that
// it works again once there is room.

#include <gmock/gmock.h>

#include <algorithm>
#include <map>
#include <string_view>
#include <vector>

#include "faults/Scenarios.h"
#include "support/CaptureStdout.h"
#include "support/Faults.h"

namespace {

// The statuses with no descriptor left, with one, and so forth; with one more the call works as ever.
// An export that is not listed needs none.
const std::map<std::string_view, std::vector<float>> kStatuses = {
    {"CheckFolder", {-1}},
    {"OpenFolder", {-1}},
    {"EmptyFolder", {-1}},
    {"FileCopyTo", {-1, -1}},
    {"setUVtilesOutput", {-1}},
    {"getUVTile", {-17}},
    {"getUVGroups", {-17}},
    {"getUVs", {-1760, 1501}},
    {"getUVsMask", {-1760, 1501}},
    {"mergeCrease", {-2760, -1760, -3760}},
    {"mergeMapsTIF", {-10, -201}},
    {"mergeMapsPSD", {-1, -1, -5}},
    {"mergeMapsBMP", {-1760, -201}},
    {"swapRGBTIF", {-10}},
    {"swapRGBPSD", {-1, -5}},
    {"swapRGBBMP", {-1760}},
    {"convertTIFF16", {-10, -201}},
    {"convertTIFFSingle", {-10, -201}},
    {"getScale", {-10}},
    {"saveAsTarga", {-10, -5, -101}},
    {"saveAsJpeg", {3, -1}},
    {"CreateThumbnailBMP", {-1, 0}},  // 0: "unless it may not be written to"
    {"OpenEXR", {-7}},
};

class FewDescriptors : public testing::TestWithParam<Scenario> {
protected:
    const Scenario& scenario() const { return GetParam(); }

    // The call with room for so many files.
    Result makeWith(int spare) {
        stage_.prepare(scenario());
        const CaptureStdout quiet;
        const DescriptorLimit few(spare);
        return stage_.make(scenario().call);
    }

    // What a failed call leaves: all as it was, but a copy's old target is gone and a Targa file that
    // is begun before the map is opened again has a header alone.
    void expectNothingTouched(Entries expected, int spare) {
        const std::string_view name = scenario().call.exportName;
        Entries found = stage_.entries();
        if (name == "FileCopyTo") expected.erase("b.tif");
        if (name == "saveAsTarga" && spare == 2) {
            EXPECT_GE(found["out.tga"].size(), 18u);
            expected.erase("out.tga");
            found.erase("out.tga");
        }
        EXPECT_TRUE(found == expected) << "with " << spare;
    }

    Stage stage_;
};

TEST_P(FewDescriptors, FailAsAFileThatCannotBeOpenedAndHarmNothing) {
    stage_.prepare(scenario());
    const Entries before = stage_.entries();
    const Outcome clean = stage_.play(scenario());
    stage_.forget();
    const std::ptrdiff_t openBefore = openFiles();

    const auto listed = kStatuses.find(scenario().call.exportName);
    const std::vector<float> statuses =
        listed == kStatuses.end() ? std::vector<float>() : listed->second;
    for (int spare = 0; spare < std::ssize(statuses); ++spare) {
        EXPECT_EQ(makeWith(spare).status, statuses[static_cast<std::size_t>(spare)])
            << "with " << spare;
        expectNothingTouched(before, spare);
        stage_.forget();
        EXPECT_EQ(openFiles(), openBefore);
        EXPECT_TRUE(stage_.play(scenario()) == clean) << "after " << spare;
    }
    const Result enough = makeWith(static_cast<int>(statuses.size()));
    EXPECT_TRUE(stage_.outcome(scenario(), enough) == clean);
}

INSTANTIATE_TEST_SUITE_P(Scenarios, FewDescriptors, testing::ValuesIn(scenarios()),
                         [](const auto& scenario) { return scenario.param.name; });

}  // namespace
