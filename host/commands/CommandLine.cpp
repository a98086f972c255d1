#include "commands/CommandLine.h"

#include <algorithm>
#include <cstdio>

#include "terminal/Failure.h"

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

Exit status: 0 success, 1 failure, 2 wrong usage, 130 interrupted.
quillon COMMAND --help explains a command.
)";

}  // namespace

std::string listed(const std::vector<std::string>& words) {
    std::string list = words.front();
    for (std::size_t i = 1; i < words.size(); ++i)
        list += (i + 1 < words.size() ? ", " : " or ") + words[i];
    return list;
}

CommandLine::CommandLine() : app_("Calls the Quillon plug-in the way Morvane does.", "quillon") {
    app_.set_help_flag("--help", "Print this help and exit");
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
    addStyle(command, "--verbose", OutputStyle::kAllLines,
             "Print every call, also in long rows of equal calls")
        ->excludes(json)
        ->excludes(quiet);
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
    option->check(CLI::IsMember(choices).description(""));
    option->description(option->get_description() + listed(choices));
    choices_[option] = choices;
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
    // The words of a completion may be options of any kind, so they are not parsed.
    if (argc > 1 && std::string_view(argv[1]) == "complete") {
        for (const std::string& word : candidatesFor(app_, choices_, {argv + 2, argv + argc}))
            std::puts(word.c_str());
        return true;
    }
    try {
        app_.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        if (error.get_exit_code() == 0) return app_.exit(error) == 0;  // --help or --version
        throw WrongUsage(std::string(error.what()) + "; see quillon --help");
    }
    return runParsed();
}

bool CommandLine::runParsed() const {
    const auto isParsed = [](const Command& command) { return command.app->parsed(); };
    try {
        return std::ranges::find_if(commands_, isParsed)->work();
    } catch (const std::exception& failure) {
        if (report_.isJson()) report_.printFailure(failure.what());
        throw;
    }
}
