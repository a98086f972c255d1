#include "mesh/ObjText.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstdio>

#include "bytes/Bytes.h"
#include "mesh/VemoFile.h"

namespace {

constexpr std::uint32_t kColoursPerLine = 32;

constexpr std::string_view kLineStart = "#RGB ";
constexpr std::size_t kEntryBytes = 7;
constexpr std::size_t kLineBytes = kLineStart.size() + kColoursPerLine * kEntryBytes + 1;

// Stores a space and "RRGGBB", all six digits at once, and a byte more, which anything may follow on.
void storeEntry(std::uint8_t* to, const std::uint8_t* colour) {
    constexpr std::uint64_t kEach = 0x010101010101u;
    const std::uint64_t red = colour[2];
    const std::uint64_t green = colour[1];
    const std::uint64_t blue = colour[0];
    const std::uint64_t pairs = red | green << 16 | blue << 32;
    const std::uint64_t values = (pairs >> 4 & 0xF000F000Fu) | (pairs & 0xF000F000Fu) << 8;
    const std::uint64_t letters = (values + 6 * kEach) >> 4 & kEach;  // 1 from ten on
    const std::uint64_t digits = values + '0' * kEach + ('a' - '0' - 10) * letters;
    storeLe64(to, digits << 8 | ' ');
}

}  // namespace

void ObjText::addInteger(std::int64_t value) {
    std::array<char, 20> text;  // the longest is "-9223372036854775808"
    const auto result = std::to_chars(text.data(), text.data() + text.size(), value);
    add({text.data(), result.ptr});
}

// printf takes the decimal point from the host's locale, where it may be a comma or several bytes.
void ObjText::addFloat(float value) {
    if (std::isnan(value)) return add("nan");
    std::array<char, 32> text;
    const int length = std::snprintf(text.data(), text.size(), "%g", static_cast<double>(value));
    const std::string_view number(text.data(), static_cast<std::size_t>(length));
    constexpr std::string_view kOwnBytes = "0123456789+-einf";
    const std::size_t point = number.find_first_not_of(kOwnBytes);
    if (point == std::string_view::npos) return add(number);
    add(number.substr(0, point));
    add(".");
    add(number.substr(number.find_first_of(kOwnBytes, point)));
}

void ObjText::addColourBlock(const std::uint8_t* colours, std::uint32_t count) {
    add("# The following RGB block contains Morvane Vertex Color (Tintcoat) output as 3 "
        "hexadecimal "
        "values per vertex. The vertex color format is RRGGBB with up to 32 entries per RGB "
        "line.\n");
    for (std::uint32_t i = 0; i < count; i += std::min(kColoursPerLine, count - i))
        addColourLine(colours + std::size_t{i} * kColourBytes,
                      std::min(kColoursPerLine, count - i));
    add("\n# End of RGB block\n");
}

void ObjText::addColourLine(const std::uint8_t* colours, std::uint32_t count) {
    std::uint8_t* const line = out_.room(kLineBytes);
    std::uint8_t* end = std::copy(kLineStart.begin(), kLineStart.end(), line);
    for (std::uint32_t i = 0; i < count; ++i, colours += kColourBytes, end += kEntryBytes)
        storeEntry(end, colours);
    if (count == kColoursPerLine) *end++ = '\n';
    out_.giveBack(kLineBytes - static_cast<std::size_t>(end - line));
}
