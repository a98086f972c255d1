#include <cstdlib>

#include "files/Diagnosis.h"
#include "files/Fields.h"

namespace {

using namespace number;

// Rows are padded to a multiple of four bytes.
std::optional<PixelLayout> bmpLayout(const PictureFacts& picture, const BmpFacts& bmp) {
    if (picture.depth != 8 || picture.channels < 3) return std::nullopt;
    auto layout = layoutOf(picture, kByte, static_cast<std::uint64_t>(bmp.pixelOffset));
    if (!layout) return layout;
    layout->rowBytes = (layout->rowBytes + 3) / 4 * 4;
    layout->bottomRowFirst = bmp.height > 0;
    layout->blueFirst = true;
    return layout;
}

// In the header of 12 bytes the sizes take 16 bits each, and nothing follows them.
void readSizes(Fields& fields, BmpFacts& bmp) {
    const bool isOld = bmp.headerBytes == kOldBmpHeaderBytes;
    PictureFacts& picture = fields.facts().picture.emplace();
    picture.width = fields.number(18, isOld ? kLe16 : kSignedLe32, "width");
    bmp.height = fields.number(isOld ? 20 : 22, isOld ? kLe16 : kSignedLe32, "height");
    picture.height = std::abs(bmp.height);
    fields.number(isOld ? 22 : 26, kLe16, "planes");
    bmp.bitsPerPixel = fields.number(isOld ? 24 : 28, kLe16, "bits per pixel");
    if (isOld) return;
    bmp.compression = fields.number(30, kLe32, "compression");
    fields.number(34, kLe32, "image bytes");
}

}  // namespace

void readBmp(Fields& fields) {
    BmpFacts bmp;
    fields.text(0, 2, "signature");
    fields.number(2, kLe32, "file size");
    bmp.pixelOffset = fields.number(10, kLe32, "pixel offset");
    bmp.headerBytes = fields.number(14, kLe32, "header bytes");
    readSizes(fields, bmp);
    const auto pixels = static_cast<std::uint64_t>(bmp.pixelOffset);
    fields.rest(pixels, "pixels");

    PictureFacts& picture = *fields.facts().picture;
    picture.channels = bmp.bitsPerPixel == 24 ? 3 : bmp.bitsPerPixel == 32 ? 4 : 1;
    picture.depth = bmp.bitsPerPixel / picture.channels;
    if (bmp.compression == 0) picture.pixels = bmpLayout(picture, bmp);
    fields.facts().notes = notesOn(fields.facts(), bmp);
}
