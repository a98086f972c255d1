#include "harness/Format.h"

#include "bytes/Bytes.h"

std::uint32_t loadField(const ByteList& file, const Field& field) {
    Bytes bytes{file.data(), file.size()};
    const bool big = field.order == Order::kBig;
    switch (field.bytes) {
        case 1:
            return bytes.u8(field.offset);
        case 2:
            return big ? bytes.be16(field.offset) : bytes.le16(field.offset);
        default:
            return big ? bytes.be32(field.offset) : bytes.le32(field.offset);
    }
}

void storeField(ByteList& file, const Field& field, std::uint32_t value) {
    if (field.offset > file.size() || file.size() - field.offset < field.bytes) return;
    std::uint8_t* const place = file.data() + field.offset;
    for (std::size_t i = 0; i < field.bytes; ++i) {
        const std::size_t at = field.order == Order::kBig ? field.bytes - 1 - i : i;
        place[at] = static_cast<std::uint8_t>(value >> 8 * i);
    }
}
