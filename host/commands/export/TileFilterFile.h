#pragma once
// A text file that lists UV tiles: numbers and ranges such as 1001-1003, separated by commas or lines.

#include <string>
#include <utility>
#include <vector>

class TileFilterFile {
public:
    // Reads the file. The library passes over mistakes, and every tile passes an empty filter; so this
    // throws Failure, with the line, for a piece that is no number and no range, and for a file that
    // lists nothing.
    explicit TileFilterFile(const std::string& path);

    bool lists(const std::string& tile) const;

private:
    void addLine(const std::string& line, const std::string& place);
    void addPiece(const std::string& piece, const std::string& place);

    std::vector<std::pair<int, int>> ranges_;  // both ends included
};
