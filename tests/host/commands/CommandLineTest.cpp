#include <gmock/gmock.h>

#include "host/Quillon.h"

namespace {

using ::testing::EndsWith;
using ::testing::HasSubstr;
using ::testing::Not;
using ::testing::StartsWith;

TEST(CommandLine, WrongUsageEndsWithTwo) {
    const std::vector<Words> kCases = {
        {},
        {"frobnicate"},
        {"call"},
        {"call", "NoSuchExport"},
        {"call", "Version", "--value", "x"},
        {"import", "model.obj"},
        {"export", "mesh.Vemo"},
        {"export", "mesh.Vemo", "--out", "o", "--size", "15"},
        {"export", "mesh.Vemo", "--out", "o", "--size", "16385"},
        {"export", "mesh.Vemo", "--out", "o", "--naming", "4"},
        {"export", "mesh.Vemo", "--out", "o", "--map", "colour"},
        {"export", "mesh.Vemo", "--out", "o", "--format", "png"},
        {"export", "mesh.Vemo", "--out", "o", "--order", "rgb"},
        {"export", "mesh.Vemo", "--out", "o", "--bits", "8", "--map", "height"},
        {"export", "mesh.Vemo", "--out", "o", "--format", "bmp", "--thumbnail", "15"},
        {"merge"},
        {"merge", "all.tif"},
        {"script"},
        {"describe"},
        {"inspect"},
        {"describe", "NoSuchExport"},
        {"merge", "all.tif", "1002.tif", "--quiet", "--verbose"},
        {"merge", "all.tif", "1002.tif", "--summary"},
    };
    for (const Words& words : kCases) {
        const Ended ended = quillon(words);
        EXPECT_EQ(ended.exitStatus, 2) << ended.err;
        EXPECT_THAT(ended.err, StartsWith("quillon: "));
        EXPECT_EQ(ended.out, "");
    }
}

// Each row: words that are wrong, and what is said about them.
TEST(CommandLine, AWrongWordIsNamedWithTheNearestRightOneAndTheRightHelp) {
    const std::vector<std::pair<Words, const char*>> kCases = {
        {{}, "no command is given; see quillon --help"},
        {{"exprot"}, "there is no command exprot; did you mean export? See quillon --help"},
        {{"help", "COMP"},
         "there is no command COMP; did you mean completions? See quillon --help"},
        {{"--verison"},
         "quillon has no option --verison; did you mean --version? See quillon --help"},
        {{"export", "m.Vemo", "--sise", "64"},
         "export has no option --sise; did you mean --size? See quillon export --help"},
        {{"import", "m.obj", "--frobnicate=1"},
         "import has no option --frobnicate; see quillon import --help"},
        {{"--json", "call", "Version"}, "--json goes behind the command; see quillon call --help"},
        {{"call", "Version", "--library", "x"},
         "--library goes before the command; see quillon call --help"},
        {{"import", "a.obj", "b.Vemo", "c"},
         "c is one word more than import takes; see quillon import --help"},
        {{"tour", "m.Vemo"}, "--out is required; see quillon tour --help"},
        {{"tour", "m.Vemo", "--out"}, "--out needs a value; see quillon tour --help"},
        {{"tour", "m.Vemo", "--out", "a", "--out", "b"},
         "--out is given more than once; see quillon tour --help"},
        {{"export", "m.Vemo", "--out", "o", "--map", "hight"},
         "--map takes normal or height, not 'hight'; did you mean height? See quillon export "
         "--help"},
        {{"merge", "a.tif", "b.tif", "--progress", "jsno"},
         "--progress takes json, not 'jsno'; did you mean json? See quillon merge --help"},
        {{"completions", "tcsh"},
         "SHELL takes bash, zsh or fish, not 'tcsh'; see quillon completions --help"},
        {{"call", "GetString", "a", "--value", ""},
         "--value takes a number, not ''; see quillon call --help"},
        {{"call", "GetString", "a", "2,5"},
         "--value takes a number, not '2,5'; see quillon call --help"},
        {{"call", "mergemapstif"}, "there is no export mergemapstif; did you mean mergeMapsTIF?"},
        {{"describe", "UVs"}, "there is no export UVs; quillon call --help lists them all"},
    };
    for (const auto& [words, sentence] : kCases)
        EXPECT_EQ(quillon(words).err, std::string("quillon: ") + sentence + '\n');
}

TEST(CommandLine, ACommandUnlikeAnyOtherGetsTheListOfAll) {
    const std::string err = quillon({"frobnicate"}).err;
    EXPECT_THAT(err, StartsWith("quillon: there is no command frobnicate: choose call, script, "));
    EXPECT_THAT(err, EndsWith(" or completions; see quillon --help\n"));
}

TEST(CommandLine, NumbersOutOfRangeAreToldTheRange) {
    const std::vector<std::pair<Words, const char*>> kCases = {
        {{"--size", "1e3"}, "--size takes a whole number from 16 to 16384, not '1e3'"},
        {{"--size", ""}, "--size takes a whole number from 16 to 16384, not ''"},
        {{"--naming", "4"}, "--naming takes a whole number from 0 to 3, not '4'"},
        {{"--thumbnail", "15"}, "--thumbnail takes a whole number from 16 to 16384, not '15'"},
        {{"--jpeg", "101"}, "--jpeg takes a whole number from 0 to 100, not '101'"},
        {{"--bits", "8"}, "--bits takes 16, not '8'"},
    };
    for (const auto& [options, sentence] : kCases)
        EXPECT_EQ(quillon({"export", "m.Vemo", "--out", "o"}, options).err,
                  std::string("quillon: ") + sentence + "; see quillon export --help\n");
}

TEST(CommandLine, HelpIsAskedForInThreeWays) {
    const std::string help = quillon({"--help"}).out;
    EXPECT_THAT(help, HasSubstr("Examples:\n  quillon "));
    EXPECT_EQ(quillon({"-h"}).out, help);
    EXPECT_EQ(quillon({"help"}).out, help);
    const Ended ofExport = quillon({"export", "--help"});
    EXPECT_EQ(ofExport.exitStatus, 0);
    EXPECT_THAT(ofExport.out, HasSubstr("--keep-tiles"));
    EXPECT_EQ(quillon({"export", "-h"}).out, ofExport.out);
    EXPECT_EQ(quillon({"help", "export"}).out, ofExport.out);
}

// As the main help and the README list them. timeout waits for a script that waits for its input.
TEST(CommandLine, TheExitStatusSaysHowItEnded) {
    const TempDir dir;
    const std::string signalled = "mkfifo " + dir.path("in") +
                                  " 2>/dev/null; exec timeout --preserve-status -s \"$0\" 0.5 " +
                                  "\"$@\" <>" + dir.path("in");
    const struct {
        const char* name;
        Words words;
        int exitStatus;
    } kCases[] = {
        {"", {"call", "Version"}, 0},      {"", {"call", "CloseFolder"}, 1},
        {"", {"call", "NoSuchExport"}, 2}, {"HUP", {"script", "-"}, 129},
        {"INT", {"script", "-"}, 130},     {"TERM", {"script", "-"}, 143},
    };
    for (const auto& row : kCases) {
        Words line{"/bin/sh", "-c", signalled, row.name};
        const Words command = commandLine(QUILLON_HOST, row.words);
        line.insert(line.end(), command.begin(), command.end());
        const Ended ended = *row.name == '\0' ? quillon(row.words) : run(line);
        EXPECT_EQ(ended.exitStatus, row.exitStatus) << row.name << ended.err;
    }
}

// Each row: options that contradict each other, and how the error starts.
TEST(CommandLine, ExportOptionsThatContradictAreReported) {
    const struct {
        Words options;
        const char* sentence;
    } kCases[] = {
        {{"--naming", "0", "--tiles", "f.txt"}, "--tiles needs --naming 2"},
        {{"--map", "height", "--format", "bmp"}, "a BMP cannot hold a height map"},
        {{"--map", "height", "--order", "bgr"}, "--order needs --map normal: a height map"},
        {{"--map", "height", "--targa"}, "--targa needs --map normal: a Targa"},
        {{"--format", "psd", "--targa"}, "--targa needs --format tiff, from"},
        {{"--format", "bmp", "--targa"}, "--targa needs --format tiff, from"},
        {{"--bits", "16"}, "--bits 16 needs --map height: a normal"},
        {{"--bits", "16", "--map", "height", "--format", "psd"},
         "a PSD height map already has 16 bits"},
        {{"--thumbnail", "64"}, "--thumbnail needs --format bmp"},
        {{"--thumbnail", "64", "--format", "psd"}, "--thumbnail needs --format bmp"},
        {{"--jpeg", "30"}, "--jpeg needs --format bmp, from"},
    };
    const TempDir dir;
    const std::string mesh = dir.write("two.Vemo", twoQuads());
    for (const auto& row : kCases) {
        const Ended ended = quillon({"export", mesh, "--out", dir.path("maps")}, row.options);
        EXPECT_EQ(ended.exitStatus, 2) << row.sentence;
        EXPECT_THAT(ended.err, StartsWith(std::string("quillon: ") + row.sentence));
        EXPECT_FALSE(dir.has("maps"));
    }
}

TEST(CommandLine, PrintsItsVersion) {
    EXPECT_EQ(quillon({"--version"}).out, "quillon 48.0\n");
}

TEST(CommandLine, TheLibraryCanBeNamed) {
    EXPECT_EQ(quillon({"--library", QUILLON_LIBRARY, "call", "Version"}).exitStatus, 0);
}

TEST(CommandLine, OutputThatNobodyTakesIsReported) {
    const Ended ended = quillonInShell("exec \"$@\" >/dev/full", {"call", "Version"});
    EXPECT_EQ(ended.exitStatus, 1);
    EXPECT_EQ(ended.err, "quillon: the output could not be written: No space left on device\n");
}

TEST(CommandLine, AMissingLibraryIsReported) {
    const Ended ended = quillon({"--library", "/nowhere/lib.so", "call", "Version"});
    EXPECT_EQ(ended.exitStatus, 1);
    EXPECT_THAT(ended.err, StartsWith("quillon: the library /nowhere/lib.so cannot be loaded ("));
    EXPECT_EQ(ended.out, "");
}

}  // namespace
