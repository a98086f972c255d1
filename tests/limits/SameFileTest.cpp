// Source and target the same file, by the same name and by another.

#include <gmock/gmock.h>

#include <filesystem>
#include <string_view>

#include "faults/Scenarios.h"

namespace {

namespace fs = std::filesystem;

enum class File { kAsItWas, kGone, kChanged };

// What becomes of a file that is its own target.
const struct Row {
    const char* scenario;
    const char* entry;
    float status;
    File after;
} kRows[] = {
    {"FileCopyTo", "a.tif", -1, File::kGone},  // removed before it is opened
    {"FileRename", "a.tif", 0, File::kAsItWas},
    {"mergeCrease", "mesh.vws", 0, File::kChanged},  // holds itself twice
    {"mergeMapsTIF", "tile.map", 0, File::kAsItWas},
    {"mergeMapsTIFLarge", "tile.map", 0, File::kAsItWas},
    {"mergeMapsPSD", "tile.map", 0, File::kAsItWas},
    {"mergeMapsPSDGrey", "tile.map", 0, File::kAsItWas},
    {"mergeMapsBMP", "tile.map", 0, File::kAsItWas},
    {"mergeMapsBMPLarge", "tile.map", 0, File::kAsItWas},
    {"convertTIFFSingle", "one.map", -201, File::kAsItWas},
    {"convertTIFF16Grey", "one.map", -201, File::kAsItWas},
    {"saveAsTarga", "one.map", -5, File::kAsItWas},
    {"saveAsTargaLarge", "one.map", -5, File::kAsItWas},
    {"saveAsJpeg", "one.map", 0, File::kChanged},
    {"saveAsJpegLarge", "one.map", 0, File::kChanged},
    {"getUVs", "mesh.vws", 3, File::kAsItWas},
    {"getUVsMask", "mesh.vws", 3, File::kAsItWas},
};

class SameFile : public testing::TestWithParam<Row> {
protected:
    SameFile() : scenario_(scenarioNamed(GetParam().scenario)) { stage_.prepare(scenario_); }

    float callWithTarget(const std::string& name) {
        Call call = scenario_.call;
        call.buffer1 = name;
        return stage_.make(call).status;
    }

    void expectFile() {
        const Entries entries = stage_.entries();
        const auto found = entries.find(GetParam().entry);
        ASSERT_EQ(found == entries.end(), GetParam().after == File::kGone);
        if (found == entries.end()) return;
        const bool isAsItWas = found->second == scenario_.files.at(GetParam().entry);
        EXPECT_EQ(isAsItWas, GetParam().after == File::kAsItWas);
    }

    const Scenario& scenario_;
    Stage stage_;
};

TEST_P(SameFile, IsSafeUnderOneName) {
    EXPECT_EQ(callWithTarget(GetParam().entry), GetParam().status);
    expectFile();
}

// A copy removes the other name and then finds its source.
TEST_P(SameFile, IsSafeUnderAnotherName) {
    const bool copy = GetParam().after == File::kGone;
    for (const bool symbolic : {false, true}) {
        stage_.prepare(scenario_);
        const std::string other = stage_.path("other.map");
        if (symbolic)
            fs::create_symlink(GetParam().entry, other);
        else
            fs::create_hard_link(stage_.path(GetParam().entry), other);
        EXPECT_EQ(callWithTarget("other.map"), copy ? 0.0f : GetParam().status);
        if (!copy && GetParam().scenario != std::string_view("FileRename")) expectFile();
    }
}

INSTANTIATE_TEST_SUITE_P(Exports, SameFile, testing::ValuesIn(kRows),
                         [](const auto& row) { return row.param.scenario; });

}  // namespace
