#include <gmock/gmock.h>

#include <nlohmann/json.hpp>

#include "host/Quillon.h"

namespace {

using nlohmann::json;
using ::testing::ElementsAre;
using ::testing::EndsWith;
using ::testing::HasSubstr;
using ::testing::StartsWith;

struct Script : ::testing::Test {
    Ended script(std::string_view text, const Words& options = {}) {
        return quillon({"script", dir.write("calls.txt", text)}, options);
    }
    static std::vector<json> objects(const std::string& out) {
        std::vector<json> found;
        std::istringstream lines(out);
        for (std::string line; std::getline(lines, line);)
            found.push_back(json::parse(line));
        return found;
    }

    TempDir dir;
};

// Each row: a line and how its first word behind GetString, which is its text, is read.
TEST_F(Script, WordsAreQuotedAsInAShell) {
    const std::vector<std::pair<const char*, const char*>> kCases = {
        {"GetString plain 0", "plain"},
        {"  GetString\t'two words'  0  ", "two words"},
        {"GetString 'back\\slash' 0", "back\\slash"},
        {"GetString \"it's\" 0", "it's"},
        {R"(GetString "a \" \\ \$ \n" 0)", "a \" \\ $ \\n"},
        {R"(GetString a\ b\#\' 0)", "a b#'"},
        {"GetString a'b c'\"d e\"f 0", "ab cd ef"},
        {"GetString '' 0", ""},
        {"GetString a#b 0 # a comment", "a#b"},
        {"GetString $HOME*~ 0", "$HOME*~"},
        {"GetString abcdefgh --value 2\r", "cdefgh"},
        {"GetString abcdefgh 2", "cdefgh"},
        {"GetString --value 0 -- -1", "-1"},
    };
    std::string lines;
    Words texts;
    for (const auto& [line, text] : kCases) {
        lines += std::string(line) + '\n';
        texts.emplace_back(text);
    }
    Words have;
    for (const json& call : objects(script(lines, {"--json"}).out))
        have.push_back(call["text"]);
    EXPECT_EQ(have, texts);
}

TEST_F(Script, EmptyLinesAndCommentsAreNoCalls) {
    EXPECT_EQ(script("\n  \t\n# Version\n   # Version\n\r\n").out, "");
    EXPECT_EQ(script("").exitStatus, 0);
    EXPECT_EQ(script("\n\nVersion").out, "Version                48\n");
}

TEST_F(Script, StopsAtTheFirstCallThatFails) {
    const Ended ended = script("Version\nCloseFolder\nVersion\n");
    EXPECT_EQ(ended.exitStatus, 1);
    EXPECT_EQ(ended.out, "Version                48\nCloseFolder            -1\n");
    EXPECT_EQ(ended.err, "quillon: " + dir.path("calls.txt") +
                             ":2: CloseFolder returned -1: no folder is open\n");
}

TEST_F(Script, KeepGoingContinuesAndStillFails) {
    const Ended ended = script("CloseFolder\nVersion\nGetFile\n", {"--keep-going"});
    EXPECT_EQ(ended.exitStatus, 1);
    EXPECT_EQ(ended.out,
              "CloseFolder            -1\nVersion                48\nGetFile                -1\n");
    EXPECT_THAT(ended.err, HasSubstr("calls.txt:1: CloseFolder"));
    EXPECT_THAT(ended.err, HasSubstr("calls.txt:3: GetFile"));
    EXPECT_EQ(script("Version\nVersion\n", {"--keep-going"}).exitStatus, 0);
}

TEST_F(Script, AFailureHasTheReasonOfTheSystem) {
    EXPECT_THAT(script("FileDelete " + dir.path("none") + "\n").err,
                EndsWith(" or deleting is not allowed (No such file or directory)\n"));
}

TEST_F(Script, AFileIsNotCopiedOntoItself) {
    const std::string file = dir.write("a", "bytes");
    const Ended ended = script("FileCopyTo " + file + " 0 " + file + "\nVersion\n", {"--json"});
    EXPECT_EQ(ended.exitStatus, 1);
    const std::vector<json> calls = objects(ended.out);
    ASSERT_EQ(calls.size(), 1u);
    EXPECT_EQ(calls[0]["success"], false);
    EXPECT_THAT(calls[0]["error"].get<std::string>(), EndsWith(" are one file; nothing was done"));
    EXPECT_EQ(readBytes(file).size(), 5u);
}

