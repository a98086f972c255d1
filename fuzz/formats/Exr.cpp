// EXR files: attributes, then a table of offsets, then the chunks that it points at.

#include <algorithm>
#include <string_view>

#include "harness/Format.h"

namespace {

constexpr std::size_t kAttributes = 8;
constexpr std::size_t kMaxAttributes = 32;  // looked at here
constexpr std::size_t kMaxChunks = 64;

struct Attribute {
    std::string_view name;
    Field size;
    std::size_t value() const { return size.offset + 4; }
};

std::string_view textAt(const ByteList& file, std::size_t offset) {
    const std::string_view text(reinterpret_cast<const char*>(file.data()), file.size());
    const std::string_view from = text.substr(std::min(offset, file.size()));
    return from.substr(0, from.find('\0'));
}

struct Layout {
    std::vector<Attribute> attributes;
    std::size_t table = 0;  // where the offsets start
};

Layout layoutOf(const ByteList& file) {
    Layout layout;
    std::size_t at = kAttributes;
    while (at < file.size() && layout.attributes.size() < kMaxAttributes) {
        const std::string_view name = textAt(file, at);
        at += name.size() + 1;
        if (name.empty()) break;
        if (at >= file.size()) break;
        at += textAt(file, at).size() + 1;
        const Field size{at, 4};
        layout.attributes.push_back({name, size});
        at += 4 + std::size_t{loadField(file, size)};
    }
    layout.table = std::min(at, file.size());
    return layout;
}

std::vector<Field> fields(const ByteList& file) {
    const Layout layout = layoutOf(file);
    std::vector<Field> found = {{0, 4}, {4, 1}, {5, 1}};
    for (const Attribute& attribute : layout.attributes) {
        found.push_back(attribute.size);
        for (std::size_t at = 0; at < std::min(loadField(file, attribute.size), 40u); at += 4)
            found.push_back({attribute.value() + at, 4});
        found.push_back({attribute.value(), 1});
    }
    for (std::size_t i = 0; i < 16; ++i)
        found.push_back({layout.table + 4 * i, 4});
    return found;
}

// Makes the offsets point at consecutive chunks, as many as follow.
void repair(ByteList& file, std::size_t) {
    storeField(file, {0, 4}, 0x01312F76);
    storeField(file, {4, 4}, 2 | (loadField(file, {5, 1}) & 2) << 8);
    const Layout layout = layoutOf(file);
    const std::size_t headBytes = (loadField(file, {5, 1}) & 2) != 0 ? 16 : 4;
    const std::size_t first = loadField(file, {layout.table, 4});
    if (first < layout.table || first > file.size()) return;

    std::size_t chunk = first;
    const std::size_t count = std::min((first - layout.table) / 8, kMaxChunks);
    for (std::size_t i = 0; i < count; ++i) {
        storeField(file, {layout.table + 8 * i, 4}, static_cast<std::uint32_t>(chunk));
        storeField(file, {layout.table + 8 * i + 4, 4}, 0);
        const Field length{chunk + headBytes, 4};
        if (length.offset + 4 > file.size()) return;
        const std::size_t room = file.size() - length.offset - 4;
        const std::size_t bytes = std::min<std::size_t>(loadField(file, length), room);
        storeField(file, length, static_cast<std::uint32_t>(bytes));
        chunk = length.offset + 4 + bytes;
    }
}

}  // namespace

const Format kExr{"exr", fields, repair};
