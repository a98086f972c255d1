#include <gmock/gmock.h>

#include "host/Quillon.h"
#include "support/BmpFile.h"
#include "support/PsdFile.h"
#include "support/TiffFile.h"

namespace {

using ::testing::ElementsAre;
using ::testing::EndsWith;
using ::testing::HasSubstr;
using ::testing::Not;

const ByteList kPlain = {9, 9, 9, 9, 9, 9, 9, 9, 9};
const ByteList kSecondPixel = {9, 9, 9, 1, 2, 3, 9, 9, 9};
const ByteList kThirdPixel = {9, 9, 9, 9, 9, 9, 4, 5, 6};

ByteList tiff(const ByteList& rgb) {
    return TiffFile(static_cast<std::uint32_t>(rgb.size() / 3), 1).rgb8(rgb).bytes();
}

struct MergeCommand : ::testing::Test {
    static Ended merge(const Words& words) { return quillon({"merge"}, words); }
    static ByteList tiffPixels(const std::string& path) {
        return pixelsOf(path, TiffFile(3, 1).rgb8(kPlain));
    }

    TempDir dir;
    std::string all = dir.write("all.tif", tiff(kPlain));
    std::string second = dir.write("1002.tif", tiff(kSecondPixel));
    std::string third = dir.write("1003.tif", tiff(kThirdPixel));
};

TEST_F(MergeCommand, MergesTiffTilesIntoTheTargetAndTouchesNothingElse) {
    const Ended ended = merge({all, second, third});
    EXPECT_EQ(ended.exitStatus, 0);
    EXPECT_EQ(ended.err, "");
    EXPECT_THAT(tiffPixels(all), ElementsAre(9, 9, 9, 1, 2, 3, 4, 5, 6));
    EXPECT_EQ(readBytes(second), tiff(kSecondPixel));
    EXPECT_EQ(readBytes(third), tiff(kThirdPixel));
    EXPECT_THAT(dir.names(), ElementsAre("1002.tif", "1003.tif", "all.tif"));
    EXPECT_THAT(ended.out, HasSubstr("mergeMapsTIF            0  " + second + " to " +
                                     dir.path("working/all.tif") + '\n'));
    EXPECT_THAT(ended.out, HasSubstr("\n\n         1 pixels of " + second + " merged\n"));
    EXPECT_THAT(ended.out, EndsWith("merged\n" + all + "  " + std::to_string(tiff(kPlain).size()) +
                                    " bytes\n"));
}

TEST_F(MergeCommand, KnowsFormatsByExtensionsInAnyCase) {
    const std::string tile = dir.write("tile.TIFF", tiff(kSecondPixel));
    const std::string map = dir.write("map.Tif", tiff(kPlain));
    EXPECT_EQ(merge({map, tile}).exitStatus, 0);
    EXPECT_THAT(tiffPixels(map), ElementsAre(9, 9, 9, 1, 2, 3, 9, 9, 9));
}

TEST_F(MergeCommand, ATileThatDoesNotFitLeavesTheTargetAsItWas) {
    const std::string wide = dir.write("wide.tif", tiff(ByteList(12, 9)));
    const Ended ended = merge({all, second, wide, third});
    EXPECT_EQ(ended.exitStatus, 1);
    EXPECT_EQ(ended.err, "quillon: " + wide + " cannot be merged into " + all +
                             ": the maps differ in size, or no directory is found in one of "
                             "them (mergeMapsTIF returned -30)\n");
    EXPECT_THAT(ended.out, HasSubstr("mergeMapsTIF          -30  " + wide));
    EXPECT_EQ(readBytes(all), tiff(kPlain));
    EXPECT_THAT(dir.names(), ElementsAre("1002.tif", "1003.tif", "all.tif", "wide.tif"));
}

TEST_F(MergeCommand, WritesAnotherMapAndOnlyReadsTheFirst) {
    const std::string link = dir.path("link.tif");
    std::filesystem::create_symlink(dir.write("earlier.tif", "an earlier map"), link);
    EXPECT_EQ(merge({all, second, third, "--out", link}).exitStatus, 0);
    EXPECT_EQ(readBytes(all), tiff(kPlain));
    EXPECT_TRUE(std::filesystem::is_symlink(link));
    EXPECT_THAT(tiffPixels(dir.path("earlier.tif")), ElementsAre(9, 9, 9, 1, 2, 3, 4, 5, 6));
    EXPECT_EQ(merge({all, second, "--out", link, "--no-clobber"}).err,
              "quillon: " + link + " exists; leave out --no-clobber to replace it\n");
    EXPECT_EQ(merge({all, second, "--out", second}).err,
              "quillon: " + second + " is also a map to merge; choose another --out\n");
}

// The tile is painted to its first pixel, so that every pixel counts as background.
TEST_F(MergeCommand, WarnsOfATileThatChangesNoPixel) {
    const std::string painted = dir.write("1001.tif", tiff(ByteList(9, 7)));
    const Ended ended = merge({all, painted, second});
    EXPECT_EQ(ended.exitStatus, 0);
    EXPECT_EQ(ended.err, "quillon: warning: " + painted + " changed no pixel of " + all +
                             "; see quillon merge --help for what counts as background\n");
    EXPECT_THAT(tiffPixels(all), ElementsAre(9, 9, 9, 1, 2, 3, 9, 9, 9));
}

// The green of the second pixel changes, and all channels of the third.
TEST_F(MergeCommand, APixelOfAPsdCountsOnceWhateverChannelsChange) {
    const std::string map = dir.write("all.psd", PsdFile(3, 1).filled(9, 9));
    const std::string tile =
        dir.write("tile.psd", PsdFile(3, 1).pixels({{9, 9, 9}, {9, 2, 9}, {1, 2, 3}}));
    EXPECT_THAT(merge({map, tile}).out, HasSubstr("2 pixels of " + tile + " merged\n"));
}

// Each row: a target, a tile that does not fit it, and what differs.
TEST_F(MergeCommand, EachFormatIsMergedByItsOwnExportWhichSaysWhatDiffers) {
    const struct {
        std::string target;
        std::string source;
        const char* sentence;
    } kCases[] = {
        {dir.write("all.psd", PsdFile(3, 1).filled(9, 9)),
         dir.write("wide.psd", PsdFile(4, 1).filled(12, 9)),
         "the maps differ in size (mergeMapsPSD returned -6)"},
        {dir.write("all.bmp", BmpFile(3, 1)), dir.write("deep.bmp", BmpFile(3, 1).bitsPerPixel(32)),
         "the maps differ in bits per pixel, or in where their pixels start "
         "(mergeMapsBMP returned -40)"},
    };
    for (const auto& row : kCases) {
        const ByteList before = readBytes(row.target);
        const Ended ended = merge({row.target, row.source});
        EXPECT_EQ(ended.exitStatus, 1);
        EXPECT_EQ(ended.err, "quillon: " + row.source + " cannot be merged into " + row.target +
                                 ": " + row.sentence + '\n');
        EXPECT_EQ(readBytes(row.target), before);
    }
}

TEST_F(MergeCommand, LeavesOutTheTargetAmongTheTiles) {
    const Ended ended = merge({all, second, dir.path("./all.tif"), third});
    EXPECT_EQ(ended.exitStatus, 0);
    EXPECT_THAT(ended.out, HasSubstr(dir.path("./all.tif") + " is the target itself\n"));
    EXPECT_THAT(tiffPixels(all), ElementsAre(9, 9, 9, 1, 2, 3, 4, 5, 6));
}

TEST_F(MergeCommand, AMissingFileIsReportedBeforeAnythingIsTouched) {
    const std::string none = dir.path("none.tif");
    EXPECT_EQ(merge({none, second}).err, "quillon: there is no map " + none + '\n');
    const Ended ended = merge({all, second, none});
    EXPECT_EQ(ended.exitStatus, 1);
    EXPECT_EQ(ended.err, "quillon: there is no map " + none + '\n');
    EXPECT_EQ(readBytes(all), tiff(kPlain));
    EXPECT_FALSE(dir.has("none.tif"));
}

TEST_F(MergeCommand, FilesOfSeveralFormatsOrNoneAreWrongUsage) {
    const std::string psd = dir.write("tile.psd", PsdFile(3, 1));
    const std::string png = dir.write("tile.png", "");
    const Ended mixed = merge({all, second, psd});
    EXPECT_EQ(mixed.exitStatus, 2);
    EXPECT_EQ(mixed.err, "quillon: " + psd + " and " + all +
                             " are files of two formats, which cannot be merged\n");
    const Ended unknown = merge({all, png});
    EXPECT_EQ(unknown.exitStatus, 2);
    EXPECT_EQ(unknown.err, "quillon: " + png +
                               " is no map by its name; maps end in .tif, .tiff, .psd or .bmp\n");
    EXPECT_EQ(readBytes(all), tiff(kPlain));
}

TEST_F(MergeCommand, ShowsEveryCallWhenAsked) {
    const std::string fourth = dir.write("1004.tif", tiff(kPlain));
    EXPECT_THAT(merge({all, second, third, fourth}).out, Not(HasSubstr("0  " + third)));
    EXPECT_THAT(merge({all, second, third, fourth, "--verbose"}).out, HasSubstr("0  " + third));
}

}  // namespace
