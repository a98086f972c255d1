#include "files/Diagnosis.h"
#include "files/Fields.h"

namespace {

using namespace number;

// What is between the header and the image data, each with its length in front.
constexpr std::pair<const char*, const char*> kBlocks[] = {{"colour table bytes", "colour table"},
                                                           {"resource bytes", "resources"},
                                                           {"layer bytes", "layers"}};

// One plane per channel.
std::optional<PixelLayout> psdLayout(const PictureFacts& picture, std::uint64_t start) {
    if (picture.depth != 8 && picture.depth != 16 && picture.depth != 32) return std::nullopt;
    const NumberKind sample = picture.depth == 32 ? kBeFloat : picture.depth == 16 ? kBe16 : kByte;
    auto layout = layoutOf(picture, sample, start);
    if (!layout) return layout;
    layout->rowBytes /= layout->channels;
    layout->planes = true;
    return layout;
}

}  // namespace

void readPsd(Fields& fields) {
    PictureFacts& picture = fields.facts().picture.emplace();
    PsdFacts psd;
    fields.text(0, 4, "signature");
    psd.version = fields.number(4, kBe16, "version");
    picture.channels = fields.number(12, kBe16, "channels");
    picture.height = fields.number(14, kBe32, "height");
    picture.width = fields.number(18, kBe32, "width");
    picture.depth = fields.number(22, kBe16, "depth");
    psd.colourMode = fields.number(24, kBe16, "colour mode");
    std::uint64_t offset = 26;
    for (const auto& [lengthName, name] : kBlocks) {
        const auto bytes = static_cast<std::uint64_t>(fields.number(offset, kBe32, lengthName));
        fields.facts().details.push_back({offset + 4, bytes, name, ""});
        psd.layerBytes = static_cast<std::int64_t>(bytes);  // the last of them
        offset += 4 + bytes;
    }
    psd.compression = fields.number(offset, kBe16, "compression");
    if (psd.compression == 0) picture.pixels = psdLayout(picture, offset + 2);
    fields.rest(offset + 2, "image data");
    fields.facts().notes = notesOn(fields.facts(), psd);
}
