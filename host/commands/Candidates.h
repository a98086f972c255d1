#pragma once
// What a shell offers when the user presses the tab key in a quillon command. The words come from
// the declared command line itself, so they always match it.

#include <map>
#include <string>
#include <vector>

namespace CLI {
class App;
class Option;
}

// The words that an option accepts, for those that accept only a few.
using OptionChoices = std::map<const CLI::Option*, std::vector<std::string>>;

// The names of all commands, and of the options of one with their dashes.
std::vector<std::string> commandNames(const CLI::App& app);
std::vector<std::string> optionNames(const CLI::App& command);

// Returns the candidates for the last of the words after "quillon", which is unfinished and may be
// empty. None where a path, a number or a text is expected: there the shell offers files.
std::vector<std::string> candidatesFor(const CLI::App& app, const OptionChoices& choices,
                                       const std::vector<std::string>& words);
