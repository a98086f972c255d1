#include <gmock/gmock.h>

#include <filesystem>
#include <fstream>

#include "host/Quillon.h"
#include "support/BmpFile.h"
#include "support/PsdFile.h"
#include "support/TiffFile.h"

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
        {{"swapRGBPSD", none, "--value", "4"}, "-9", "refused: --value must be the order of the"},
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

// Each row: a call that fails, and the reason at the end of its meaning.
TEST(Call, AFailureHasTheReasonOfTheSystem) {
    const TempDir dir;
    const std::string none = dir.path("none");
    const std::string deep = dir.path("none/x.tif");
    const std::string folder = dir.makeFolder("folder.tif");
    const std::string text = dir.write("text", "no map");
    const std::string inText = text + "/x.tif";
    const std::string mesh = dir.write("two.Vemo", twoQuads());
    const std::string map = dir.write("map.tif", TiffFile(1, 1).grey32({0.5f}).bytes());
    const std::string colour =
        dir.write("colour.tif", TiffFile(2, 1).rgb8({1, 2, 3, 4, 5, 6}).bytes());
    const std::string picture = dir.write("map.bmp", BmpFile(1, 1).plain(1, 2, 3));
    const std::string full = dir.path("full.tif");
    std::filesystem::create_symlink("/dev/full", full);
    dir.makeFolder("mesh1002.Vemo");
    dir.write("folder.tif/entry", "");
    const std::vector<std::pair<Words, std::string>> kCases = {
        {{"CreateFolder", folder}, "(File exists)"},
        {{"CreateFolder", deep}, "(No such file or directory)"},
        {{"CreateFolder", inText}, "(Not a directory)"},
        {{"CheckFolder", none}, "(No such file or directory)"},
        {{"OpenFolder", text}, "(Not a directory)"},
        {{"EmptyFolder", text}, "(Not a directory)"},
        {{"FileDelete", none}, "(No such file or directory)"},
        {{"FileDelete", folder}, "(Directory not empty)"},
        {{"FileRename", none, "0", text}, "(No such file or directory)"},
        {{"FileRename", text, "0", folder}, "(Is a directory)"},
        {{"FileCopyTo", none, "0", dir.path("new")}, '(' + none + ": No such file or directory)"},
        {{"FileCopyTo", text, "0", deep}, '(' + deep + ": No such file or directory)"},
        {{"FileCopyTo", text, "0", inText}, '(' + inText + ": Not a directory)"},
        {{"getUVTile", none}, '(' + none + ": No such file or directory)"},
        {{"getUVGroups", inText}, '(' + inText + ": Not a directory)"},
        {{"getUVGroups", folder}, '(' + folder + ": Is a directory)"},
        {{"getUVs", mesh, "2", deep}, '(' + deep + ": No such file or directory)"},
        {{"getUVs", mesh, "2", dir.path("mesh.Vemo")}, "(Is a directory)"},
        {{"mergeMapsTIF", colour, "0", none}, '(' + none + ": No such file or directory)"},
        {{"mergeMapsPSD", folder, "0", text}, '(' + folder + ": Is a directory)"},
        {{"convertTIFF16", map, "1", folder}, '(' + folder + ": Is a directory)"},
        {{"convertTIFF16", map, "1", full}, "(No space left on device)"},
        {{"saveAsTarga", colour, "0", full}, "(No space left on device)"},
        {{"saveAsJpeg", picture, "0", full}, "(No space left on device)"},
    };
    for (const auto& [words, reason] : kCases) {
        const Ended call = quillon({"call"}, words);
        EXPECT_EQ(call.exitStatus, 1) << words[0];
        EXPECT_THAT(call.out, EndsWith(' ' + reason + '\n')) << words[0] << ' ' << words[1];
    }
}

