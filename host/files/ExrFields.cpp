#include <algorithm>
#include <optional>

#include "files/Fields.h"

namespace {

// A text that ends with a NUL within 256 bytes.
std::optional<std::string> nameAt(Fields& fields, std::uint64_t offset) {
    const Bytes bytes = fields.part(offset, 256);
    const auto* end = std::find(bytes.data, bytes.data + bytes.size, 0);
    if (end == bytes.data + bytes.size) return std::nullopt;
    return std::string(bytes.data, end);
}

std::vector<std::string> channelNames(Fields& fields, std::uint64_t offset, std::uint64_t end) {
    std::vector<std::string> names;
    while (offset < end) {
        const auto name = nameAt(fields, offset);
        if (!name || name->empty()) break;
        names.push_back(*name);
        offset += name->size() + 1 + 16;  // type and sampling follow the name
    }
    return names;
}

std::string joined(const std::vector<std::string>& names) {
    std::string list;
    for (const std::string& name : names)
        list += (list.empty() ? "" : ", ") + name;
    return list;
}

std::string attributeValue(Fields& fields, const std::string& type, std::uint64_t offset,
                           std::uint32_t bytes) {
    if (type == "chlist") return joined(channelNames(fields, offset, offset + bytes));
    if (type == "string") return fields.lettersAt(offset, bytes);
    Bytes value = fields.part(offset, 16);
    if (type == "compression" || type == "lineOrder") return std::to_string(value.u8(0));
    if (type == "float") return textIn(value, number::kLeFloat);
    if (type == "int") return textIn(value, number::kSignedLe32);
    if (type != "box2i") return {};
    std::string box;
    for (std::size_t i = 0; i < 16; i += 4) {
        box += i == 0 ? "" : " ";
        box += std::to_string(static_cast<std::int32_t>(value.le32(i)));
    }
    return box;
}

void noteExrSize(Fields& fields, const std::string& attribute, std::uint64_t offset,
                 std::uint32_t bytes) {
    PictureFacts& picture = *fields.facts().picture;
    if (attribute == "channels") {
        picture.channelNames = channelNames(fields, offset, offset + bytes);
        picture.channels = std::ssize(picture.channelNames);
    }
    if (attribute != "dataWindow") return;
    Bytes box = fields.part(offset, 16);
    const auto side = [&box](std::size_t low, std::size_t high) {
        return std::int64_t{static_cast<std::int32_t>(box.le32(high))} -
               static_cast<std::int32_t>(box.le32(low)) + 1;
    };
    picture.width = side(0, 8);
    picture.height = side(4, 12);
}

}  // namespace

void readExr(Fields& fields) {
    fields.facts().picture.emplace();
    fields.number(0, number::kLe32, "magic");
    fields.number(4, number::kLe32, "version and flags");
    for (std::uint64_t offset = 8; fields.has(offset) && !fields.isFull();) {
        const auto name = nameAt(fields, offset);
        if (!name || name->empty()) return;
        const std::uint64_t typeAt = offset + name->size() + 1;
        const auto type = nameAt(fields, typeAt);
        if (!type) return;
        const std::uint64_t sizeAt = typeAt + type->size() + 1;
        const std::uint32_t bytes = fields.part(sizeAt, 4).le32(0);
        const std::string value = attributeValue(fields, *type, sizeAt + 4, bytes);
        fields.add({offset, sizeAt + 4 + bytes - offset, *name, value});
        noteExrSize(fields, *name, sizeAt + 4, bytes);
        offset = sizeAt + 4 + bytes;
    }
}
