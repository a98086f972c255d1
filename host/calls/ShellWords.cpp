#include "calls/ShellWords.h"

#include <algorithm>

#include "terminal/Failure.h"

namespace {

constexpr std::string_view kBlanks = " \t\r";
constexpr std::string_view kEscapedInQuotes = "\\\"$`";

// Each of these takes characters from the front of `rest`, which is what is left of the line.

char take(std::string_view& rest) {
    const char c = rest.front();
    rest.remove_prefix(1);
    return c;
}

char escaped(std::string_view& rest) {
    if (rest.empty()) throw WrongUsage("nothing follows the backslash");
    return take(rest);
}

// The text up to the quote that ends it. In "..." a backslash may escape the next character.
std::string quoted(std::string_view& rest, char quote) {
    std::string text;
    while (!rest.empty()) {
        const char c = take(rest);
        if (c == quote) return text;
        const bool escapes = quote == '"' && c == '\\' && !rest.empty() &&
                             kEscapedInQuotes.find(rest.front()) != std::string_view::npos;
        text += escapes ? take(rest) : c;
    }
    throw WrongUsage("a quote is not closed");
}

std::string nextWord(std::string_view& rest) {
    std::string word;
    while (!rest.empty() && kBlanks.find(rest.front()) == std::string_view::npos) {
        const char c = take(rest);
        if (c == '\'' || c == '"')
            word += quoted(rest, c);
        else
            word += c == '\\' ? escaped(rest) : c;
    }
    return word;
}

}  // namespace

std::vector<std::string> shellWords(std::string_view line) {
    std::vector<std::string> words;
    for (;;) {
        line.remove_prefix(std::min(line.find_first_not_of(kBlanks), line.size()));
        if (line.empty() || line.front() == '#') return words;
        words.push_back(nextWord(line));
    }
}
