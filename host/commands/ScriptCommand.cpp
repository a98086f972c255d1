// quillon script: a list of calls in one process, so that the open folder, the tile filter and the
// tile names carry over from one to the next.

#include <cstdio>
#include <iostream>
#include <sstream>

#include "calls/CallLog.h"
#include "calls/ScriptReader.h"
#include "commands/Commands.h"
#include "exports/Meanings.h"
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
    OutputStyle output = OutputStyle::kLines;
};

class Script {
public:
    Script(const Library& library, const ScriptOptions& options, const ScriptReader& reader)
        : library_(library), options_(options), reader_(reader) {}

    // Returns whether the script continues.
    bool carryOut(const ScriptLine& line) {
        if (!call(line)) succeeded_ = false;
        std::fflush(stdout);  // a program that reads along has it before the next call
        return succeeded_ || options_.keepGoing;
    }

    bool succeeded() const { return succeeded_; }

private:
    bool call(const ScriptLine& line) const;
    void printFailure(const ScriptLine& line, const std::string& sentence) const;

    const Library& library_;
    const ScriptOptions& options_;
    const ScriptReader& reader_;
    bool succeeded_ = true;
};

Json numbered(const ScriptLine& line, const Json& object) {
    Json numbered = {{"line", line.number}};
    numbered.update(object);
    return numbered;
}

bool Script::call(const ScriptLine& line) const {
    const auto& [name, arguments] = line.call;
    try {
        const CallRecord made = library_.call(name, arguments);
        if (options_.output == OutputStyle::kJson) printJson(numbered(line, jsonOf(made)));
        if (printsLines(options_.output)) std::puts(lineOf(made).c_str());
        if (meaningOf(requireExport(name), arguments, made.result.status).success) return true;
        printFailure(line, failureSentence(name, arguments, made.result.status));
    } catch (const Failure& failure) {  // there is no status
        const Json object = {{"export", name}, {"success", false}, {"error", failure.what()}};
        if (options_.output == OutputStyle::kJson) printJson(numbered(line, object));
        printFailure(line, failure.what());
    }
    return false;
}

void Script::printFailure(const ScriptLine& line, const std::string& sentence) const {
    if (options_.output == OutputStyle::kQuiet) return;
    std::fflush(stdout);
    std::fprintf(stderr, "%s %s%s\n", inRed(stderr, "quillon:").c_str(),
                 reader_.place(line.number).c_str(), sentence.c_str());
}

bool runStream(const Library& library, const ScriptOptions& options) {
    ScriptReader reader(std::cin, "standard input");
    Script script(library, options, reader);
    while (const auto line = reader.next()) {
        if (!script.carryOut(*line)) break;
    }
    return script.succeeded();
}

bool runFile(const Library& library, const ScriptOptions& options) {
    const std::vector<std::uint8_t> bytes = readWholeFile(options.file, "script");
    std::istringstream text(std::string(bytes.begin(), bytes.end()));
    ScriptReader reader(text, options.file);
    std::vector<ScriptLine> lines;
    while (auto line = reader.next())
        lines.push_back(std::move(*line));

    Script script(library, options, reader);
    for (const ScriptLine& line : lines) {
        if (!script.carryOut(line)) break;
    }
    return script.succeeded();
}

// Prints each call as it is made, and returns whether every one succeeded. A file is checked to its
// end before the first call; standard input is carried out line by line, so that a program can go on
// with what a call returned.
bool runScript(const Library& library, const ScriptOptions& options) {
    return options.file == "-" ? runStream(library, options) : runFile(library, options);
}

}  // namespace

void addScriptCommand(CommandLine& line) {
    const auto options = std::make_shared<ScriptOptions>();
    CLI::App& command =
        line.add("script", "Make a list of calls in one process", kExamples, [&line, options] {
            options->output = line.output();
            return runScript(line.openLibrary(), *options);
        });
    CommandLine::addArgument(command, "FILE", options->file,
                             "The calls, one per line; - is standard input");
    command.add_flag("--keep-going", options->keepGoing, "Continue after a call that failed");
    line.addOutputFlags(command, Verbose::kNo);
}
