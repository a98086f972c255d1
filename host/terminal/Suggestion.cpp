#include "terminal/Suggestion.h"

#include <algorithm>
#include <cctype>
#include <numeric>
#include <utility>

namespace {

constexpr std::size_t kLettersPerSlip = 3;

// Dashes before an option are no letters.
std::string lettersOf(std::string_view word) {
    word.remove_prefix(std::min(word.find_first_not_of('-'), word.size()));
    std::string letters(word);
    std::ranges::transform(letters, letters.begin(),
                           [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return letters;
}

// How many letters must be inserted, removed, replaced or exchanged with the next one to make one
// word of the other.
std::size_t slipsBetween(const std::string& from, const std::string& to) {
    std::vector<std::size_t> last;
    std::vector<std::size_t> row(to.size() + 1);
    std::iota(row.begin(), row.end(), std::size_t{0});
    for (std::size_t i = 1; i <= from.size(); ++i) {
        const std::vector<std::size_t> beforeLast = std::exchange(last, row);
        row[0] = i;
        for (std::size_t j = 1; j <= to.size(); ++j) {
            const std::size_t replaced = last[j - 1] + (from[i - 1] == to[j - 1] ? 0 : 1);
            row[j] = std::min({replaced, last[j] + 1, row[j - 1] + 1});
            if (i > 1 && j > 1 && from[i - 1] == to[j - 2] && from[i - 2] == to[j - 1])
                row[j] = std::min(row[j], beforeLast[j - 2] + 1);
        }
    }
    return row.back();
}

}  // namespace

std::string suggestionFor(std::string_view word, const std::vector<std::string>& words) {
    const std::string typed = lettersOf(word);
    std::string nearest;
    std::size_t fewest = typed.size() / kLettersPerSlip + 1;
    for (const std::string& candidate : words) {
        const std::string letters = lettersOf(candidate);
        const bool abbreviated = typed.size() > 1 && letters.starts_with(typed);
        const std::size_t slips = abbreviated ? 0 : slipsBetween(typed, letters);
        if (slips >= fewest) continue;
        fewest = slips;
        nearest = candidate;
    }
    return nearest.empty() ? nearest : "; did you mean " + nearest + '?';
}