// The library throws for a path without a dot; there is no status then.
TEST_F(Script, ACallThatThrowsIsACallThatFails) {
    const Ended ended = script("convertTIFF16 a 1 b\nVersion\n", {"--keep-going", "--json"});
    EXPECT_EQ(ended.exitStatus, 1);
    const std::vector<json> calls = objects(ended.out);
    ASSERT_EQ(calls.size(), 2u);
    EXPECT_EQ(calls[0]["success"], false);
    EXPECT_FALSE(calls[0].contains("status"));
    EXPECT_EQ(calls[1]["status"], 48);
}

TEST_F(Script, JsonIsAnObjectPerLine) {
    const Ended ended = script("# two calls\nVersion\nGetString abcdefgh 2\n", {"--json"});
    const std::vector<json> calls = objects(ended.out);
    ASSERT_EQ(calls.size(), 2u);
    EXPECT_EQ(calls[0]["line"], 2);
    EXPECT_EQ(calls[0]["export"], "Version");
    EXPECT_EQ(calls[0]["status"], 48);
    EXPECT_EQ(calls[0]["meaning"], "the version of the interface");
    EXPECT_EQ(calls[1]["line"], 3);
    EXPECT_EQ(calls[1]["text"], "cdefgh");
    EXPECT_TRUE(calls[1]["milliseconds"].is_number());
}

TEST_F(Script, AJsonLineIsACall) {
    const Ended ended = script(R"({"export": "GetString", "text": "a \"b\" {\u00fc}", "value": 2}
  {"value": 2.0, "buffer": null, "text": "abcdefgh", "export": "GetString"}
GetString abcdefgh 3 # as words
{"export": "Version", "text": null, "value": null}
)",
                               {"--json"});
    EXPECT_EQ(ended.exitStatus, 0) << ended.err;
    Words texts;
    for (const json& call : objects(ended.out))
        texts.push_back(call.value("text", call["meaning"].get<std::string>()));
    EXPECT_THAT(texts,
                ElementsAre("\"b\" {\u00fc}", "cdefgh", "defgh", "the version of the interface"));
}

// Null and missing are no pointer, "" is an empty text.
TEST_F(Script, AKeyThatIsMissingOrNullIsLeftOut) {
    const std::vector<json> calls = objects(script("{\"export\": \"FileDelete\"}\n"
                                                   "{\"export\": \"FileDelete\", \"text\": null}\n"
                                                   "{\"export\": \"FileDelete\", \"text\": \"\"}\n",
                                                   {"--json", "--keep-going"})
                                                .out);
    ASSERT_EQ(calls.size(), 3u);
    EXPECT_EQ(calls[0]["arguments"], json::parse(R"({"value": 0.0})"));
    EXPECT_EQ(calls[1]["arguments"], json::parse(R"({"value": 0.0})"));
    EXPECT_EQ(calls[2]["arguments"], json::parse(R"({"text": "", "value": 0.0})"));
}

TEST_F(Script, AJsonLineThatIsNoCallIsAnObjectToo) {
    const std::string shell = R"(printf '{"export":"Version"}\n{"export":5}\n' | "$@")";
    const Ended ended = quillonInShell(shell, {"script", "-", "--json", "--keep-going"});
    EXPECT_EQ(ended.exitStatus, 2);
    const std::vector<json> calls = objects(ended.out);
    ASSERT_EQ(calls.size(), 2u);
    EXPECT_EQ(calls[0]["status"], 48);
    EXPECT_EQ(calls[1]["error"], "standard input:2: \"export\" takes a string, not this number");
}

