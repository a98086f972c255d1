#include "commands/Mistakes.h"

#include <CLI/CLI.hpp>
#include <algorithm>

#include "commands/Candidates.h"
#include "commands/CommandLine.h"
#include "terminal/Suggestion.h"

namespace {

// The command that was parsed; the program itself if there is none.
const CLI::App* commandIn(const CLI::App* app) {
    const auto parsed = app->get_subcommands();
    return parsed.empty() ? app : parsed.front();
}

bool isOption(const std::string& word) {
    return word.size() > 1 && word.starts_with('-');
}

std::string unknownCommand(const CLI::App& app, const std::string& word) {
    const std::vector<std::string> names = commandNames(app);
    const std::string suggestion = suggestionFor(word, names);
    return "there is no command " + word +
           (suggestion.empty() ? ": choose " + listed(names) : suggestion);
}

std::string unknownOption(const CLI::App& app, const CLI::App& command, const std::string& word) {
    const std::string name = word.substr(0, word.find('='));
    const bool isBeforeCommand = &command == &app;
    const CLI::App& other = isBeforeCommand ? *commandIn(&app) : app;
    if (other.get_option_no_throw(name) != nullptr)
        return name + " goes " + (isBeforeCommand ? "behind" : "before") + " the command";
    return command.get_name() + " has no option " + name +
           suggestionFor(name, optionNames(command));
}

// A sentence about the words that nothing takes; empty if there are none.
std::string unknownWords(const CLI::App& app) {
    const CLI::App& command = *commandIn(&app);
    std::vector<std::string> words = app.remaining();
    if (!words.empty() && !commandNames(app).empty()) {
        const std::string& word = words.front();
        return isOption(word) ? unknownOption(app, app, word) : unknownCommand(app, word);
    }
    words = command.remaining();
    if (words.empty()) return {};
    const auto option = std::ranges::find_if(words, isOption);
    if (option != words.end()) return unknownOption(app, command, *option);
    return words.front() + " is one word more than " + command.get_name() + " takes";
}

// The error names the option before a colon.
std::string wrongCount(const CLI::App& app, const std::string& error) {
    const std::string name = error.substr(0, error.find(':'));
    const CLI::Option* option = commandIn(&app)->get_option_no_throw(name);
    const bool isRepeated = option != nullptr && option->count() > 1;
    return name + (isRepeated ? " is given more than once" : " needs a value");
}

}  // namespace

std::string mistakeIn(const CLI::App& app, const CLI::ParseError& error) {
    std::string unknown = unknownWords(app);
    if (!unknown.empty()) return unknown;
    if (commandIn(&app) == &app && dynamic_cast<const CLI::RequiredError*>(&error) != nullptr)
        return "no command is given";
    if (dynamic_cast<const CLI::ArgumentMismatch*>(&error) != nullptr)
        return wrongCount(app, error.what());
    return error.what();
}

std::string withHelp(const CLI::App& app, const std::string& sentence) {
    const CLI::App& command = *commandIn(&app);
    const std::string name = &command == &app ? "" : command.get_name() + ' ';
    return sentence + (sentence.ends_with('?') ? " See" : "; see") + " quillon " + name + "--help";
}
