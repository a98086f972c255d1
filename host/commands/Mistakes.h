#pragma once
// What is wrong with a command line, and which help explains what is right.

#include <string>

namespace CLI {
class App;
class ParseError;
}

// Returns a sentence about the error that parsing ended with: an unknown command or option with the
// nearest one, a word too many, or what is missing. `app` has commands, or is a command itself.
std::string mistakeIn(const CLI::App& app, const CLI::ParseError& error);

// Returns the sentence with the help of the command that was parsed, or else the main help.
std::string withHelp(const CLI::App& app, const std::string& sentence);