// Each row: a line that is no call, and what is wrong with it.
TEST_F(Script, AFileIsCheckedBeforeItsFirstCall) {
    const std::vector<std::pair<const char*, const char*>> kCases = {
        {"GetString 'open", "a quote is not closed"},
        {"GetString \"open", "a quote is not closed"},
        {"GetString open\\", "nothing follows the backslash"},
        {"NoSuchExport", "there is no export NoSuchExport"},
        {"GetString a x", "--value takes a number, not 'x'"},
        {"GetString a ''", "--value takes a number, not ''"},
        {"GetString a 0 b c", "c is one word more than call takes"},
        {"GetString a --vaule=1", "call has no option --vaule; did you mean --value?"},
        {"GetString --help", "call has no option --help"},
        {R"({"export": "NoSuchExport"})", "there is no export NoSuchExport"},
        {"{}", "\"export\" is missing"},
        {R"({"export": null})", "\"export\" is missing"},
        {R"({"export": "Version", "txet": ""})", "a call has no key \"txet\"; did you mean text?"},
        {R"({"export": "Version", "export": "Version"})", "\"export\" is given more than once"},
        {R"({"export": "GetFile", "text": {"text": 1, "value": 2}})",
         "\"text\" takes a string, not this object"},
        {R"({"export": "Version", "value": "2"})", "\"value\" takes a number, not this string"},
        {R"({"export": "Version", "value": true})", "\"value\" takes a number, not this boolean"},
        {R"({"export": "Version", "value": 1e999})", "a number is too large"},
        {R"({"export": "Version", "buffer": ["a"]})", "\"buffer\" takes a string, not this array"},
        {R"({"export": "FileDelete", "text": "a\u0000b"})", "the text holds a NUL byte"},
        {R"({"export": "getUVs", "buffer": "a\u0000b"})", "the buffer holds a NUL byte"},
        {R"({"export": "Version")", "column 21: this is not one JSON object"},
        {R"({"export": "Version"} {"export": "Version"})", "column 23: this is not one JSON"},
        {R"({"export": "Version"} # a comment)", "column 23: this is not one JSON object"},
        {"{\"export\": \"\xFF\"}", "column 13: this is not one JSON object in UTF-8"},
    };
    for (const auto& [line, sentence] : kCases) {
        const Ended ended =
            script("CreateFolder " + dir.path("made") + "\n\n" + line + "\n", {"--keep-going"});
        EXPECT_EQ(ended.exitStatus, 2) << line;
        EXPECT_EQ(ended.out, "");
        EXPECT_THAT(ended.err, StartsWith("quillon: " + dir.path("calls.txt") + ":3: "));
        EXPECT_THAT(ended.err, HasSubstr(sentence));
        EXPECT_FALSE(dir.has("made"));
    }
}

TEST_F(Script, WordsWithANulByteAreRefused) {
    EXPECT_THAT(script(std::string_view("FileDelete a\0b", 14)).err,
                EndsWith(":1: the text holds a NUL byte, which would end it; leave it out\n"));
}

TEST_F(Script, ALineHasUpTo1048576Bytes) {
    const std::string longest = "GetString abc 2 #" + std::string((1 << 20) - 17, ' ');
    EXPECT_EQ(script(longest).exitStatus, 0);
    EXPECT_EQ(script(longest + '\n' + longest + "\n").exitStatus, 0);
    for (const std::string end : {"", "\n"})
        EXPECT_THAT(
            script("Version\n" + longest + ' ' + end).err,
            EndsWith(":2: the line has more than 1048576 bytes; write one call per line\n"));
}

TEST_F(Script, StandardInputIsCarriedOutLineByLine) {
    const std::string shell = "printf 'Version\\nGetString abcdefgh 2\\nNone\\n' | \"$@\"";
    const Ended ended = quillonInShell(shell, {"script", "-"});
    EXPECT_EQ(ended.exitStatus, 2);
    EXPECT_EQ(ended.out,
              "Version                48\n"
              "GetString               0  abcdefgh, start 2 gives cdefgh\n");
    EXPECT_THAT(ended.err, StartsWith("quillon: standard input:3: there is no export None"));
}

// The second line is written only once the first call's result is there.
TEST_F(Script, AResultIsThereBeforeTheNextCall) {
    const std::string shell = "cd " + dir.path() +
                              " && mkfifo in; \"$@\" <in >out & exec 3>in; "
                              "echo Version >&3; until grep -q 48 out; do sleep 0.01; done; "
                              "echo CloseFolder >&3; exec 3>&-; wait $!";
    dir.write("out", "");
    const Ended ended = quillonInShell(shell, {"script", "-"});
    EXPECT_EQ(ended.exitStatus, 1);
    EXPECT_EQ(readBytes(dir.path("out")).size(), 52u);
}

TEST_F(Script, AMissingFileIsReported) {
    const Ended ended = quillon({"script", dir.path("none")});
    EXPECT_EQ(ended.exitStatus, 1);
    EXPECT_EQ(ended.err, "quillon: there is no script " + dir.path("none") + "\n");
}

}  // namespace
