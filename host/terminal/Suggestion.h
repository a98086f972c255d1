#pragma once
// What somebody who mistyped a word may have meant.

#include <string>
#include <string_view>
#include <vector>

// Returns "; did you mean X?" for the one of `words` that is nearest to `word`, or an empty text if
// none is near: a slip in three letters at most, in whatever case, or an abbreviation.
std::string suggestionFor(std::string_view word, const std::vector<std::string>& words);
