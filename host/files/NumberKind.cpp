#include "files/NumberKind.h"

#include <bit>

#include "exports/Meanings.h"

std::int64_t integerIn(Bytes bytes, NumberKind kind) {
    std::uint32_t bits = 0;
    for (std::size_t i = 0; i < kind.bytes; ++i)
        bits = bits << 8 | bytes.u8(kind.bigEndian ? i : kind.bytes - 1 - i);
    if (kind.type != NumberKind::kSigned) return bits;
    return kind.bytes == 2 ? static_cast<std::int16_t>(bits) : static_cast<std::int32_t>(bits);
}

std::string textIn(Bytes bytes, NumberKind kind) {
    if (kind.type == NumberKind::kFloat) return statusText(std::bit_cast<float>(bytes.le32(0)));
    return std::to_string(integerIn(bytes, kind));
}
