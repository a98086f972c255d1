#pragma once
// Errors, and colours on a terminal. A file, a pipe, a terminal without colours, and any output while
// NO_COLOR is set, get plain text.

#include <cstdio>
#include <string>

// Returns the text for `stream`, green or red.
std::string inGreen(std::FILE* stream, const std::string& text);
std::string inRed(std::FILE* stream, const std::string& text);

// Prints "quillon: " and the sentence on standard error, behind all that was printed before.
void printError(const std::string& sentence);
