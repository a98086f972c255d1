#include "files/Fields.h"

namespace {

using namespace number;

// Rows are padded to a multiple of four bytes.
std::optional<PixelLayout> bmpLayout(const PictureFacts& picture, std::uint64_t start) {
    if (picture.depth != 8 || picture.channels < 3) return std::nullopt;
    auto layout = layoutOf(picture, kByte, start);
    if (!layout) return layout;
    layout->rowBytes = (layout->rowBytes + 3) / 4 * 4;
    layout->bottomRowFirst = true;
    layout->blueFirst = true;
    return layout;
}

}  // namespace

void readBmp(Fields& fields) {
    PictureFacts& picture = fields.facts().picture.emplace();
    fields.text(0, 2, "signature");
    fields.number(2, kLe32, "file size");
    const auto pixels = static_cast<std::uint64_t>(fields.number(10, kLe32, "pixel offset"));
    fields.number(14, kLe32, "header bytes");
    picture.width = fields.number(18, kSignedLe32, "width");
    picture.height = fields.number(22, kSignedLe32, "height");
    fields.number(26, kLe16, "planes");
    const std::int64_t bits = fields.number(28, kLe16, "bits per pixel");
    const std::int64_t compression = fields.number(30, kLe32, "compression");
    fields.number(34, kLe32, "image bytes");
    fields.rest(pixels, "pixels");
    picture.channels = bits == 24 ? 3 : bits == 32 ? 4 : 1;
    picture.depth = bits / picture.channels;
    if (compression == 0) picture.pixels = bmpLayout(picture, pixels);
}
