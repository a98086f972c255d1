#include "commands/ScriptCommand.h"

#include <cstdio>
#include <iostream>
#include <optional>
#include <sstream>
#include <vector>

#include "calls/CallLog.h"
#include "calls/CallWords.h"
#include "calls/ShellWords.h"
#include "exports/Meanings.h"
#include "files/DiskFile.h"
#include "terminal/Colour.h"
#include "terminal/Failure.h"

namespace {

struct ScriptLine {
    std::size_t number;  // from 1
    NamedCall call;
};

// The lines of a script that are calls, one after the other.
class ScriptReader {
public:
    ScriptReader(std::istream& in, std::string name) : in_(in), name_(std::move(name)) {}

    // Nothing at the end of the script.
    std::optional<ScriptLine> next() {
        for (std::string line; std::getline(in_, line);) {
            ++number_;
            try {
                std::vector<std::string> words = shellWords(line);
                if (!words.empty()) return ScriptLine{number_, callFrom(std::move(words))};
            } catch (const WrongUsage& wrong) {
                throw WrongUsage(place(number_) + wrong.what());
            }
        }
        return std::nullopt;
    }

    std::string place(std::size_t number) const {
        return name_ + ':' + std::to_string(number) + ": ";
    }

private:
    std::istream& in_;
    const std::string name_;
    std::size_t number_ = 0;
};

class Script {
public:
    Script(const Library& library, const ScriptOptions& options, const ScriptReader& reader)
        : library_(library), options_(options), reader_(reader) {}

    // Returns whether the script goes on.
    bool carryOut(const ScriptLine& line) {
        if (!call(line)) succeeded_ = false;
        std::fflush(stdout);  // whoever reads along has it before the next call
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

}  // namespace

bool runScript(const Library& library, const ScriptOptions& options) {
    return options.file == "-" ? runStream(library, options) : runFile(library, options);
}
