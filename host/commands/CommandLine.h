#pragma once
// The command line of quillon: what its commands have in common.

#include <functional>
#include <string>
#include <utility>
#include <vector>

#include <CLI/CLI.hpp>

#include "calls/Library.h"
#include "calls/Report.h"
#include "commands/Candidates.h"
#include "files/DiskFile.h"

enum class Verbose { kNo, kYes };  // whether a command prints its calls

// "tiff, psd or bmp".
std::string listed(const std::vector<std::string>& words);

class CommandLine {
public:
    CommandLine();

    // Runs the command that the arguments name.
    //
    //   returns  whether it succeeded. Throws WrongUsage, Failure and Interrupted.
    bool run(int argc, char** argv);

    // With --json, prints the object that says why run() threw.
    void reportFailure(const std::string& sentence, int exitStatus) const;

    // The rest is for the commands.

    // Adds a command, whose help ends with `examples`. `work` carries it out once its options are
    // set, and returns whether it succeeded.
    CLI::App& add(const char* name, const char* description, const std::string& examples,
                  std::function<bool()> work);

    // Adds --json, --quiet and, if the command prints its calls, --summary and --verbose.
    void addOutputFlags(CLI::App& command, Verbose verbose);

    // Adds --progress.
    void addProgress(CLI::App& command);

    // Adds one such flag.
    CLI::Option* addStyle(CLI::App& command, const char* name, OutputStyle style,
                          const char* description);

    // Adds --no-clobber and --force. `forced` says what only --force replaces.
    static void addOverwriteFlags(CLI::App& command, Overwrite& overwrite, const char* forced);

    // Adds a required argument without a dash.
    template <typename Value>
    static CLI::Option* addArgument(CLI::App& command, const char* name, Value& value,
                                    const char* description) {
        return command.add_option(name, value, description)->required()->type_name("");
    }

    // Limits an option to these words, appends them to its description and completes them.
    void oneOf(CLI::Option* option, const std::vector<std::string>& choices);

    // Returns a check that the option of this name gets a whole number from `low` to `high`.
    static std::function<std::string(const std::string&)> wholeNumber(const std::string& name,
                                                                      int low, int high);

    Report& report() { return report_; }

    // Prints the report if --json was given; returns true, as the end of a command that succeeded.
    bool finishReport() const;

    // Throws Failure. What the library itself prints is shown only where the command prints lines.
    Library openLibrary() const;
    Library openLibrary(LibraryPrints prints) const;

private:
    struct Command {
        const CLI::App* app;
        std::function<bool()> work;
    };

    // Returns whether a command is to run, and not help or the version was printed.
    bool parse(std::vector<std::string> words);

    CLI::App app_;
    std::vector<Command> commands_;
    OptionChoices choices_;
    std::string library_;
    Report report_;
    bool asksForJson_ = false;  // also where the options contradict each other
};
