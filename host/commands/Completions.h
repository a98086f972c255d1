#pragma once
// What a shell offers when the user presses the tab key in a quillon command. The words come from
// the declared command line itself, so that they cannot fall behind it.

#include <map>
#include <string>
#include <vector>

namespace CLI {
class App;
class Option;
}

// The words that an option takes, where it takes a few only.
using OptionChoices = std::map<const CLI::Option*, std::vector<std::string>>;

// The candidates for the last of the words behind "quillon", which is unfinished and may be empty.
// None where a file, a number or a text is wanted: for these the shell offers files.
std::vector<std::string> candidatesFor(const CLI::App& app, const OptionChoices& choices,
                                       const std::vector<std::string>& words);

// The script by which a shell asks for candidates: bash, zsh or fish.
std::string completionScript(const std::string& shell);
