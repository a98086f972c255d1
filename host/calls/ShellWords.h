#pragma once
// The words of a line, quoted as in a shell.

#include <string>
#include <string_view>
#include <vector>

// Splits a line at blanks. '...' quotes everything; "..." quotes blanks and '; a backslash quotes the
// next character, within "..." only one of \ " $ `. A # at the start of a word starts a comment.
// Nothing is expanded: $, * and ~ are ordinary characters.
//
// Throws WrongUsage for a quote that is not closed and for a backslash at the end.
std::vector<std::string> shellWords(std::string_view line);
