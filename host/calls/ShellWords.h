#pragma once
// The words of a line, quoted as in a shell.

#include <string>
#include <string_view>
#include <vector>

// Splits a line at blanks. '...' takes all as it stands; "..." takes blanks and '; a backslash
// takes the next character, between "..." only one of \ " $ `. A # that starts a word starts a
// comment. Nothing is expanded: $, * and ~ are characters like others.
//
// Throws WrongUsage for a quote that is not closed and for a backslash at the end.
std::vector<std::string> shellWords(std::string_view line);
