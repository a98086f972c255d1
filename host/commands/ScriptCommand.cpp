// quillon script: a list of calls in one process, so that the open folder, the tile filter and the
// tile names carry over from one to the next.

#include <algorithm>
#include <cstdio>
#include <iostream>
#include <optional>
#include <sstream>

#include "calls/CallJson.h"
#include "calls/CallLog.h"
#include "calls/ShellWords.h"
#include "commands/Commands.h"
#include "commands/Mistakes.h"
#include "files/DiskFile.h"
#include "terminal/Colour.h"
#include "terminal/Failure.h"

namespace {

constexpr const char* kExamples = R"(Examples:
  quillon script calls.txt
  quillon script calls.txt --keep-going --json
  printf 'OpenFolder maps\nGetFile\nCloseFolder\n' | quillon script -
  echo '{"export": "getUVTile", "text": "model.Vemo", "value": 2}' | quillon script - --json

Each line is what follows quillon call, quoted as in a shell, or the same as a JSON object, for
programs; # starts a comment:
  setUVtilesOutput filter.txt # the tiles to export
  getUVs 'my model.Vemo' 2 maps/model.Vemo
  {"export": "getUVs", "text": "my model.Vemo", "value": 2, "buffer": "maps/model.Vemo"}
  getUVString --value 0

A line that begins with { is JSON in UTF-8, alone on its line. A key that is missing or null is
left out of the call: "text" and "buffer" are then null pointers, "value" is 0. A line has up
to 1048576 bytes.

The open folder, the tile filter and the tile names carry over from call to call. The first
call that fails ends the script, unless --keep-going is given. A file is checked to its end
before the first call; standard input is carried out line by line. --json prints an object
per line for each call.
)";

// Enough for every path. Without a limit, one line without an end would take all memory.
constexpr std::size_t kMaxLineBytes = 1 << 20;

struct ScriptOptions {
    std::string file;        // "-" for standard input
    bool keepGoing = false;  // after a call that failed
};

NamedCall callFromWords(std::vector<std::string> words) {
    CLI::App command("", "call");
    command.set_help_flag();
    NamedCall call;
    addCallWords(command, call);
    std::ranges::reverse(words);  // as CLI11 takes them
    try {
        command.parse(std::move(words));
    } catch (const CLI::ParseError& error) {
        throw WrongUsage(mistakeIn(command, error));
    }
    return call;
}

// The library would take what is before the NUL for the whole text.
void requireNoNul(const std::optional<std::string>& text, const std::string& name) {
    if (text && text->find('\0') != std::string::npos)
        throw WrongUsage(name + " holds a NUL byte, which would end it; leave it out");
}

// Returns the call of an existing export that this line describes, or nothing if the line is empty
// or a comment. Throws WrongUsage.
std::optional<NamedCall> callFrom(std::string_view line) {
    NamedCall call;
    if (isJsonCall(line)) {
        call = callFromJson(line);
    } else {
        std::vector<std::string> words = shellWords(line);
        if (words.empty()) return std::nullopt;
        call = callFromWords(std::move(words));
    }
    requireExport(call.name);
    requireNoNul(call.arguments.text, "the text");
    requireNoNul(call.arguments.buffer, "the buffer");
    return call;
}

// The calls of a script, one per line. `name` is what errors call the script.
class ScriptReader {
public:
    ScriptReader(std::istream& in, std::string name) : in_(in), name_(std::move(name)) {}

    // Returns the next call, or nothing at the end of the script. Throws WrongUsage, with the line,
    // for a line that is no call.
    std::optional<NamedCall> next() {
        for (;;) {
            try {
                const auto line = nextLine();
                if (!line) return std::nullopt;
                if (auto call = callFrom(*line)) return call;
            } catch (const WrongUsage& wrong) {
                throw WrongUsage(place() + wrong.what());
            }
        }
    }

    // The line of that call, from 1, and as errors start: "calls.txt:3: ".
    std::size_t number() const { return number_; }
    std::string place() const { return name_ + ':' + std::to_string(number_) + ": "; }

private:
    // Returns the next line, which is there until the next call; nothing at the end.
    std::optional<std::string_view> nextLine() {
        in_.getline(line_.data(), static_cast<std::streamsize>(line_.size()));
        const auto count = static_cast<std::size_t>(in_.gcount());
        if (count == 0 && !in_) return std::nullopt;
        ++number_;
        if (in_.fail())
            throw WrongUsage("the line has more than " + std::to_string(kMaxLineBytes) +
                             " bytes; write one call per line");
        return std::string_view(line_.data(), in_.eof() ? count : count - 1);
    }

    std::istream& in_;
    const std::string name_;
    std::vector<char> line_ = std::vector<char>(kMaxLineBytes + 1);
    std::size_t number_ = 0;
};

void printNumbered(std::size_t line, const Json& call) {
    Json numbered = {{"line", line}};
    numbered.update(call);
    printJson(numbered);
}

// Makes a call and prints what comes of it. Returns why it failed; nothing if it succeeded.
std::optional<std::string> failureOf(const Library& library, const NamedCall& call,
                                     std::size_t line, const Report& report) {
    try {
        requireHarmless(call, "nothing was done");
        const CallRecord made = library.call(call.name, call.arguments);
        if (report.isJson()) printNumbered(line, jsonOf(made));
        if (report.hasLines()) std::puts(lineOf(made).c_str());
        if (made.meaning.success) return std::nullopt;
        return failureSentence(made);
    } catch (const Failure& failure) {  // there is no status
        if (report.isJson())
            printNumbered(line,
                          {{"export", call.name}, {"success", false}, {"error", failure.what()}});
        return failure.what();
    }
}

bool runCalls(const Library& library, ScriptReader reader, bool keepGoing, const Report& report) {
    bool succeeded = true;
    while (const auto call = reader.next()) {
        const auto failure = failureOf(library, *call, reader.number(), report);
        if (failure && report.style != OutputStyle::kQuiet) printError(reader.place() + *failure);
        std::fflush(stdout);  // a program that reads along has it before the next call
        succeeded = succeeded && !failure;
        if (!succeeded && !keepGoing) break;
    }
    return succeeded;
}

// Prints each call as it is made, and returns whether every one succeeded. A file is checked to its
// end before the first call; standard input is carried out line by line, so that a program can go on
// with what a call returned.
bool runScript(const Library& library, const ScriptOptions& options, const Report& report) {
    if (options.file == "-")
        return runCalls(library, {std::cin, "standard input"}, options.keepGoing, report);
    const std::vector<std::uint8_t> bytes = readWholeFile(options.file, "script");
    const std::string text(bytes.begin(), bytes.end());
    std::istringstream checked(text);
    ScriptReader reader(checked, options.file);
    while (reader.next()) {
    }
    std::istringstream calls(text);
    return runCalls(library, {calls, options.file}, options.keepGoing, report);
}

}  // namespace

void addScriptCommand(CommandLine& line) {
    const auto options = std::make_shared<ScriptOptions>();
    CLI::App& command = line.add(
        "script", "Make a list of calls in one process", kExamples,
        [&line, options] { return runScript(line.openLibrary(), *options, line.report()); });
    CommandLine::addArgument(command, "FILE", options->file,
                             "The calls, one per line; - is standard input");
    command.add_flag("--keep-going", options->keepGoing, "Continue after a call that failed");
    line.addOutputFlags(command, Verbose::kNo);
}
