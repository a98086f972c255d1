#include "commands/CommandLine.h"

#include <algorithm>
#include <cstdio>

#include "commands/Mistakes.h"
#include "terminal/Failure.h"
#include "terminal/Suggestion.h"

namespace {

constexpr const char* kExamples = R"(Examples:
  quillon call Version
  quillon describe getUVTile
  quillon inspect all.tif
  quillon script calls.txt
  quillon import model.obj model.Vemo --tile-per-group
  quillon tiles model.Vemo
  quillon export model.Vemo --out maps
  quillon tour model.Vemo --out maps
  quillon merge all.tif 1001.tif 1002.tif
  quillon fix painted.tif all.tif
  quillon --library build/release/libQuillon.so call Version

quillon COMMAND --help, or quillon help COMMAND, explains a command.

Exit status:
  0    success
  1    failure: an export failed, a file cannot be read or written
  2    wrong usage: an unknown command, option, export or value
  129  ended by SIGHUP, 130 by SIGINT (Ctrl-C), 143 by SIGTERM
  141  the program that read the output has ended
)";

// Whether --json is among the options. It is looked for before the words are parsed, so that an
// error in them is reported as JSON, too.
bool asksForJson(const std::vector<std::string>& words) {
    const auto end = std::ranges::find(words, "--");
    return std::find(words.begin(), end, "--json") != end;
}

}  // namespace

std::string listed(const std::vector<std::string>& words) {
    std::string list = words.front();
    for (std::size_t i = 1; i < words.size(); ++i)
        list += (i + 1 < words.size() ? ", " : " or ") + words[i];
    return list;
}

CommandLine::CommandLine() : app_("Calls the Quillon plug-in the way Morvane does.", "quillon") {
    app_.set_help_flag("-h,--help", "Print this help and exit");
    app_.set_version_flag("--version", "quillon " QUILLON_VERSION, "Print the version and exit");
    app_.require_subcommand(1);
    app_.footer(kExamples);
    app_.add_option("--library", library_,
                    "The built library; by default the one near this program")
        ->type_name("PATH");
}

CLI::App& CommandLine::add(const char* name, const char* description, const std::string& examples,
                           std::function<bool()> work) {
    CLI::App* command = app_.add_subcommand(name, description);
    command->footer(examples);
    commands_.push_back({command, std::move(work)});
    return *command;
}

CLI::Option* CommandLine::addStyle(CLI::App& command, const char* name, OutputStyle style,
                                   const char* description) {
    return command.add_flag_callback(
        name, [this, style] { report_.style = style; }, description);
}

void CommandLine::addOutputFlags(CLI::App& command, Verbose verbose) {
    CLI::Option* json = addStyle(command, "--json", OutputStyle::kJson, "Print JSON, for scripts");
    CLI::Option* quiet = addStyle(command, "--quiet", OutputStyle::kQuiet,
                                  "Print nothing; the exit status says whether it worked")
                             ->excludes(json);
    if (verbose == Verbose::kNo) return;
    command.add_flag("--summary", report_.isSummary, "With --json: leave out the calls")
        ->needs(json);
    addStyle(command, "--verbose", OutputStyle::kAllLines,
             "Print every call, also in long rows of equal calls")
        ->excludes(json)
        ->excludes(quiet);
}

void CommandLine::addProgress(CLI::App& command) {
    const auto setFormat = [this](const std::string&) { report_.progressAsJson = true; };
    oneOf(command
              .add_option_function<std::string>("--progress", setFormat,
                                                "Also write the progress to standard error as ")
              ->type_name("FORMAT"),
          {"json"});
}

void CommandLine::addOverwriteFlags(CLI::App& command, Overwrite& overwrite, const char* forced) {
    CLI::Option* never = command.add_flag_callback(
        "--no-clobber", [&overwrite] { overwrite = Overwrite::kNever; },
        "Fail if a file to write exists");
    command
        .add_flag_callback(
            "--force", [&overwrite] { overwrite = Overwrite::kForce; }, forced)
        ->excludes(never);
}

void CommandLine::oneOf(CLI::Option* option, const std::vector<std::string>& choices) {
    option->check([option, choices](const std::string& word) {
        if (std::ranges::find(choices, word) == choices.end())
            throw WrongUsage(option->get_name() + " takes " + listed(choices) + ", not '" + word +
                             '\'' + suggestionFor(word, choices));
        return std::string();
    });
    option->description(option->get_description() + listed(choices));
    choices_[option] = choices;
}

std::function<std::string(const std::string&)> CommandLine::wholeNumber(const std::string& name,
                                                                        int low, int high) {
    const std::string numbers = std::to_string(low) + " to " + std::to_string(high);
    const std::string taken = low == high ? std::to_string(low) : "a whole number from " + numbers;
    return [range = CLI::Range(low, high), name, taken](const std::string& word) {
        if (!range(word).empty())
            throw WrongUsage(name + " takes " + taken + ", not '" + word + '\'');
        return std::string();
    };
}

void CommandLine::reportFailure(const std::string& sentence, int exitStatus) const {
    if (asksForJson_) report_.printFailure(sentence, exitStatus);
}

bool CommandLine::finishReport() const {
    if (report_.isJson()) report_.printSuccess();
    return true;
}

Library CommandLine::openLibrary() const {
    return openLibrary(report_.hasLines() ? LibraryPrints::kShown : LibraryPrints::kDropped);
}

Library CommandLine::openLibrary(LibraryPrints prints) const {
    return Library(library_.empty() ? libraryBesideProgram() : library_, prints);
}

bool CommandLine::run(int argc, char** argv) {
    std::vector<std::string> words(argv + 1, argv + argc);
    // The words of a completion may be options of any kind, so they are not parsed.
    if (!words.empty() && words.front() == "complete") {
        for (const std::string& word :
             candidatesFor(app_, choices_, {words.begin() + 1, words.end()}))
            std::puts(word.c_str());
        return true;
    }
    asksForJson_ = asksForJson(words);
    if (!parse(std::move(words))) return true;
    const auto isParsed = [](const Command& command) { return command.app->parsed(); };
    return std::ranges::find_if(commands_, isParsed)->work();
}

bool CommandLine::parse(std::vector<std::string> words) {
    if (!words.empty() && words.front() == "help") {
        words.erase(words.begin());
        words.emplace_back("--help");
    }
    std::ranges::reverse(words);  // as CLI11 takes them
    try {
        app_.parse(words);
        return true;
    } catch (const CLI::ParseError& error) {
        const bool isRequest = error.get_exit_code() == 0;  // --help or --version
        if (!isRequest || !app_.remaining().empty())
            throw WrongUsage(withHelp(app_, mistakeIn(app_, error)));
        app_.exit(error);
        return false;
    } catch (const WrongUsage& wrong) {
        throw WrongUsage(withHelp(app_, wrong.what()));
    }
}
