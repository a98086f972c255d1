#pragma once
// The kinds of number that files hold.

#include <cstdint>
#include <string>

#include "bytes/Bytes.h"

struct NumberKind {
    enum Type { kUnsigned, kSigned, kFloat };

    std::size_t bytes;
    Type type = kUnsigned;
    bool bigEndian = false;
};

namespace number {
inline constexpr NumberKind kByte{1};
inline constexpr NumberKind kLe16{2};
inline constexpr NumberKind kLe32{4};
inline constexpr NumberKind kBe16{2, NumberKind::kUnsigned, true};
inline constexpr NumberKind kBe32{4, NumberKind::kUnsigned, true};
inline constexpr NumberKind kSignedLe16{2, NumberKind::kSigned};
inline constexpr NumberKind kSignedLe32{4, NumberKind::kSigned};
inline constexpr NumberKind kLeFloat{4, NumberKind::kFloat};
inline constexpr NumberKind kBeFloat{4, NumberKind::kFloat, true};
}

// The number at the start of `bytes`; missing bytes count as 0. A float's bits, as an integer.
std::int64_t integerIn(Bytes bytes, NumberKind kind);

// The same as a number that may have a fraction, or be infinite or NaN.
double numberIn(Bytes bytes, NumberKind kind);

// The shortest decimal text that reads back as the same float, or as the same double when the value
// is none that a float can have.
std::string textOf(double value);

// The number at the start of `bytes` as decimal text.
std::string textIn(Bytes bytes, NumberKind kind);
