#include "files/Fields.h"

void readTarga(Fields& fields) {
    using namespace number;
    PictureFacts& picture = fields.facts().picture.emplace();
    const std::int64_t idBytes = fields.number(0, kByte, "image id bytes");
    fields.number(1, kByte, "colour map");
    fields.number(2, kByte, "image type");
    picture.width = fields.number(12, kLe16, "width");
    picture.height = fields.number(14, kLe16, "height");
    picture.channels = fields.number(16, kByte, "bits per pixel") / 8;
    picture.depth = 8;
    fields.number(17, kByte, "descriptor");
    fields.rest(static_cast<std::uint64_t>(18 + idBytes), "pixels");
}
