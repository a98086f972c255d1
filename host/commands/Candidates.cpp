#include "commands/Candidates.h"

#include <CLI/CLI.hpp>
#include <algorithm>

#include "exports/Exports.h"

namespace {

// What the words before the unfinished one lead to.
struct Position {
    const CLI::App* command;
    const CLI::Option* awaited = nullptr;  // the option whose value is next
    std::size_t positionals = 0;           // how many there are so far
};

void step(Position& position, const std::string& word) {
    if (position.awaited != nullptr) {
        position.awaited = nullptr;
        return;
    }
    const auto isNamed = [&word](const CLI::App* command) { return command->check_name(word); };
    if (word.starts_with("-")) {
        const CLI::Option* option = position.command->get_option_no_throw(word);
        if (option != nullptr && option->get_expected_min() > 0) position.awaited = option;
        return;
    }
    const auto commands = position.command->get_subcommands(isNamed);
    if (commands.empty())
        ++position.positionals;
    else
        position = {commands.front()};
}

std::vector<std::string> valuesOf(const CLI::Option& option, const OptionChoices& choices) {
    if (option.get_name(true) == "EXPORT") return exportNames();
    const auto found = choices.find(&option);
    return found == choices.end() ? std::vector<std::string>() : found->second;
}

std::vector<std::string> positionalValues(const Position& position, const OptionChoices& choices) {
    const auto positionals = position.command->get_options(
        [](const CLI::Option* option) { return option->get_positional(); });
    if (position.positionals >= positionals.size()) return {};
    return valuesOf(*positionals[position.positionals], choices);
}

std::vector<std::string> wordsAt(const Position& position, const OptionChoices& choices,
                                 bool startsAnOption) {
    if (position.awaited != nullptr) return valuesOf(*position.awaited, choices);
    if (startsAnOption) return optionNames(*position.command);
    std::vector<std::string> names = commandNames(*position.command);
    return names.empty() ? positionalValues(position, choices) : names;
}

}  // namespace

std::vector<std::string> optionNames(const CLI::App& command) {
    std::vector<std::string> names;
    for (const CLI::Option* option : command.get_options()) {
        for (const std::string& name : option->get_lnames())
            names.push_back("--" + name);
    }
    return names;
}

std::vector<std::string> commandNames(const CLI::App& app) {
    std::vector<std::string> names;
    for (const CLI::App* command : app.get_subcommands([](const CLI::App*) { return true; }))
        names.push_back(command->get_name());
    return names;
}

std::vector<std::string> candidatesFor(const CLI::App& app, const OptionChoices& choices,
                                       const std::vector<std::string>& words) {
    if (words.empty()) return {};
    Position position{&app};
    for (std::size_t i = 0; i + 1 < words.size(); ++i)
        step(position, words[i]);
    const std::string& unfinished = words.back();
    std::vector<std::string> found = wordsAt(position, choices, unfinished.starts_with("-"));
    std::erase_if(found, [&](const std::string& word) { return !word.starts_with(unfinished); });
    return found;
}
