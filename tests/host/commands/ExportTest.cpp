#include <gmock/gmock.h>

#include <sstream>

#include "host/ExportedQuads.h"

namespace {

using ::testing::ElementsAre;
using ::testing::EndsWith;
using ::testing::HasSubstr;

using Export = ExportedQuads;

// The first word of each line of the call log.
Words callsIn(const std::string& out) {
    std::istringstream lines(out);
    Words names;
    for (std::string line; std::getline(lines, line) && !line.empty();)
        names.push_back(line.substr(0, line.find(' ')));
    return names;
}

// In the first quad v and y grow together, from 0 to half of the mesh's height over 4 pixels; in
// the second y grows with u, the other half.
TEST_F(Export, HeightsRunFromTheLowestToTheHighestVertex) {
    succeed({"--map", "height"});
    const Map map(out + "/two_height.tif");
    EXPECT_FLOAT_EQ(map.height32(3, 5), 0.0625f);
    EXPECT_FLOAT_EQ(map.height32(3, 2), 0.4375f);
    EXPECT_FLOAT_EQ(map.height32(10, 3), 0.5625f);
    EXPECT_FLOAT_EQ(map.height32(13, 3), 0.9375f);
    EXPECT_EQ(map.height32(7, 3), 0.0f);
}

TEST_F(Export, RowsOfTilesGrowUpward) {
    dir.write("two.Vemo", twoQuads(kMiddleOf1001, {0.25f, 1.25f, 0.75f, 1.25f,  //
                                                   0.75f, 1.75f, 0.25f, 1.75f}));
    succeed();
    const Map map(out + "/two_normal.tif");
    EXPECT_EQ(map.width, 8u);
    EXPECT_EQ(map.height, 16u);
    EXPECT_EQ(map.rgb(3, 3), kFacesX);
    EXPECT_EQ(map.rgb(3, 11), kFacesZ);
}

TEST_F(Export, CallsTheExportsInTheHostsOrder) {
    EXPECT_THAT(callsIn(succeed({"--verbose"}).out),
                ElementsAre("clearUVtilesOutput", "getUVTile", "CheckFolder", "CreateFolder",
                            "CreateFolder", "getUVs", "getUVString", "getUVString", "clearUVString",
                            "(rendered)", "FileCopyTo", "mergeMapsTIF", "FileDelete", "FileDelete",
                            "FileDelete", "FileDelete", "FileDelete"));
}

TEST_F(Export, ShowsOfARowOfEqualCallsTheFirstAndTheLast) {
    const std::string log = succeed().out;
    EXPECT_THAT(log, HasSubstr("FileDelete              0  " + out + "/working/two1002.tif\n" +
                               "...                        3 more\n" +
                               "FileDelete              0  " + out + "/working\n"));
    EXPECT_THAT(log, HasSubstr("getUVString             0  position 0 gives 1001\n"
                               "getUVString             0  position 1 gives 1002\n"));
}

TEST_F(Export, ReplacesAnEarlierMapAndLeavesNothingElse) {
    dir.makeFolder("maps");
    dir.write("maps/two_normal.tif", "an earlier map");
    succeed();
    EXPECT_EQ(Map(out + "/two_normal.tif").rgb(2, 2), kFacesZ);
    EXPECT_EQ(readBytes(mesh), twoQuads());
    EXPECT_THAT(dir.names(), ElementsAre("maps", "two.Vemo"));
    EXPECT_THAT(namesIn(out), ElementsAre("two_normal.tif"));
}

TEST_F(Export, NeverTouchesAFolderThatIsCalledWorkingAlready) {
    dir.makeFolder("maps/working-2");
    dir.makeFolder("maps/working");
    dir.write("maps/working/two1001.Vemo", "the user's own");
    EXPECT_THAT(succeed().out, HasSubstr("CreateFolder           -1  " + out + "/working\n" +
                                         "CreateFolder           -1  " + out + "/working-2\n" +
                                         "CreateFolder            0  " + out + "/working-3\n"));
    EXPECT_EQ(readBytes(dir.path("maps/working/two1001.Vemo")).size(), 14u);
    EXPECT_TRUE(dir.has("maps/working-2"));
    EXPECT_FALSE(dir.has("maps/working-3"));
}

TEST_F(Export, KeepTilesLeavesTheWorkingFiles) {
    succeed({"--keep-tiles", "--naming", "0"});
    EXPECT_EQ(Map(out + "/working/two_u0_v0.tif").rgb(2, 2), kFacesZ);
    EXPECT_EQ(Map(out + "/working/two_u0_v0.tif").rgb(10, 2), kBackground);
    EXPECT_EQ(Map(out + "/working/two_u1_v0.tif").rgb(10, 2), kFacesX);
    EXPECT_TRUE(dir.has("maps/working/two_u1_v0.Vemo"));
}

TEST_F(Export, AFilterChoosesTiles) {
    const Ended ended = succeed({"--tiles", dir.write("filter.txt", "1002-1005")});
    EXPECT_THAT(ended.out, HasSubstr("setUVtilesOutput        0"));
    const Map map(out + "/two_normal.tif");
    EXPECT_EQ(map.width, 16u);
    EXPECT_EQ(map.height, 16u);
    EXPECT_EQ(map.rgb(8, 8), kFacesX);
}

// Its corners at 1 are in the next tile.
TEST_F(Export, AUnitSquareIsNotDrawnWhichTheExportSays) {
    dir.write("two.Vemo", twoQuads({0, 0, 1, 0, 1, 1, 0, 1}));
    const Ended ended = quillon(words());
    EXPECT_THAT(ended.err, HasSubstr("begins (1), import the model with --clamp-uv"));
    EXPECT_EQ(Map(out + "/two_normal.tif").rgb(3, 3), kBackground);
}

TEST_F(Export, AFaceAcrossTheBorderIsNotDrawn) {
    dir.write("two.Vemo", twoQuads({0.25f, 0.25f, 1.5f, 0.25f, 0.75f, 0.75f, 0.25f, 0.75f}));
    const Ended ended = quillon(words());
    EXPECT_EQ(ended.exitStatus, 0);
    EXPECT_EQ(ended.err,
              "quillon: warning: " + mesh +
                  ": 1 face reaches out of its tile and is not painted: face 0; to paint "
                  "those that reach further (1), move their UVs into one tile, or import "
                  "the model with --tile-per-group\n");
    EXPECT_EQ(Map(out + "/two_normal.tif").rgb(3, 3), kBackground);
}

// Three of its corners coincide. In cells of 41 pixels rounding gives its area one sign, whichever
// way round the corners are taken.
TEST_F(Export, AFaceWithoutAnAreaLeavesNothing) {
    dir.write("two.Vemo", twoQuads({0.668f, 0.389f, 0.808f, 0.215f,  //
                                    0.808f, 0.215f, 0.808f, 0.215f}));
    size = "82";
    succeed();
    const Map map(out + "/two_normal.tif");
    EXPECT_EQ(map.rgb(30, 28), kBackground);
    EXPECT_EQ(map.rgb(61, 20), kFacesX);
}

// The first pixel of a file: of a TIFF or PSD at the top, of a BMP at the bottom.
TEST_F(Export, TheLeftCornersStayBackground) {
    dir.write("two.Vemo", twoQuads({0, 0, 0.999f, 0, 0.999f, 0.9999f, 0, 0.9999f}));
    succeed();
    const Map map(out + "/two_normal.tif");
    EXPECT_EQ(map.rgb(0, 0), kBackground);
    EXPECT_EQ(map.rgb(1, 0), kFacesZ);
    EXPECT_EQ(map.rgb(0, 1), kFacesZ);
    EXPECT_EQ(map.rgb(0, 7), kBackground);
    EXPECT_EQ(map.rgb(0, 6), kFacesZ);
    EXPECT_EQ(map.rgb(7, 0), kFacesZ);
}

TEST_F(Export, AMissingMeshNamesTheCallTheFileAndTheMeaning) {
    mesh = dir.path("none.Vemo");
    EXPECT_EQ(fail(), "quillon: getUVTile of " + mesh +
                          " returned -17: the mesh file cannot be opened or read, or there is "
                          "too little memory (" +
                          mesh + ": No such file or directory)\n");
}

TEST_F(Export, AMissingFilterIsReported) {
    EXPECT_THAT(fail({"--tiles", dir.path("none.txt")}),
                EndsWith("there is no tile filter " + dir.path("none.txt") + '\n'));
}

TEST_F(Export, AnEmptyFolderNameIsWrongUsage) {
    out = "";
    const Ended ended = quillon(words());
    EXPECT_EQ(ended.exitStatus, 2);
    EXPECT_EQ(ended.err, "quillon: --out is empty; . is the current folder\n");
}

TEST_F(Export, AFolderThatCannotBeCreatedIsReported) {
    for (const std::string& folder : {mesh + "/maps", mesh}) {
        out = folder;
        EXPECT_THAT(fail(),
                    HasSubstr("CreateFolder of " + out + " returned -1: the folder was not"));
    }
}

TEST_F(Export, AFilterWithoutAMatchIsReported) {
    const std::string filter = dir.write("filter.txt", "1003");
    EXPECT_EQ(fail({"--tiles", filter}),
              "quillon: no tile of " + mesh + " is in the filter " + filter + "\n");
}

TEST_F(Export, AMeshWithoutFacesIsReported) {
    dir.write("two.Vemo", VemoBuilder().vertices({}).faces({}).faceUvs({}).closing().bytes());
    EXPECT_THAT(fail(), EndsWith("has no faces, so there is no tile to export\n"));
}

TEST_F(Export, AFaceThatNamesAMissingVertexIsReported) {
    ByteList bytes = twoQuads();
    bytes[160] = 8;  // the first face's first one
    dir.write("two.Vemo", bytes);
    EXPECT_THAT(fail(), EndsWith("is broken: a face names vertex 8 of 8\n"));
}

TEST_F(Export, TilesTooFarApartForTheSheetAreReported) {
    dir.write("two.Vemo", twoQuads(kMiddleOf1001, {5000.25f, 0.25f, 1.75f, 0.25f,  //
                                                   1.75f, 0.75f, 1.25f, 0.75f}));
    EXPECT_THAT(fail(),
                HasSubstr("the tiles span 5001 columns and 1 rows, which a sheet of 16 pixels "
                          "cannot show; raise --size to 5001, choose tiles"));
}

// A limit on the size of files acts as a full disk: it is tried at each step of the export.
TEST_F(Export, ADiskThatTakesNoMoreLeavesTheEarlierResults) {
    size = "64";
    const Words heights = {"--map", "height", "--bits", "16"};
    succeed(heights);
    Words command = words();
    command.insert(command.end(), heights.begin(), heights.end());
    const ByteList map = readBytes(out + "/two_height.tif");
    const ByteList map16 = readBytes(out + "/two_height_16bit.tif");
    command.emplace_back("--quiet");
    int failures = 0;
    for (int blocks = 1; blocks < 20; ++blocks) {
        dir.write("maps/two_height.tif", "an earlier map");
        dir.write("maps/two_height_16bit.tif", "an earlier map");
        const Ended ended =
            quillonInShell("ulimit -f " + std::to_string(blocks) + "; exec \"$@\"", command);
        EXPECT_THAT(namesIn(out), ElementsAre("two_height.tif", "two_height_16bit.tif"));
        const bool failed = ended.exitStatus == 1;
        failures += failed ? 1 : 0;
        const std::string earlier = "an earlier map";
        const ByteList before(earlier.begin(), earlier.end());
        EXPECT_EQ(readBytes(out + "/two_height.tif"), failed ? before : map) << blocks;
        EXPECT_EQ(readBytes(out + "/two_height_16bit.tif"), failed ? before : map16) << blocks;
        EXPECT_EQ(ended.err.starts_with("quillon: "), failed) << blocks;
    }
    EXPECT_EQ(failures, 16);  // the map takes 8,416 bytes
}

// The second name is a folder, so that the results cannot all be renamed.
TEST_F(Export, NoResultIsReplacedIfOneCannotBe) {
    dir.makeFolder("maps/two_height_16bit.tif");
    dir.write("maps/two_height.tif", "an earlier map");
    EXPECT_THAT(fail({"--map", "height", "--bits", "16"}), HasSubstr("is not a file"));
    EXPECT_EQ(readBytes(out + "/two_height.tif").size(), 14u);
}

TEST_F(Export, NoClobberKeepsAnEarlierMap) {
    dir.makeFolder("maps");
    dir.write("maps/two_normal.tif", "an earlier map");
    EXPECT_EQ(fail({"--no-clobber"}), "quillon: " + out +
                                          "/two_normal.tif exists; leave out "
                                          "--no-clobber to replace it\n");
    EXPECT_EQ(readBytes(out + "/two_normal.tif").size(), 14u);
}

TEST_F(Export, AFilterReplacesAnEarlierMapOnlyByForce) {
    const std::string filter = dir.write("filter.txt", "1002");
    succeed();
    EXPECT_THAT(fail({"--tiles", filter}), HasSubstr("may show other tiles"));
    EXPECT_EQ(Map(out + "/two_normal.tif").height, 8u);
    succeed({"--tiles", filter, "--force"});
    EXPECT_EQ(Map(out + "/two_normal.tif").height, 16u);
}

TEST_F(Export, PerTileMakesAMapOfEachTileAtFullSize) {
    succeed({"--per-tile", "--targa"});
    EXPECT_THAT(namesIn(out), ElementsAre("two_normal_1001.tga", "two_normal_1001.tif",
                                          "two_normal_1002.tga", "two_normal_1002.tif"));
    const Map map(out + "/two_normal_1002.tif");
    EXPECT_EQ(map.width, 16u);
    EXPECT_EQ(map.height, 16u);
    EXPECT_EQ(map.rgb(8, 8), kFacesX);
}

TEST_F(Export, ADryRunSaysWhatWouldBeWrittenAndWritesNothing) {
    dir.makeFolder("maps");
    dir.write("maps/two_normal.tif", "an earlier map");
    EXPECT_THAT(
        succeed({"--dry-run", "--targa"}).out,
        EndsWith("\n\n2 tiles: 1001 1002\nwould replace " + out +
                 "/two_normal.tif, 16 x 8 pixels\nwould write " + out + "/two_normal.tga\n"));
    EXPECT_THAT(namesIn(out), ElementsAre("two_normal.tif"));
}

TEST_F(Export, TakesSeveralMeshesOfDifferentNames) {
    const std::string other = dir.write("other.Vemo", twoQuads(kMiddleOf1002, kMiddleOf1002));
    EXPECT_EQ(quillon({"export", mesh, other, "--out", out, "--size", "16"}).exitStatus, 0);
    EXPECT_THAT(namesIn(out), ElementsAre("other_normal.tif", "two_normal.tif"));
    dir.makeFolder("b");
    const Ended same = quillon({"export", mesh, dir.write("b/two.Vemo", twoQuads()), "--out", out});
    EXPECT_EQ(same.exitStatus, 2);
    EXPECT_THAT(same.err, HasSubstr("have one name"));
}

// The library passes over each of these: it finds no tile, or takes all of them.
TEST_F(Export, AFilterThatNamesNoTileIsReportedWithItsLine) {
    const struct {
        const char* text;
        const char* sentence;
    } kCases[] = {{"1001\r\n1002\r\n", ":1: the line ends with a carriage return"},
                  {"1001\n1003-1001", ":2: 1003-1001 is empty"},
                  {"1001, wing", ":1: wing is no tile number"},
                  {" ,\n", " lists no tile"}};
    for (const auto& row : kCases) {
        const std::string filter = dir.write("filter.txt", row.text);
        EXPECT_THAT(fail({"--tiles", filter}), HasSubstr("quillon: " + filter + row.sentence));
    }
}

TEST_F(Export, TilesWithOneNumberAreRefused) {
    dir.write("two.Vemo", twoQuads({0.25f, 1.25f, 0.75f, 1.25f, 0.75f, 1.75f, 0.25f, 1.75f},
                                   {10.25f, 0.25f, 10.75f, 0.25f, 10.75f, 0.75f, 10.25f, 0.75f}));
    EXPECT_THAT(fail(), HasSubstr("has 2 tiles named 1011"));
    size = "64";
    succeed({"--naming", "0"});
}

// The quads' heights run from 0 to 1; see HeightsRunFromTheLowestToTheHighestVertex.
TEST_F(Export, HeightsAreMeasured) {
    EXPECT_THAT(succeed({"--map", "height"}).out,
                HasSubstr("two_height.tif, 16 x 8 pixels\n"
                          "  channel               minimum      maximum         mean        NaN   "
                          "infinite\n  grey                        0       0.9375        0.125"));
}

// Towards one folder, at first missing: whoever is last renames its map over the others'.
TEST_F(Export, EightAtOnceAllSucceed) {
    succeed();
    const ByteList map = readBytes(out + "/two_normal.tif");
    for (const char* folder : {"maps", "new/deep"}) {
        out = dir.path(folder);
        const Ended ended = quillonInShell(
            "for i in 1 2 3 4 5 6 7 8; do \"$@\" --quiet & all=\"$all $!\"; done; "
            "for one in $all; do wait $one || exit 1; done",
            words());
        EXPECT_EQ(ended.exitStatus, 0);
        EXPECT_EQ(ended.err, "");
        EXPECT_THAT(namesIn(out), ElementsAre("two_normal.tif"));
        EXPECT_EQ(readBytes(out + "/two_normal.tif"), map);
    }
}

TEST_F(Export, AMeshCutShortAnywhereIsReported) {
    const ByteList whole = twoQuads();
    ASSERT_EQ(whole.size(), 288u);
    for (std::size_t length = 0; length < 272; ++length) {
        dir.write("two.Vemo", ByteList(whole.begin(), whole.begin() + static_cast<int>(length)));
        const Ended ended = quillon(words());
        ASSERT_EQ(ended.exitStatus, 1) << length;
        ASSERT_THAT(ended.err, HasSubstr("quillon: ")) << length;
        ASSERT_FALSE(dir.has("maps")) << length;
    }
}

}  // namespace
