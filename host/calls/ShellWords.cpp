#include "calls/ShellWords.h"

#include <algorithm>
#include <utility>

#include "terminal/Failure.h"

namespace {

constexpr std::string_view kBlanks = " \t\r";
constexpr std::string_view kEscapedInQuotes = "\\\"$`";

class Splitter {
public:
    explicit Splitter(std::string_view line) : rest_(line) {}

    std::vector<std::string> split() {
        for (;;) {
            rest_.remove_prefix(std::min(rest_.find_first_not_of(kBlanks), rest_.size()));
            if (rest_.empty() || rest_.front() == '#') return std::move(words_);
            words_.push_back(nextWord());
        }
    }

private:
    std::string nextWord() {
        std::string word;
        while (!rest_.empty() && kBlanks.find(rest_.front()) == std::string_view::npos) {
            const char c = take();
            if (c == '\'')
                word += quoted();
            else if (c == '"')
                word += doubleQuoted();
            else
                word += c == '\\' ? takeEscaped() : c;
        }
        return word;
    }

    std::string_view quoted() {
        const std::size_t end = rest_.find('\'');
        if (end == std::string_view::npos) throw WrongUsage("a quote is not closed");
        const std::string_view text = rest_.substr(0, end);
        rest_.remove_prefix(end + 1);
        return text;
    }

    std::string doubleQuoted() {
        std::string text;
        while (!rest_.empty()) {
            const char c = take();
            if (c == '"') return text;
            const bool escapes = c == '\\' && !rest_.empty() &&
                                 kEscapedInQuotes.find(rest_.front()) != std::string_view::npos;
            text += escapes ? take() : c;
        }
        throw WrongUsage("a quote is not closed");
    }

    char takeEscaped() {
        if (rest_.empty()) throw WrongUsage("nothing follows the backslash");
        return take();
    }

    char take() {
        const char c = rest_.front();
        rest_.remove_prefix(1);
        return c;
    }

    std::string_view rest_;
    std::vector<std::string> words_;
};

}  // namespace

std::vector<std::string> shellWords(std::string_view line) {
    return Splitter(line).split();
}
