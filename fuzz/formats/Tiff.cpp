// TIFF maps: a directory of 12-byte entries, found by the offset at byte 4.

#include <algorithm>

#include "harness/Format.h"

namespace {

constexpr std::size_t kEntryBytes = 12;
constexpr std::size_t kMaxEntries = 16;  // looked at here

constexpr Field kDirectoryOffset{4, 4};

struct Directory {
    std::size_t offset;
    std::size_t entries;  // that the file has

    Field count() const { return {offset, 2}; }
    std::size_t entry(std::size_t index) const { return offset + 2 + kEntryBytes * index; }
};

Directory directoryOf(const ByteList& file) {
    const std::size_t offset = loadField(file, kDirectoryOffset);
    if (offset + 2 > file.size()) return {file.size(), 0};
    const std::size_t room = (file.size() - offset - 2) / kEntryBytes;
    const std::size_t claimed = loadField(file, {offset, 2});
    return {offset, std::min({claimed, room, kMaxEntries})};
}

std::vector<Field> fields(const ByteList& file) {
    const Directory directory = directoryOf(file);
    std::vector<Field> found = {kDirectoryOffset, directory.count()};
    for (std::size_t i = 0; i < directory.entries; ++i) {
        const std::size_t entry = directory.entry(i);
        found.insert(found.end(), {{entry, 2}, {entry + 4, 4}, {entry + 8, 4}});
    }
    return found;
}

// The value field of a tag; past the end of the file if there is none.
Field valueOf(const ByteList& file, std::uint32_t tag) {
    const Directory directory = directoryOf(file);
    for (std::size_t i = 0; i < directory.entries; ++i) {
        if (loadField(file, {directory.entry(i), 2}) == tag) return {directory.entry(i) + 8, 4};
    }
    return {file.size(), 4};
}

// Uncompressed, one strip within the file, as many rows as it has.
void repair(ByteList& file, std::size_t fileBytes) {
    if (directoryOf(file).entries == 0) storeField(file, kDirectoryOffset, 8);
    const Directory directory = directoryOf(file);
    storeField(file, directory.count(), static_cast<std::uint32_t>(directory.entries));

    storeField(file, valueOf(file, 259), 1);
    storeField(file, valueOf(file, 262), loadField(file, valueOf(file, 262)) % 3);
    const Field strip = valueOf(file, 273);
    const std::size_t offset = std::min<std::size_t>(loadField(file, strip), fileBytes);
    storeField(file, strip, static_cast<std::uint32_t>(offset));
    const std::size_t samples = std::max<std::size_t>(loadField(file, valueOf(file, 257)), 1);
    const std::size_t width = std::clamp<std::size_t>(loadField(file, valueOf(file, 256)), 1, 64);
    const std::size_t rows = std::min(samples, (fileBytes - offset) / (12 * width));
    storeField(file, valueOf(file, 256), static_cast<std::uint32_t>(width));
    storeField(file, valueOf(file, 257),
               static_cast<std::uint32_t>(std::max<std::size_t>(rows, 1)));
}

}  // namespace

const Format kTiff{"tiff", fields, repair};
