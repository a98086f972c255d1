#include "mesh/ObjText.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstring>

#include "mesh/VemoFile.h"

namespace {

constexpr std::uint32_t kColoursPerLine = 32;

// The digits of "%g".
constexpr int kSignificantDigits = 6;

// Holds any number here; the longest are "-9223372036854775808" and "-1.23457e-38".
using NumberText = std::array<char, 24>;

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

ObjText::ObjText(const char* path)
    : piece_(std::make_unique_for_overwrite<char[]>(kPieceBytes)), file_(File::create(path)) {}

ObjText::~ObjText() {
    flush();
}

void ObjText::add(std::string_view text) {
    while (!text.empty()) {
        if (length_ == kPieceBytes) flush();
        const std::size_t fitting = std::min(text.size(), kPieceBytes - length_);
        std::memcpy(&piece_[length_], text.data(), fitting);
        length_ += fitting;
        text.remove_prefix(fitting);
    }
}

void ObjText::addInteger(std::int64_t value) {
    NumberText text;
    const auto result = std::to_chars(text.data(), text.data() + text.size(), value);
    add({text.data(), result.ptr});
}

void ObjText::addFloat(float value) {
    if (std::isnan(value)) return add("nan");
    NumberText text;
    const auto result = std::to_chars(text.data(), text.data() + text.size(), value,
                                      std::chars_format::general, kSignificantDigits);
    add({text.data(), result.ptr});
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

void ObjText::flush() {
    if (!refused_)
        refused_ = !file_.append(reinterpret_cast<const std::uint8_t*>(piece_.get()), length_);
    length_ = 0;
}
