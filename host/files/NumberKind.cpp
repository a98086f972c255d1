#include "files/NumberKind.h"

#include <half.h>

#include <bit>
#include <charconv>
#include <cmath>
#include <iterator>
#include <limits>

#include "exports/Meanings.h"

std::int64_t integerIn(Bytes bytes, NumberKind kind) {
    if (kind.bytes == 0) return 0;
    std::uint64_t bits = 0;
    for (std::size_t i = 0; i < kind.bytes; ++i)
        bits = bits << 8 | bytes.u8(kind.bigEndian ? i : kind.bytes - 1 - i);
    const std::size_t unused = 64 - 8 * kind.bytes;
    if (kind.type == NumberKind::kSigned)
        return static_cast<std::int64_t>(bits << unused) >> unused;
    return static_cast<std::int64_t>(bits);
}

double numberIn(Bytes bytes, NumberKind kind) {
    const std::int64_t bits = integerIn(bytes, kind);
    if (kind.type != NumberKind::kFloat) return static_cast<double>(bits);
    if (kind.bytes == 8) return std::bit_cast<double>(bits);
    if (kind.bytes == 4) return std::bit_cast<float>(static_cast<std::uint32_t>(bits));
    return ::imath_half_to_float(static_cast<std::uint16_t>(bits));
}

std::string textOf(double value) {
    constexpr double kMaxFloat = std::numeric_limits<float>::max();
    char digits[32];
    const bool isFloat =
        std::abs(value) <= kMaxFloat && static_cast<double>(static_cast<float>(value)) == value;
    const auto end = isFloat ? std::to_chars(digits, std::end(digits), static_cast<float>(value))
                             : std::to_chars(digits, std::end(digits), value);
    return {digits, end.ptr};
}

std::string textIn(Bytes bytes, NumberKind kind) {
    if (kind.type == NumberKind::kFloat && kind.bytes == 8) return textOf(numberIn(bytes, kind));
    if (kind.type == NumberKind::kFloat)
        return statusText(static_cast<float>(numberIn(bytes, kind)));
    return std::to_string(integerIn(bytes, kind));
}
