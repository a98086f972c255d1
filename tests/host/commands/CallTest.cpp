#include <gmock/gmock.h>

#include <fstream>

#include "host/Quillon.h"

namespace {

using ::testing::EndsWith;
using ::testing::HasSubstr;
using ::testing::Not;
using ::testing::StartsWith;

TEST(Call, PrintsStatusAndMeaning) {
    const Ended call = quillon({"call", "Version"});
    EXPECT_EQ(call.exitStatus, 0);
    EXPECT_EQ(call.out, "status   48\nmeaning  success: the version of the interface\n");
    EXPECT_EQ(call.err, "");
}

TEST(Call, PrintsNoTextIfTheExportWroteNone) {
    EXPECT_THAT(quillon({"call", "getUVString", "--value", "3"}).out, Not(HasSubstr("text ")));
}

TEST(Call, TakesNegativeNumbersAndTextsOfAnyStart) {
    EXPECT_THAT(quillon({"call", "GetString", "abcdefgh", "--value", "-1"}).out,
                EndsWith("text     fgh\n"));
    EXPECT_THAT(quillon({"call", "GetString", "--", "-x"}).out, EndsWith("text     -x\n"));
    EXPECT_THAT(quillon({"call", "GetString", ""}).out, EndsWith("text     \n"));
}

TEST(Call, HasRoomForTextsBeyondTheUsualBlock) {
    const std::string text(100'000, 'a');
    EXPECT_THAT(quillon({"call", "GetString", text}).out, EndsWith("text     " + text + '\n'));
}

// Each row: an export that fails, its status, a part of what that means.
TEST(Call, FailureStatusesEndWithOne) {
    const TempDir dir;
    const std::string mesh = dir.write("two.Vemo", twoQuads());
    const std::string none = dir.path("none");
    const struct {
        Words words;
        const char* status;
        const char* meaning;
    } kCases[] = {
        {{"GetFile"}, "-1", "no folder is open"},
        {{"FileDelete"}, "-1", "refused: TEXT is missing\n"},
        {{"FileDelete", none}, "-1", "the file was not deleted: there is none"},
        {{"saveAsJpeg", none}, "-9", "refused: --buffer is missing\n"},
        {{"saveAsJpeg", none, "--buffer", "b"}, "3", "the image cannot be opened"},
        {{"swapRGBPSD", none, "--value", "4"}, "-9", "refused: --value is to be the order of the"},
        {{"getUVs", mesh, "--buffer", dir.path("none/x.Vemo")},
         "1501",
         "the file of the tile at position 0 cannot be created"},
    };
    for (const auto& row : kCases) {
        const Ended call = quillon({"call"}, row.words);
        EXPECT_EQ(call.exitStatus, 1) << row.words[0];
        EXPECT_THAT(call.out, StartsWith(std::string("status   ") + row.status +
                                         "\nmeaning  failure: " + row.meaning));
    }
}

TEST(Call, APathWithoutADotIsReported) {
    const Ended call = quillon({"call", "convertTIFF16", "a.tif", "--value", "1", "--buffer", "b"});
    EXPECT_EQ(call.exitStatus, 1);
    EXPECT_THAT(call.err, StartsWith("quillon: convertTIFF16 needs a dot in its second path"));
}

TEST(Call, EveryExportCanBeCalledAndItsStatusIsKnown) {
    std::ifstream list(QUILLON_EXPORT_LIST);
    int exports = 0;
    for (std::string name; std::getline(list, name);) {
        if (name.starts_with("_Z")) continue;
        ++exports;
        const Ended call = quillon({"call", name});
        EXPECT_LE(call.exitStatus, 1) << name;
        EXPECT_THAT(call.out, HasSubstr("meaning  ")) << name;
        EXPECT_THAT(call.out, Not(HasSubstr("does not know"))) << name;
    }
    EXPECT_EQ(exports, 34);
}

}  // namespace
