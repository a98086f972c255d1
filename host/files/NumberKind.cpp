#include "files/NumberKind.h"

#include <bit>
#include <stdexcept>

#include "exports/Meanings.h"

std::size_t bytesOf(NumberKind kind) {
    switch (kind) {
        case NumberKind::kByte:
            return 1;
        case NumberKind::kLe16:
        case NumberKind::kBe16:
        case NumberKind::kSignedLe16:
            return 2;
        case NumberKind::kLe32:
        case NumberKind::kBe32:
        case NumberKind::kSignedLe32:
        case NumberKind::kLeFloat:
            return 4;
    }
    throw std::logic_error("there is no such kind of number");
}

std::int64_t integerIn(Bytes bytes, NumberKind kind) {
    switch (kind) {
        case NumberKind::kByte:
            return bytes.u8(0);
        case NumberKind::kLe16:
            return bytes.le16(0);
        case NumberKind::kBe16:
            return bytes.be16(0);
        case NumberKind::kSignedLe16:
            return static_cast<std::int16_t>(bytes.le16(0));
        case NumberKind::kBe32:
            return bytes.be32(0);
        case NumberKind::kSignedLe32:
            return static_cast<std::int32_t>(bytes.le32(0));
        case NumberKind::kLe32:
        case NumberKind::kLeFloat:
            return bytes.le32(0);
    }
    throw std::logic_error("there is no such kind of number");
}

std::string textIn(Bytes bytes, NumberKind kind) {
    if (kind == NumberKind::kLeFloat) return statusText(std::bit_cast<float>(bytes.le32(0)));
    return std::to_string(integerIn(bytes, kind));
}
