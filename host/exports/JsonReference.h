#pragma once
// The table of exports as JSON, for generators of other people's code and documentation.

#include <string>

// The whole table, indented. `version.format` rises when a member changes or goes.
std::string jsonReference();