// Some of them leave an errno, or name a path that cannot be opened, but fail for another cause.
// FileCopyTo of a folder leaves the errno of deleting a target that is not there.
TEST(Call, AFailureOfAnotherCauseHasNoReasonOfTheSystem) {
    const TempDir dir;
    const std::string none = dir.path("none");
    const std::string folder = dir.makeFolder("folder");
    const std::string colour =
        dir.write("colour.tif", TiffFile(2, 1).rgb8({1, 2, 3, 4, 5, 6}).bytes());
    const std::string text = dir.write("text", "no map");
    EXPECT_THAT(quillon({"call", "FileCopyTo", folder, "0", dir.path("new")}).out,
                EndsWith(" (" + folder + ": Is a directory)\n"));
    const std::vector<std::pair<Words, const char*>> kCases = {
        {{"FileDelete"}, ": refused: TEXT is missing\n"},
        {{"FileCopyTo", none}, ": refused: --buffer is missing\n"},
        {{"GetFile"}, "need one process)\n"},
        {{"convertTIFF16", colour, "3", none + ".tif"}, "are not 32-bit floats\n"},
        {{"saveAsTarga", colour, "0", colour}, "or the disk is full\n"},
        {{"mergeMapsPSD", text, "0", text}, "or is cut short\n"},
        {{"OpenEXR", text}, ", or there is too little memory\n"},
    };
    for (const auto& [words, end] : kCases) {
        const Ended call = quillon({"call"}, words);
        EXPECT_EQ(call.exitStatus, 1) << words[0];
        EXPECT_THAT(call.out, EndsWith(end)) << words[0];
    }
}

// One block of 512 bytes, which is less than the mesh of a tile.
TEST(Call, AFileSizeLimitIsTheReason) {
    const TempDir dir;
    const std::string large = dir.write("large", std::string(4096, 'x'));
    const std::string shell = "ulimit -f 1; exec \"$@\"";
    EXPECT_THAT(quillonInShell(shell, {"call", "FileCopyTo", large, "0", dir.path("copy")}).out,
                EndsWith(" (File too large)\n"));
}

TEST(Call, AFileIsNotCopiedOntoItselfUnlessForced) {
    const TempDir dir;
    const std::string file = dir.write("a", "bytes");
    std::filesystem::create_symlink(file, dir.path("symbolic"));
    std::filesystem::create_hard_link(file, dir.path("hard"));
    for (const std::string& name :
         {file, dir.path("./a"), dir.path("symbolic"), dir.path("hard")}) {
        const Ended call = quillon({"call", "FileCopyTo", name, "--buffer", file});
        EXPECT_EQ(call.exitStatus, 1);
        EXPECT_EQ(call.err,
                  "quillon: FileCopyTo deletes its target before it reads the source, and " + name +
                      " and " + file + " are one file; --force makes the call all the same\n");
        EXPECT_EQ(readBytes(file).size(), 5u);
    }
    EXPECT_THAT(quillon({"call", "FileCopyTo", file, "0", file, "--force"}).out,
                StartsWith("status   -1\n"));
    EXPECT_FALSE(dir.has("a"));
}

// Below 1 the fraction is cut off, and 0 is no exchange.
TEST(Call, ASwapBelowOneSaysWhatItDid) {
    const TempDir dir;
    const ByteList rgb = {1, 2, 3, 4, 5, 6};
    const std::string tiff = dir.write("a.tif", TiffFile(2, 1).rgb8(rgb).bytes());
    const std::string bmp = dir.write("a.bmp", BmpFile(2, 1).places());
    const std::string psd = dir.write("a.psd", PsdFile(2, 1).planes(rgb));
    const ByteList before = readBytes(tiff);
    const ByteList bmpBefore = readBytes(bmp);
    const std::string nothing = "nothing was exchanged, as the number is below 1\n";
    const auto swap = [](const char* name, const std::string& path) {
        return quillon({"call", name, path, "0.5"}).out;
    };
    EXPECT_THAT(swap("swapRGBTIF", tiff), EndsWith(nothing));
    EXPECT_EQ(readBytes(tiff), before);
    EXPECT_THAT(swap("swapRGBBMP", bmp), EndsWith(nothing));
    EXPECT_EQ(readBytes(bmp), bmpBefore);
    const std::size_t psdSize = readBytes(psd).size();
    EXPECT_THAT(swap("swapRGBPSD", psd),
                EndsWith("no colour plane was written, so the picture is lost\n"));
    EXPECT_EQ(readBytes(psd).size(), psdSize - rgb.size());
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
