#include "Text.h"

#include <algorithm>
#include <array>
#include <cstdarg>
#include <cstdio>
#include <string_view>

namespace {

// Characters as a terminal shows them: bytes that continue a character do not count.
std::size_t lengthOf(std::string_view cell) {
    return static_cast<std::size_t>(
        std::count_if(cell.begin(), cell.end(), [](char byte) { return (byte & 0xC0) != 0x80; }));
}

}  // namespace

std::string text(const char* format, ...) {
    std::array<char, 256> buffer{};
    va_list arguments;
    va_start(arguments, format);
    std::vsnprintf(buffer.data(), buffer.size(), format, arguments);
    va_end(arguments);
    return buffer.data();
}

std::string aligned(const std::vector<TableRow>& rows) {
    std::vector<std::size_t> widths(rows.front().size());
    for (const TableRow& row : rows) {
        for (std::size_t i = 0; i < row.size(); ++i)
            widths[i] = std::max(widths[i], lengthOf(row[i]));
    }
    std::string out;
    for (std::size_t line = 0; line < rows.size(); ++line) {
        for (std::size_t i = 0; i < widths.size(); ++i)
            out += "| " + rows[line][i] + std::string(widths[i] - lengthOf(rows[line][i]) + 1, ' ');
        out += "|\n";
        if (line > 0) continue;
        for (const std::size_t width : widths)
            out += '|' + std::string(width + 2, '-');
        out += "|\n";
    }
    return out;
}
