#include "mesh/TileFilter.h"

#include <algorithm>
#include <charconv>
#include <iterator>
#include <limits>
#include <utility>

namespace {

// Calls `use` for each part of `text` that `separator` ends, the last one included.
template <typename Use>
void forEachPart(std::string_view text, char separator, Use use) {
    for (std::size_t begin = 0; begin <= text.size();) {
        const std::size_t end = std::min(text.find(separator, begin), text.size());
        use(text.substr(begin, end - begin));
        begin = end + 1;
    }
}

// The number at the start of `text`, after blanks and a sign; 0 without digits, the nearest number
// there is beyond the range.
std::int32_t leadingNumber(std::string_view text) {
    const std::size_t start = text.find_first_not_of("\t\n\v\f\r ");
    if (start == std::string_view::npos) return 0;
    text.remove_prefix(start);
    const bool plus = text.starts_with('+') && !text.starts_with("+-");
    if (plus) text.remove_prefix(1);

    std::int32_t number = 0;
    const auto result = std::from_chars(text.data(), text.data() + text.size(), number);
    if (result.ec != std::errc::result_out_of_range) return number;
    using Limits = std::numeric_limits<std::int32_t>;
    return text.starts_with('-') ? Limits::min() : Limits::max();
}

// The number whose decimal text `name` is, as a tile number is written.
bool isNumber(const std::string& name, std::int32_t& number) {
    const char* end = name.data() + name.size();
    const auto result = std::from_chars(name.data(), end, number);
    return result.ec == std::errc() && result.ptr == end && std::to_string(number) == name;
}

}  // namespace

void TileFilter::add(std::string_view text) {
    forEachPart(text, '\n', [this](std::string_view line) {
        std::string compact(line);
        std::erase(compact, ' ');
        forEachPart(compact, ',', [this](std::string_view piece) { addPiece(std::string(piece)); });
    });
    joinRanges();
}

void TileFilter::clear() {
    names_.clear();
    ranges_.clear();
}

bool TileFilter::contains(const std::string& name) const {
    if (names_.contains(name)) return true;
    std::int32_t number = 0;
    if (!isNumber(name, number)) return false;
    const auto after = std::upper_bound(
        ranges_.begin(), ranges_.end(), number,
        [](std::int32_t wanted, const Range& range) { return wanted < range.first; });
    return after != ranges_.begin() && number <= std::prev(after)->last;
}

void TileFilter::addPiece(const std::string& piece) {
    if (piece.empty()) return;
    const std::size_t dash = piece.find('-');
    if (dash == std::string::npos) return addName(piece);
    const std::string_view text(piece);
    const Range range{leadingNumber(text.substr(0, dash)), leadingNumber(text.substr(dash + 1))};
    if (range.first <= range.last) ranges_.push_back(range);
}

void TileFilter::addName(const std::string& name) {
    std::int32_t number = 0;
    if (isNumber(name, number))
        ranges_.push_back({number, number});
    else
        names_.insert(name);
}

void TileFilter::joinRanges() {
    std::sort(ranges_.begin(), ranges_.end(),
              [](const Range& a, const Range& b) { return a.first < b.first; });
    std::vector<Range> joined;
    for (const Range& range : ranges_) {
        if (!joined.empty() && range.first <= joined.back().last)
            joined.back().last = std::max(joined.back().last, range.last);
        else
            joined.push_back(range);
    }
    ranges_ = std::move(joined);
}
