// --json and --quiet of the commands, and what is shown on a terminal only.

#include <gmock/gmock.h>

#include <nlohmann/json.hpp>

#include "host/ExportedQuads.h"
#include "host/Terminal.h"
#include "support/TiffFile.h"

namespace {

using nlohmann::json;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::StartsWith;

struct Output : ExportedQuads {
    // What a command prints with --json; the whole of standard output is one object.
    static json jsonOf(const Words& words, int exitStatus = 0) {
        const Ended ended = quillon(words, {"--json"});
        EXPECT_EQ(ended.exitStatus, exitStatus) << ended.err;
        return json::parse(ended.out);
    }
    static Words exportsIn(const json& calls) {
        Words names;
        for (const json& call : calls)
            names.push_back(call["export"]);
        return names;
    }

    std::string all = dir.write("all.tif", TiffFile(3, 1).rgb8(ByteList(9, 9)).bytes());
    std::string tile =
        dir.write("tile.tif", TiffFile(3, 1).rgb8({9, 9, 9, 1, 2, 3, 9, 9, 9}).bytes());
    std::string wide = dir.write("wide.tif", TiffFile(4, 1).rgb8(ByteList(12, 9)).bytes());
    std::string model = dir.write("m.obj", "v 0 0 0\nv 1 0 0\nv 1 1 0\nvt 0 0\nf 1/1 2/1 3/1\n");
};

TEST_F(Output, ACallIsAnObject) {
    const json call = jsonOf({"call", "getUVTile", mesh, "--value", "2"});
    EXPECT_EQ(call["export"], "getUVTile");
    EXPECT_EQ(call["arguments"]["text"], mesh);
    EXPECT_EQ(call["arguments"]["value"], 2);
    EXPECT_FALSE(call["arguments"].contains("buffer1"));
    EXPECT_EQ(call["status"], 2);
    EXPECT_EQ(call["success"], true);
    EXPECT_EQ(call["meaning"], "2 UV tiles");
    EXPECT_EQ(call["text"], "1002");
    EXPECT_GE(call["milliseconds"].get<double>(), 0.0);
}

TEST_F(Output, ACallThatFailsIsAnObject) {
    const json call = jsonOf({"call", "mergeMapsTIF", wide, "--buffer", all}, 1);
    EXPECT_EQ(call["status"], -30);
    EXPECT_EQ(call["success"], false);
    EXPECT_EQ(call["arguments"]["buffer1"], all);
    EXPECT_FALSE(call.contains("text"));
}

TEST_F(Output, ACallThatThrowsIsAnObject) {
    const json call = jsonOf({"call", "convertTIFF16", all, "--value", "3", "--buffer", "b"}, 1);
    EXPECT_EQ(call["success"], false);
    EXPECT_THAT(call["error"].get<std::string>(), HasSubstr("needs a dot in its second path"));
}

// A fraction as short as it is exact; a flat map's scale has no number in JSON.
TEST_F(Output, MeasuredStatusesStayReadable) {
    const std::string flat = dir.write("flat.tif", TiffFile(1, 1).grey32({0.5f}).bytes());
    EXPECT_EQ(jsonOf({"call", "getScale", flat, "--value", "1"})["status"], "inf");
    size = "1024";  // 513 levels
    EXPECT_THAT(succeed({"--map", "height", "--json"}).out, HasSubstr(",\"scale\":137.79819"));
}

// The library itself prints "-20" there.
TEST_F(Output, WhatTheLibraryPrintsIsNotAmongTheJson) {
    const Words call = {"call", "mergeMapsTIF", all, "--buffer", dir.path("none")};
    EXPECT_THAT(quillon(call).out, StartsWith("-20\n"));
    EXPECT_EQ(jsonOf(call, 1)["status"], -20);
    EXPECT_EQ(quillon(call, {"--quiet"}).out, "");
}

TEST_F(Output, BytesThatAreNotUtf8AreReplaced) {
    EXPECT_EQ(jsonOf({"call", "GetString", "a\xFF", "--value", "0"})["text"], "a\xEF\xBF\xBD");
}

TEST_F(Output, AnExportReportsItsCallsAndFiles) {
    const json report = jsonOf(words());
    EXPECT_EQ(report["success"], true);
    EXPECT_EQ(report["files"],
              json::parse(R"([{"path":")" + out + R"(/two_normal.tif","bytes":608}])"));
    EXPECT_EQ(exportsIn(report["calls"]).front(), "clearUVtilesOutput");
    EXPECT_EQ(report["calls"].size(), 16u);
    EXPECT_FALSE(report.contains("scale"));
}

TEST_F(Output, AnExportThatFailsReportsTheCallsSoFar) {
    mesh = dir.write("empty.Vemo", "");
    const json report = jsonOf(words(), 1);
    EXPECT_EQ(report["success"], false);
    EXPECT_THAT(report["error"].get<std::string>(), HasSubstr("getUVTile of " + mesh));
    EXPECT_THAT(exportsIn(report["calls"]), ElementsAre("clearUVtilesOutput", "getUVTile"));
    EXPECT_FALSE(report.contains("files"));
}

TEST_F(Output, ASummaryLeavesTheCallsOut) {
    const json report = jsonOf({"merge", all, tile, "--summary"});
    EXPECT_EQ(report["files"][0]["path"], all);
    EXPECT_FALSE(report.contains("calls"));
}

TEST_F(Output, EveryErrorIsAnObjectAndASentence) {
    const std::string none = dir.path("none");
    const struct {
        Words words;
        int exitStatus;
    } kCases[] = {
        {{"frobnicate"}, 2},
        {{"call"}, 2},
        {{"call", "NoSuchExport"}, 2},
        {{"call", "Version", "--quiet"}, 2},
        {{"script", none}, 1},
        {{"script", dir.write("calls.txt", "NoSuchExport")}, 2},
        {{"inspect", all, "--at", "x"}, 2},
        {{"import", none, none}, 1},
        {{"export", mesh}, 2},
        {{"export", mesh, "--out", out, "--size", "1e3"}, 2},
        {{"export", none, "--out", out}, 1},
        {{"tour", none, "--out", out}, 1},
        {{"merge", all, none}, 2},
        {{"--library", none, "call", "Version"}, 1},
        {{"--library", none, "inspect", all}, 1},
    };
    for (const auto& row : kCases) {
        const Ended ended = quillon(row.words, {"--json"});
        EXPECT_EQ(ended.exitStatus, row.exitStatus) << ended.err;
        const json object = json::parse(ended.out);
        EXPECT_EQ(object["success"], false);
        EXPECT_EQ(object["exitStatus"], row.exitStatus);
        EXPECT_EQ("quillon: " + object["error"].get<std::string>() + '\n', ended.err);
    }
    EXPECT_THAT(quillon({"call", "GetString", "--", "--json"}).out, StartsWith("status   0\n"));
}

// A pipe whose reader has ended, as in "quillon reference | head -1".
TEST_F(Output, AClosedPipeIsNoError) {
    int pipe[2];
    ASSERT_EQ(::pipe2(pipe, O_CLOEXEC), 0);
    ::close(pipe[0]);
    const std::string errors = dir.write("errors", "");
    const int err = ::open(errors.c_str(), O_WRONLY | O_CLOEXEC);
    for (const Words& command : {Words{"reference"}, Words{"call", "Version"}, words()})
        EXPECT_EQ(exitStatusOf(startQuillon(command, {err, pipe[1], err})), 141) << command[0];
    ::close(pipe[1]);
    ::close(err);
    EXPECT_TRUE(readBytes(errors).empty());
    EXPECT_THAT(namesIn(out), ElementsAre("two_normal.tif"));
}

TEST_F(Output, AMergeReportsItsCallsAndTheTarget) {
    const json report = jsonOf({"merge", all, tile});
    EXPECT_THAT(exportsIn(report["calls"]), ElementsAre("CheckFolder", "CreateFolder", "FileCopyTo",
                                                        "mergeMapsTIF", "FileDelete"));
    EXPECT_EQ(report["files"][0]["path"], all);
    EXPECT_EQ(report["merged"], json::parse(R"([{"source":")" + tile + R"(","pixels":1}])"));
}

TEST_F(Output, AMergeThatFailsIsAnObject) {
    const json report = jsonOf({"merge", all, tile, wide}, 1);
    EXPECT_EQ(report["success"], false);
    EXPECT_EQ(report["calls"].size(), 5u);
    EXPECT_EQ(report["calls"][4]["status"], -30);
    EXPECT_THAT(jsonOf({"merge", all, dir.path("none.tif")}, 1)["error"].get<std::string>(),
                HasSubstr("there is no map"));
}

TEST_F(Output, AnImportReportsItsNumbers) {
    const json report = jsonOf({"import", model, dir.path("m.Vemo")});
    EXPECT_EQ(report["vertices"], 3);
    EXPECT_EQ(report["triangles"], 1);
    EXPECT_EQ(report["quads"], 0);
    EXPECT_EQ(report["files"][0]["path"], dir.path("m.Vemo"));
}

TEST_F(Output, QuietPrintsNothingAndKeepsTheExitStatus) {
    const struct {
        Words words;
        int exitStatus;
    } kCases[] = {
        {{"call", "Version"}, 0},
        {{"call", "FileDelete", dir.path("none")}, 1},
        {{"script", dir.write("calls.txt", "CloseFolder\n")}, 1},
        {words(), 0},
        {{"merge", all, tile}, 0},
        {{"import", model, dir.path("m.Vemo")}, 0},
    };
    for (const auto& row : kCases) {
        const Ended ended = quillon(row.words, {"--quiet"});
        EXPECT_EQ(ended.exitStatus, row.exitStatus);
        EXPECT_EQ(ended.out + ended.err, "");
    }
    EXPECT_EQ(quillonOnTerminal({"merge", all, tile, "--quiet"}).shown, "");
}

TEST_F(Output, ATerminalGetsColours) {
    EXPECT_EQ(quillonOnTerminal({"call", "Version"}).shown,
              "status   48\r\n"
              "meaning  \x1B[32msuccess\x1B[0m: the version of the interface\r\n");
    EXPECT_THAT(quillonOnTerminal({"call", "GetFile"}).shown,
                HasSubstr("\x1B[31mfailure\x1B[0m: "));
    EXPECT_THAT(quillonOnTerminal({"call", "None"}).shown, StartsWith("\x1B[31mquillon:\x1B[0m "));
}

TEST_F(Output, ATerminalWithoutColoursAndNoColorGetNone) {
    for (const Words& environment :
         {Words{}, Words{"TERM=dumb"}, Words{"TERM=xterm", "NO_COLOR=1"}}) {
        EXPECT_EQ(quillonOnTerminal({"call", "Version"}, environment).shown,
                  "status   48\r\nmeaning  success: the version of the interface\r\n");
    }
    EXPECT_THAT(quillonOnTerminal({"call", "Version"}, {"TERM=xterm", "NO_COLOR="}).shown,
                HasSubstr("\x1B[32m"));
}

// The bar is drawn over and over in one line and taken away before anything else is printed.
TEST_F(Output, ATerminalGetsProgressBars) {
    const OnTerminal merged = quillonOnTerminal({"merge", all, tile});
    EXPECT_EQ(merged.exitStatus, 0);
    EXPECT_THAT(merged.shown, HasSubstr("\r\x1B[Kmerging [........................] 0 of 1  " +
                                        tile + "\r\x1B[KmergeMapsTIF"));
    const std::string shown = quillonOnTerminal(words()).shown;
    EXPECT_THAT(shown, HasSubstr("\r\x1B[Krendering [############............] 1 of 2  1002"));
}

// The lines of a step, as a program gets them.
std::string progress(const std::string& file, const std::string& step, const Words& parts) {
    const std::string total = std::to_string(parts.size());
    const std::string start = R"({"file":")" + file + R"(","step":")" + step + R"(","done":)";
    std::string lines;
    for (std::size_t done = 0; done < parts.size(); ++done)
        lines += start + std::to_string(done) + R"(,"total":)" + total + R"(,"next":")" +
                 parts[done] + "\"}\n";
    return lines + start + total + R"(,"total":)" + total + "}\n";
}

