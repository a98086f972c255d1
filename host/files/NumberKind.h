#pragma once
// The kinds of number that files hold.

#include <cstdint>
#include <string>

#include "bytes/Bytes.h"

enum class NumberKind { kByte, kLe16, kLe32, kBe16, kBe32, kSignedLe16, kSignedLe32, kLeFloat };

std::size_t bytesOf(NumberKind kind);

// The number at the start of `bytes`; missing bytes count as 0. A float's bits, as an integer.
std::int64_t integerIn(Bytes bytes, NumberKind kind);

// The same as decimal text.
std::string textIn(Bytes bytes, NumberKind kind);
