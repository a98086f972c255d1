#include "mesh/ObjLines.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>
#include <span>

#include "files/DiskFile.h"
#include "terminal/Failure.h"

namespace {

constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

// Removes blanks and the word after them from the start of `text`, and returns the word.
std::string_view takeWord(std::string_view& text) {
    const auto isBlank = [](char c) { return c == ' ' || c == '\t'; };
    const auto begin = std::find_if_not(text.begin(), text.end(), isBlank);
    const auto end = std::find_if(begin, text.end(), isBlank);
    text = {end, text.end()};
    return {begin, end};
}

bool isComment(std::string_view line) {
    return takeWord(line).starts_with('#');
}

// Returns NaN for what is no number. One that is too small for a double is 0.
double numberOf(std::string_view word) {
    if (word.starts_with('+')) word.remove_prefix(1);
    double number = 0.0;
    const std::span<const char> letters(word);
    const char* const end = letters.data() + letters.size();
    const auto read = std::from_chars(letters.data(), end, number);
    const bool isTooSmall =
        read.ec == std::errc::result_out_of_range && word.find('-', 1) != std::string_view::npos;
    if (read.ptr != end || (read.ec != std::errc() && !isTooSmall))
        return std::numeric_limits<double>::quiet_NaN();
    return number;
}

}  // namespace

ObjLines::ObjLines(const std::string& path)
    : path_(path),
      bytes_(readWholeFile(path, "model")),
      next_(reinterpret_cast<char*>(bytes_.data())),
      end_(next_ + bytes_.size()) {
    if (std::string_view(next_, bytes_.size()).starts_with(kByteOrderMark))
        next_ += kByteOrderMark.size();
}

void ObjLines::fail(std::size_t line, const std::string& why) const {
    throw Failure(path_ + ", line " + std::to_string(line) + ": " + why);
}

// Line breaks become line feeds: a loader that meets a carriage return looks at the byte behind it,
// and this byte would already be of the next line.
ObjLines::int_type ObjLines::underflow() {
    if (next_ == end_) return traits_type::eof();
    char* const begin = next_;
    char* lineBreak = findBreak(begin);
    line_ = nextLine_++;
    while (lineBreak != end_ && lineBreak != begin && lineBreak[-1] == '\\' &&
           !isComment({begin, lineBreak})) {
        char* const goesOn = pastBreak(lineBreak);
        std::fill(lineBreak - 1, goesOn, ' ');
        lineBreak = findBreak(goesOn);
        ++nextLine_;
    }
    next_ = pastBreak(lineBreak);
    check({begin, lineBreak});
    if (lineBreak != end_) *lineBreak++ = '\n';
    setg(begin, begin, lineBreak);
    return traits_type::to_int_type(*begin);
}

char* ObjLines::findBreak(char* from) {
    return std::find_if(from, end_, [](char c) { return c == '\n' || c == '\r'; });
}

char* ObjLines::pastBreak(char* lineBreak) {
    if (lineBreak == end_) return end_;
    const bool isPair = *lineBreak == '\r' && lineBreak + 1 != end_ && lineBreak[1] == '\n';
    return lineBreak + (isPair ? 2 : 1);
}

void ObjLines::check(std::string_view text) const {
    const std::string_view word = takeWord(text);
    if (word == "v") checkNumbers(text, 3, std::numeric_limits<float>::max());
    if (word == "vt") checkNumbers(text, 2, kFarthestUv);
}

void ObjLines::checkNumbers(std::string_view text, std::size_t count, double farthest) const {
    for (std::size_t i = 0; i < count; ++i) {
        const std::string_view word = takeWord(text);
        if (word.empty())
            fail(line_, "the line needs " + std::to_string(count) + " numbers and has " +
                            std::to_string(i));
        const double number = numberOf(word);
        if (!std::isfinite(number)) failForNumber(word, "is not a finite number");
        if (std::abs(number) > farthest)
            failForNumber(word, farthest == kFarthestUv
                                    ? "is too far from 0: UVs reach up to 1000000"
                                    : "is too large for a 32-bit float");
    }
}

void ObjLines::failForNumber(std::string_view word, const char* why) const {
    const bool hasComma = word.find(',') != std::string_view::npos;
    fail(line_,
         '"' + std::string(word) + "\" " + why + (hasComma ? "; write decimals with a point" : ""));
}
