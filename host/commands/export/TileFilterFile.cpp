#include "commands/export/TileFilterFile.h"

#include <algorithm>
#include <charconv>
#include <optional>
#include <sstream>

#include "files/DiskFile.h"
#include "terminal/Failure.h"

namespace {

std::optional<int> numberIn(const std::string& text) {
    int number = 0;
    const char* end = text.data() + text.size();
    const auto read = std::from_chars(text.data(), end, number);
    const bool whole = read.ec == std::errc() && read.ptr == end && number >= 0;
    return whole ? std::optional(number) : std::nullopt;
}

}  // namespace

TileFilterFile::TileFilterFile(const std::string& path) {
    const std::vector<std::uint8_t> bytes = readWholeFile(path, "tile filter");
    std::istringstream lines(std::string(bytes.begin(), bytes.end()));
    int number = 0;
    for (std::string line; std::getline(lines, line);)
        addLine(line, path + ':' + std::to_string(++number) + ": ");
    if (ranges_.empty())
        throw Failure(path + " lists no tile; leave out --tiles to export all of them");
}

void TileFilterFile::addLine(const std::string& line, const std::string& place) {
    if (line.find('\r') != std::string::npos)
        throw Failure(place +
                      "the line ends with a carriage return, which would belong to the "
                      "tile's name; save the file with line feeds only");
    std::istringstream pieces(line);
    for (std::string piece; std::getline(pieces, piece, ',');) {
        std::erase(piece, ' ');
        if (!piece.empty()) addPiece(piece, place);
    }
}

void TileFilterFile::addPiece(const std::string& piece, const std::string& place) {
    const std::size_t dash = piece.find('-');
    const auto first = numberIn(piece.substr(0, dash));
    const auto last = dash == std::string::npos ? first : numberIn(piece.substr(dash + 1));
    if (!first || !last)
        throw Failure(place + piece +
                      " is no tile number, such as 1001, and no range, such as "
                      "1001-1003");
    if (*last < *first)
        throw Failure(place + piece + " is empty; a range starts with the lower number");
    ranges_.emplace_back(*first, *last);
}

bool TileFilterFile::lists(const std::string& tile) const {
    const auto number = numberIn(tile);
    return number && std::ranges::any_of(ranges_, [&](const auto& range) {
               return range.first <= *number && *number <= range.second;
           });
}
