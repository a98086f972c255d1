#pragma once
// The command line itself as JSON, from which shell completions are made.

#include <map>
#include <string>
#include <vector>

#include "Report.h"

namespace CLI {
class App;
class Option;
}

using OptionChoices = std::map<const CLI::Option*, std::vector<std::string>>;

// {"name", "help", "options", "commands"}; an option is {"names", "help", "positional", "flag",
// "required", "many", "choices"}, its choices only where there are some. Hidden commands are left
// out.
Json interfaceOf(const CLI::App& app, const OptionChoices& choices);
