#include <gmock/gmock.h>

#include <fstream>

#include "host/Quillon.h"
#include "support/BmpFile.h"

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

TEST(Call, PrintsTheTextThatTheExportWrote) {
    const Ended call = quillon({"call", "GetString", "abcdefgh", "--value", "2"});
    EXPECT_THAT(call.out, EndsWith("\ntext     cdefgh\n"));
    EXPECT_EQ(call.exitStatus, 0);
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
    const std::string bmp = dir.write("map.bmp", BmpFile(2, 2));
    const std::string wideBmp = dir.write("wide.bmp", BmpFile(3, 2));
    const std::string noBmp = dir.write("no.bmp", "too short");
    const struct {
        std::vector<std::string> arguments;
        const char* status;
        const char* meaning;
    } kCases[] = {
        {{"CreateFolder", dir.path()}, "-1", "it exists"},
        {{"FileDelete"}, "-1", "TEXT is missing"},
        {{"FileDelete", dir.path("none")}, "-1", "not deleted"},
        {{"GetFile"}, "-1", "no folder is open"},
        {{"getUVTile", dir.path("none")}, "-17", "cannot be opened"},
        {{"getUVs", dir.path("none"), "--buffer", dir.path("x.y")}, "-1760", "cannot be opened"},
        {{"getUVs", dir.path("none")}, "-9", "--buffer is missing"},
        {{"getUVGroups"}, "-9", "TEXT is missing"},
        {{"mergeMapsTIF", dir.path("none"), "--buffer", dir.path("none")}, "-10", "the source"},
        {{"saveAsJpeg", dir.path("none"), "--buffer", "b"}, "3", "image cannot be opened"},
        {{"saveAsJpeg", dir.path("none")}, "-9", "--buffer is missing"},
        {{"OpenEXR", dir.path("none")}, "-7", "the file cannot be opened"},
        {{"OpenEXR"}, "-3", "is missing"},
        {{"convertTIFFSingle"}, "-1", "is missing"},
        {{"mergeMapsPSD", dir.path("none"), "--buffer", dir.path("none")}, "-1", "a map cannot"},
        {{"mergeMapsPSD", dir.path("none")}, "-9", "--buffer is missing"},
        {{"swapRGBPSD", dir.path("none"), "--value", "1"}, "-1", "the map cannot be opened"},
        {{"swapRGBPSD", dir.path("none"), "--value", "4"}, "-9", "the order of the planes, 1 to 3"},
        {{"mergeMapsBMP", noBmp, "--buffer", dir.path("none")}, "-1760", "the target cannot"},
        {{"mergeMapsBMP", dir.path("none"), "--buffer", bmp}, "-1770", "the source cannot"},
        {{"mergeMapsBMP", wideBmp, "--buffer", bmp}, "-30", "differ in size"},
        {{"mergeMapsBMP", noBmp, "--buffer", noBmp}, "-7", "is no BMP"},
        {{"swapRGBBMP", noBmp, "--value", "1"}, "-7", "is no BMP"},
        {{"swapRGBBMP", dir.path("none"), "--value", "1"}, "-1760", "the map cannot be opened"},
        {{"CreateThumbnailBMP", dir.path("none"), "--value", "8"}, "-1", "cannot be opened"},
        {{"CreateThumbnailBMP", noBmp, "--value", "8"}, "-2", "is no BMP"},
        {{"CreateThumbnailBMP", bmp}, "-9", "--value is to be the longer side"},
    };
    for (const auto& row : kCases) {
        std::vector<std::string> arguments = row.arguments;
        arguments.insert(arguments.begin(), "call");
        const Ended call = quillon(arguments);
        EXPECT_EQ(call.exitStatus, 1) << row.arguments[0];
        EXPECT_THAT(call.out,
                    StartsWith(std::string("status   ") + row.status + "\nmeaning  failure: "));
        EXPECT_THAT(call.out, HasSubstr(row.meaning));
    }
}

TEST(Call, APositiveStatusCanBeAFailure) {
    const TempDir dir;
    const std::string mesh = dir.write("two.Vemo", twoQuads());
    const Ended call = quillon({"call", "getUVs", mesh, "--buffer", dir.path("none/x.Vemo")});
    EXPECT_EQ(call.exitStatus, 1);
    EXPECT_THAT(call.out, StartsWith("status   1501\nmeaning  failure: the file of the tile at "
                                     "position 0 cannot be created"));
}

TEST(Call, ACountIsASuccess) {
    const TempDir dir;
    const Ended call = quillon({"call", "getUVTile", dir.write("two.Vemo", twoQuads())});
    EXPECT_EQ(call.exitStatus, 0);
    EXPECT_THAT(call.out, StartsWith("status   2\nmeaning  success: 2 UV tiles\n"));
    EXPECT_THAT(call.out, EndsWith("text     _u1_v0\n"));
}

TEST(Call, APathWithoutADotIsReported) {
    const Ended call = quillon({"call", "convertTIFF16", "a.tif", "--value", "1", "--buffer", "b"});
    EXPECT_EQ(call.exitStatus, 1);
    EXPECT_THAT(call.err, StartsWith("quillon: convertTIFF16 needs a dot in its second path"));
}

TEST(Call, EveryExportCanBeCalledAndItsStatusIsKnown) {
    std::ifstream list(QUILLON_EXPORT_LIST);
    int exports = 0;
    for (std::string name; std::getline(list, name) && !name.starts_with("_Z"); ++exports) {
        const Ended call = quillon({"call", name});
        EXPECT_LE(call.exitStatus, 1) << name;
        EXPECT_THAT(call.out, HasSubstr("meaning  ")) << name;
        EXPECT_THAT(call.out, Not(HasSubstr("does not know"))) << name;
    }
    EXPECT_EQ(exports, 34);
}

}  // namespace
