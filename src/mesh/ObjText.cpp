#include "mesh/ObjText.h"

#include <array>
#include <charconv>
#include <cmath>
#include <cstdio>

#include "mesh/VemoFile.h"

namespace {

constexpr std::uint32_t kColoursPerLine = 32;

// A space and "RRGGBB".
std::array<char, 7> colourEntry(const std::uint8_t* colour) {
    constexpr char kDigits[] = "0123456789abcdef";
    const std::uint8_t blue = colour[0];
    const std::uint8_t green = colour[1];
    const std::uint8_t red = colour[2];
    return {' ',
            kDigits[red >> 4],
            kDigits[red & 15],
            kDigits[green >> 4],
            kDigits[green & 15],
            kDigits[blue >> 4],
            kDigits[blue & 15]};
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
    for (std::uint32_t i = 0; i < count; ++i, colours += kColourBytes) {
        const std::uint32_t place = i % kColoursPerLine;
        if (place == 0) add("#RGB ");
        const std::array<char, 7> entry = colourEntry(colours);
        add({entry.data(), entry.size()});
        if (place == kColoursPerLine - 1) add("\n");
    }
    add("\n# End of RGB block\n");
}
