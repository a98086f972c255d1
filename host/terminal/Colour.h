#pragma once
// Colours on a terminal. A file, a pipe, a terminal without colours, and any output while NO_COLOR is
// set, get plain text.

#include <cstdio>
#include <string>

// Returns the text for `stream`, green or red.
std::string inGreen(std::FILE* stream, const std::string& text);
std::string inRed(std::FILE* stream, const std::string& text);
