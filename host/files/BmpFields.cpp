#include "files/Fields.h"

namespace {

using enum NumberKind;

// Rows are padded to a multiple of four bytes.
std::optional<PixelLayout> layoutOf(const PictureFacts& picture, std::int64_t start) {
    if (picture.depth != 8 || picture.channels < 3) return std::nullopt;
    if (picture.width <= 0 || picture.height <= 0) return std::nullopt;
    const auto width = static_cast<std::uint64_t>(picture.width);
    const auto channels = static_cast<std::uint64_t>(picture.channels);
    return PixelLayout{.sample = kByte,
                       .start = static_cast<std::uint64_t>(start),
                       .rowBytes = (channels * width + 3) / 4 * 4,
                       .width = width,
                       .height = static_cast<std::uint64_t>(picture.height),
                       .channels = channels,
                       .bottomRowFirst = true,
                       .blueFirst = true};
}

}  // namespace

void readBmp(Fields& fields) {
    PictureFacts& picture = fields.facts().picture.emplace();
    fields.text(0, 2, "signature");
    fields.number(2, kLe32, "file size");
    const std::int64_t pixels = fields.number(10, kLe32, "pixel offset");
    fields.number(14, kLe32, "header bytes");
    picture.width = fields.number(18, kSignedLe32, "width");
    picture.height = fields.number(22, kSignedLe32, "height");
    fields.number(26, kLe16, "planes");
    const std::int64_t bits = fields.number(28, kLe16, "bits per pixel");
    const std::int64_t compression = fields.number(30, kLe32, "compression");
    fields.number(34, kLe32, "image bytes");
    fields.rest(static_cast<std::uint64_t>(pixels), "pixels");
    picture.channels = bits == 24 ? 3 : bits == 32 ? 4 : 1;
    picture.depth = bits / picture.channels;
    if (compression == 0) picture.pixels = layoutOf(picture, pixels);
}