// The first tile is copied, so merging begins with the second one.
TEST_F(Output, AProgramGetsProgressAsJson) {
    ASSERT_EQ(quillon(words()).exitStatus, 0);  // creates the folder
    const Ended without = quillon(words());
    const Ended ended = quillon(words(), {"--progress", "json"});
    EXPECT_EQ(ended.exitStatus, 0);
    EXPECT_EQ(ended.out, without.out);
    const std::string merging = R"({"file":")" + mesh + R"(","step":"merging","done":)";
    EXPECT_EQ(ended.err, progress(mesh, "rendering", {"1001", "1002"}) + merging +
                             R"(1,"total":2,"next":"1002"})" + '\n' + merging + R"(2,"total":2})" +
                             '\n');
}

TEST_F(Output, ProgressOfAMergeIsAboutItsResult) {
    const std::string result = dir.path("result.tif");
    const Words merge = {"merge", all, tile, tile, "--out", result};
    const Ended ended = quillon(merge, {"--quiet", "--progress", "json"});
    EXPECT_EQ(ended.err, progress(result, "merging", {tile, tile}));
    EXPECT_EQ(ended.out, "");
    EXPECT_THAT(quillon({"merge", all, wide}, {"--progress", "json"}).err,
                HasSubstr(R"("done":0,"total":1,"next":")" + wide + "\"}\nquillon: " + wide));
}

TEST_F(Output, ProgressOfMapsPerTileCountsAllTiles) {
    EXPECT_EQ(quillon(words(), {"--per-tile", "--progress", "json"}).err,
              progress(mesh, "rendering", {"1001", "1002"}));
}

TEST_F(Output, ProgressThatNobodyReadsStopsNothing) {
    int ends[2];
    ASSERT_EQ(::pipe2(ends, O_CLOEXEC), 0);
    ::close(ends[0]);
    Words command = words();
    command.insert(command.end(), {"--progress", "json"});
    const int nowhere = ::open("/dev/null", O_RDWR | O_CLOEXEC);
    EXPECT_EQ(exitStatusOf(startQuillon(command, {nowhere, nowhere, ends[1]})), 0);
    ::close(nowhere);
    ::close(ends[1]);
    EXPECT_THAT(namesIn(out), ElementsAre("two_normal.tif"));
}

}  // namespace
