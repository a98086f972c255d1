#pragma once
// Colours for a person at a terminal. A file, a pipe, a terminal without colours and a person who
// has set NO_COLOR get the text alone.

#include <cstdio>
#include <string>

// The text for `stream`, green or red.
std::string inGreen(std::FILE* stream, const std::string& text);
std::string inRed(std::FILE* stream, const std::string& text);
