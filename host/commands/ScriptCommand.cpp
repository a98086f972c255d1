// quillon script: a list of calls in one process, so that the open folder, the tile filter and the
// tile names carry over from one to the next.

#include <algorithm>
#include <cstdio>
#include <iostream>
#include <optional>
#include <sstream>

#include "calls/CallLog.h"
#include "calls/CallWords.h"
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

Each line is what follows quillon call, quoted as in a shell; # starts a comment:
  setUVtilesOutput filter.txt # the tiles to export
  getUVs 'my model.Vemo' 2 maps/model.Vemo
  getUVString --value 0

The open folder, the tile filter and the tile names carry over from call to call. The first
call that fails ends the script, unless --keep-going is given. A file is checked to its end
before the first call; standard input is carried out line by line. --json prints an object
per line for each call.
)";

struct ScriptOptions {
    std::string file;        // "-" for standard input
    bool keepGoing = false;  // after a call that failed
};

// Returns the call of an existing export that these words describe. Throws WrongUsage.
NamedCall callFrom(std::vector<std::string> words) {
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
    requireExport(call.name);
    return call;
}

// The calls of a script, one per line. `name` is what errors call the script.
class ScriptReader {
public:
    ScriptReader(std::istream& in, std::string name) : in_(in), name_(std::move(name)) {}

    // Returns the next call, or nothing at the end of the script. Throws WrongUsage, with the line,
    // for a line that is no call.
    std::optional<NamedCall> next() {
        for (std::string line; std::getline(in_, line);) {
            ++number_;
            try {
                std::vector<std::string> words = shellWords(line);
                if (!words.empty()) return callFrom(std::move(words));
            } catch (const WrongUsage& wrong) {
                throw WrongUsage(place() + wrong.what());
            }
        }
        return std::nullopt;
    }

    // The line of that call, from 1, and as errors start: "calls.txt:3: ".
    std::size_t number() const { return number_; }
    std::string place() const { return name_ + ':' + std::to_string(number_) + ": "; }

private:
    std::istream& in_;
    const std::string name_;
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
