#pragma once
// The text of an OBJ file, for a loader that takes whatever is a line. What that would read wrongly
// without a word is checked here.

#include <cstdint>
#include <streambuf>
#include <string>
#include <string_view>
#include <vector>

// UVs reach up to here, to either side: further out a 32-bit float has fewer than 16 places in a
// tile.
inline constexpr double kFarthestUv = 1e6;

// Hands out one line at a time, without a byte order mark. A line that ends with a backslash goes
// on in the next one, except for a comment.
//
// Throws Failure, which names the line, if one of the three numbers of a vertex or the two of a UV
// is missing, no finite number or, in a UV, beyond kFarthestUv.
class ObjLines : public std::streambuf {
public:
    explicit ObjLines(const std::string& path);

    // The number, from 1, of the line that was handed out last.
    std::size_t line() const { return line_; }

    // Throws a Failure: "model.obj, line 7: why".
    [[noreturn]] void fail(std::size_t line, const std::string& why) const;

protected:
    int_type underflow() override;

private:
    char* findBreak(char* from);
    char* pastBreak(char* lineBreak);
    void check(std::string_view text) const;
    void checkNumbers(std::string_view text, std::size_t count, double farthest) const;
    [[noreturn]] void failForNumber(std::string_view word, const char* why) const;

    std::string path_;
    std::vector<std::uint8_t> bytes_;
    char* next_;
    char* end_;
    std::size_t line_ = 0;
    std::size_t nextLine_ = 1;
};
