#include "mesh/ObjText.h"

#include <algorithm>
#include <array>
#include <bit>
#include <charconv>
#include <cstdlib>
#include <cstring>

#include "mesh/VemoFile.h"

namespace {

constexpr std::uint32_t kColoursPerLine = 32;

// Floats are turned into text here, by exact arithmetic: std::to_chars does it only from macOS 13.3
// on, and printf asks the host's locale. "%g" shows six significant digits.
constexpr int kSignificantDigits = 6;
constexpr std::uint32_t kDigitsEnd = 1'000'000;

// The bits of a float.
constexpr std::uint32_t kSignBit = 0x80000000;
constexpr std::uint32_t kInfinity = 0x7F800000;
constexpr std::uint32_t kFractionBits = 0x007FFFFF;
constexpr std::uint32_t kHiddenBit = 0x00800000;

// Holds any integer; the longest is "-9223372036854775808".
using IntegerText = std::array<char, 20>;

__extension__ using Uint128 = unsigned __int128;

consteval std::array<Uint128, 51> powersOfFive() {
    std::array<Uint128, 51> powers{1};
    for (std::size_t i = 1; i < powers.size(); ++i)
        powers[i] = 5 * powers[i - 1];
    return powers;
}
constexpr std::array<Uint128, 51> kPowersOfFive = powersOfFive();

// A positive float: mantissa * 2^exponent, exactly.
struct Binary {
    std::uint32_t mantissa;
    int exponent;
};

// `bits` of a positive float; the smallest ones have no hidden bit.
Binary binaryOf(std::uint32_t bits) {
    const std::uint32_t fraction = bits & kFractionBits;
    const auto biased = static_cast<int>(bits >> 23);
    return biased == 0 ? Binary{fraction, -149} : Binary{fraction | kHiddenBit, biased - 150};
}

// A positive float in decimal: digits * 10^(power - 5), six digits.
struct Decimal {
    std::uint32_t digits;
    int power;
};

// value * 10^tens to the nearest integer, halves to even. Nothing is lost: for the powers of ten
// that give six digits, or one more, both numbers stay below 2^128.
Uint128 scaled(Binary value, int tens) {
    const int twos = value.exponent + tens;
    Uint128 numerator = value.mantissa;
    Uint128 denominator = 1;
    (tens > 0 ? numerator : denominator) *= kPowersOfFive[static_cast<std::size_t>(std::abs(tens))];
    (twos > 0 ? numerator : denominator) <<= std::abs(twos);
    const Uint128 quotient = numerator / denominator;
    const Uint128 remainder = numerator % denominator;
    const Uint128 rest = denominator - remainder;
    const bool up = remainder > rest || (remainder == rest && quotient % 2 == 1);
    return quotient + (up ? 1 : 0);
}

// Tries the power of ten that lies at or below the power of two, then the next.
Decimal decimalOf(Binary value) {
    const int twos = static_cast<int>(std::bit_width(value.mantissa)) - 1 + value.exponent;
    int power = (twos * 1233) >> 12;  // 1233 / 4096 is log10(2), rounded down
    Uint128 digits = scaled(value, kSignificantDigits - 1 - power);
    if (digits >= kDigitsEnd) digits = scaled(value, kSignificantDigits - 1 - ++power);
    return {static_cast<std::uint32_t>(digits), power};
}

// Short text, put together from the left.
class ShortText {
public:
    void add(char byte) { bytes_[length_++] = byte; }
    void add(std::string_view text) {
        text.copy(&bytes_[length_], text.size());
        length_ += text.size();
    }
    std::string_view view() const { return {bytes_.data(), length_}; }

private:
    std::array<char, 16> bytes_;  // "%g" of a float needs up to 12: "-1.23457e-38", "-0.000123457"
    std::size_t length_ = 0;
};

// The digits without the zeros at their end.
std::string_view withoutTrailingZeros(std::string_view digits) {
    return digits.substr(0, digits.find_last_not_of('0') + 1);
}

// 0.000123457: `power` is negative.
void addFraction(ShortText& text, std::string_view digits, int power) {
    text.add(std::string_view("0.000").substr(0, static_cast<std::size_t>(1 - power)));
    text.add(withoutTrailingZeros(digits));
}

// 12.3457 or 123456: the first digit has the place 10^power.
void addPlain(ShortText& text, std::string_view digits, int power) {
    const auto whole = static_cast<std::size_t>(power) + 1;
    text.add(digits.substr(0, whole));
    const std::string_view fraction = withoutTrailingZeros(digits.substr(whole));
    if (fraction.empty()) return;
    text.add('.');
    text.add(fraction);
}

// 1.23457e+06
void addScientific(ShortText& text, std::string_view digits, int power) {
    addPlain(text, digits, 0);
    text.add('e');
    text.add(power < 0 ? '-' : '+');
    const int places = std::abs(power);
    text.add(static_cast<char>('0' + places / 10));
    text.add(static_cast<char>('0' + places % 10));
}

void addDecimal(ShortText& text, Decimal value) {
    std::array<char, kSignificantDigits> bytes;
    std::to_chars(bytes.data(), bytes.data() + bytes.size(), value.digits);
    const std::string_view digits(bytes.data(), bytes.size());
    if (value.power < -4 || value.power >= kSignificantDigits)
        addScientific(text, digits, value.power);
    else if (value.power < 0)
        addFraction(text, digits, value.power);
    else
        addPlain(text, digits, value.power);
}

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
    IntegerText text;
    const auto result = std::to_chars(text.data(), text.data() + text.size(), value);
    add({text.data(), result.ptr});
}

void ObjText::addFloat(float value) {
    const auto bits = std::bit_cast<std::uint32_t>(value);
    const std::uint32_t magnitude = bits & ~kSignBit;
    if (magnitude > kInfinity) return add("nan");
    ShortText text;
    if (bits & kSignBit) text.add('-');
    if (magnitude == kInfinity)
        text.add("inf");
    else if (magnitude == 0)
        text.add('0');
    else
        addDecimal(text, decimalOf(binaryOf(magnitude)));
    add(text.view());
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
