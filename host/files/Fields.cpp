#include "files/Fields.h"

#include <algorithm>

namespace {

constexpr std::size_t kMaxFields = 1000;
constexpr std::size_t kMaxText = 60;

}  // namespace

std::string Fields::lettersAt(std::uint64_t offset, std::size_t count) {
    const Bytes bytes = part(offset, std::min(count, kMaxText));
    std::string letters(bytes.data, bytes.data + bytes.size);
    std::ranges::replace_if(
        letters, [](char c) { return c < ' ' || c > '~'; }, '.');
    return letters;
}

std::int64_t Fields::number(std::uint64_t offset, NumberKind kind, const char* name) {
    const Bytes bytes = part(offset, kind.bytes);
    add({offset, kind.bytes, name, textIn(bytes, kind)});
    return integerIn(bytes, kind);
}

void Fields::text(std::uint64_t offset, std::size_t count, const char* name) {
    add({offset, count, name, lettersAt(offset, count)});
}

void Fields::rest(std::uint64_t offset, const char* name) {
    if (has(offset)) add({offset, facts_.bytes - offset, name, ""});
}

void Fields::add(Field field) {
    if (!isFull()) facts_.fields.push_back(std::move(field));
}

bool Fields::endsWithin(const char* what, const Bytes& read, std::uint64_t offset) {
    if (read.overran) add({offset, read.size, "rest", std::string("too short for ") + what});
    return read.overran;
}

bool Fields::isFull() const {
    return facts_.fields.size() >= kMaxFields;
}

std::optional<PixelLayout> layoutOf(const PictureFacts& picture, NumberKind sample,
                                    std::uint64_t start) {
    if (picture.width <= 0 || picture.height <= 0 || picture.channels <= 0) return std::nullopt;
    const auto width = static_cast<std::uint64_t>(picture.width);
    const auto channels = static_cast<std::uint64_t>(picture.channels);
    return PixelLayout{.sample = sample,
                       .start = start,
                       .rowBytes = width * channels * sample.bytes,
                       .width = width,
                       .height = static_cast<std::uint64_t>(picture.height),
                       .channels = channels};
}
