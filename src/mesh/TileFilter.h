#pragma once
// TileFilter: which UV tiles the user wants, as names and ranges of tile numbers.

#include <cstdint>
#include <set>
#include <string>
#include <string_view>
#include <vector>

class TileFilter {
public:
    // Adds what one text lists. Lines end at a line feed, pieces at a comma; spaces, but no other
    // blanks, mean nothing. A piece with '-' is a range of numbers, both ends included; any other
    // is a name as it stands. A number is read as far as its digits go, 0 where there are none.
    void add(std::string_view text);

    void clear();
    bool isEmpty() const { return names_.empty() && ranges_.empty(); }

    // Whether the filter lists this name, alone or as the decimal text of a number in a range.
    bool contains(const std::string& name) const;

private:
    // Both ends included; kept as ranges, since a user may ask for "1-2147483647".
    struct Range {
        std::int32_t first;
        std::int32_t last;
    };

    void addPiece(const std::string& piece);
    void addName(const std::string& name);
    void joinRanges();

    std::set<std::string> names_;  // that are not numbers
    std::vector<Range> ranges_;    // in order, none touching another
};
