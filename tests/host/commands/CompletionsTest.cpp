#include <gmock/gmock.h>

#include <algorithm>

#include "host/Quillon.h"

namespace {

using ::testing::HasSubstr;

// What is offered for the last word, in one line.
std::string offered(const Words& words) {
    std::string found = quillon({"complete"}, words).out;
    std::ranges::replace(found, '\n', ' ');
    return found;
}

// Each row: the words behind "quillon", the last one unfinished, and what is offered for it.
TEST(Completions, OfferWhatTheCommandLineTakes) {
    const std::vector<std::pair<Words, const char*>> kCases = {
        {{""},
         "call script describe reference inspect import tiles export tour merge fix completions "},
        {{"ex"}, "export "},
        {{"--"}, "--help --version --library "},
        {{"--library", "x.so", "ca"}, "call "},
        {{"call", "mergeMaps"}, "mergeMapsTIF mergeMapsPSD mergeMapsBMP "},
        {{"call", "--value", "2", "swapRGBT"}, "swapRGBTIF "},
        {{"call", "getUVs", ""}, ""},
        {{"call", "getUVs", "m", "0", "b", ""}, ""},
        {{"call", "getUVs", "--b"}, "--buffer "},
        {{"describe", "Open"}, "OpenFolder OpenEXR "},
        {{"export", "m.Vemo", "--format", ""}, "tiff psd bmp "},
        {{"export", "m.Vemo", "--map", "h"}, "height "},
        {{"export", "m.Vemo", "--size", ""}, ""},
        {{"merge", "all.tif", "--progress", ""}, "json "},
        {{"export", "m.Vemo", "--keep-tiles", "--ord"}, "--order "},
        {{"merge", "export", "--q"}, "--quiet "},
        {{"completions", ""}, "bash zsh fish "},
        {{"frobnicate", "-x", "--"}, "--help --version --library "},
    };
    for (const auto& [words, candidates] : kCases)
        EXPECT_EQ(offered(words), candidates) << words.back();
    EXPECT_EQ(offered({}), "");
}

// As bash itself asks when the tab key is pressed.
TEST(Completions, BashOffersThem) {
    if (*QUILLON_EMULATOR != '\0')
        GTEST_SKIP() << "bash here starts quillon by its name, and only the emulator can start it";
    const std::string asking =
        "source <(\"$0\" completions bash); COMP_WORDS=(\"$0\" export --format p); COMP_CWORD=3; "
        "_quillon; echo \"${COMPREPLY[@]}\"; complete -p quillon";
    const Ended ended = run({"/bin/bash", "-c", asking, QUILLON_HOST});
    EXPECT_EQ(ended.out, "psd\ncomplete -o default -F _quillon quillon\n");
    EXPECT_EQ(ended.err, "");
}

TEST(Completions, EachShellHasItsOwnScript) {
    EXPECT_THAT(quillon({"completions", "zsh"}).out, HasSubstr("#compdef quillon\n"));
    EXPECT_THAT(quillon({"completions", "fish"}).out, HasSubstr("complete -c quillon -a "));
    EXPECT_EQ(quillon({"completions", "tcsh"}).exitStatus, 2);
}

}  // namespace
