#include <gmock/gmock.h>

#include "host/Quillon.h"

namespace {

using ::testing::HasSubstr;
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
        {"call", "Version", "--json", "--quiet"},
        {"merge", "all.tif", "1002.tif", "--json", "--verbose"},
        {"merge", "all.tif", "1002.tif", "--quiet", "--verbose"},
    };
    for (const Words& words : kCases) {
        const Ended ended = quillon(words);
        EXPECT_EQ(ended.exitStatus, 2) << ended.err;
        EXPECT_THAT(ended.err, StartsWith("quillon: "));
        EXPECT_EQ(ended.out, "");
    }
}

// Each row: options that contradict each other, and how the error starts.
TEST(CommandLine, ExportOptionsThatContradictAreReported) {
    const struct {
        Words options;
        const char* sentence;
    } kCases[] = {
        {{"--naming", "0", "--tiles", "f.txt"}, "--tiles needs --naming 2"},
        {{"--map", "height", "--format", "bmp"},
         "a BMP has 8 bits per sample, too few for heights"},
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

TEST(CommandLine, HelpHasExamples) {
    const Ended ended = quillon({"--help"});
    EXPECT_EQ(ended.exitStatus, 0);
    EXPECT_THAT(ended.out, HasSubstr("Examples:\n  quillon "));
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
    EXPECT_EQ(ended.err, "quillon: the output could not be written\n");
}

TEST(CommandLine, AMissingLibraryIsReported) {
    const Ended ended = quillon({"--library", "/nowhere/lib.so", "call", "Version"});
    EXPECT_EQ(ended.exitStatus, 1);
    EXPECT_THAT(ended.err, StartsWith("quillon: the library /nowhere/lib.so cannot be loaded ("));
    EXPECT_EQ(ended.out, "");
}

}  // namespace
