#include <algorithm>
#include <optional>
#include <utility>

#include "files/Diagnosis.h"
#include "files/Fields.h"

namespace {

// A text that ends with a NUL within 256 bytes.
std::optional<std::string> nameAt(Fields& fields, std::uint64_t offset) {
    const Bytes bytes = fields.part(offset, 256);
    const auto* end = std::find(bytes.data, bytes.data + bytes.size, 0);
    if (end == bytes.data + bytes.size) return std::nullopt;
    return std::string(bytes.data, end);
}

struct ExrChannels {
    std::vector<std::string> names;
    bool areSubsampled = false;  // any of them
};

// A name, the type of the samples, four more bytes and two rates of sampling each.
ExrChannels channelsAt(Fields& fields, std::uint64_t offset, std::uint64_t end) {
    ExrChannels channels;
    while (offset < end) {
        const auto name = nameAt(fields, offset);
        if (!name || name->empty()) break;
        channels.names.push_back(*name);
        Bytes rest = fields.part(offset + name->size() + 1, 16);
        if (rest.le32(8) > 1 || rest.le32(12) > 1) channels.areSubsampled = true;
        offset += name->size() + 1 + 16;
    }
    return channels;
}

std::string joined(const std::vector<std::string>& names) {
    std::string list;
    for (const std::string& name : names)
        list += (list.empty() ? "" : ", ") + name;
    return list;
}

std::string attributeValue(Fields& fields, const std::string& type, std::uint64_t offset,
                           std::uint32_t bytes) {
    if (type == "chlist") return joined(channelsAt(fields, offset, offset + bytes).names);
    if (type == "string") return fields.lettersAt(offset, bytes);
    Bytes value = fields.part(offset, 16);
    if (type == "compression") return exrCompression(value.u8(0));
    if (type == "lineOrder") return std::to_string(value.u8(0));
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

// Notes what the other facts about a file are taken from.
void note(Fields& fields, const std::string& attribute, std::uint64_t offset, std::uint32_t bytes,
          ExrFacts& exr) {
    PictureFacts& picture = *fields.facts().picture;
    if (attribute == "compression") exr.compression = fields.part(offset, 1).u8(0);
    if (attribute == "channels") {
        ExrChannels channels = channelsAt(fields, offset, offset + bytes);
        exr.isSubsampled = channels.areSubsampled;
        picture.channelNames = std::move(channels.names);
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

void readAttributes(Fields& fields, ExrFacts& exr) {
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
        note(fields, *name, sizeAt + 4, bytes, exr);
        offset = sizeAt + 4 + bytes;
    }
}

}  // namespace

void readExr(Fields& fields) {
    fields.facts().picture.emplace();
    fields.number(0, number::kLe32, "magic");
    ExrFacts exr;
    exr.flags = fields.number(4, number::kLe32, "version and flags");
    readAttributes(fields, exr);
    fields.facts().notes = notesOn(fields.facts(), exr);
}
