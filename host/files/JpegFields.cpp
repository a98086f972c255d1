#include "files/Fields.h"

namespace {

// Markers that start a frame: C0 to CF, except the tables C4, C8 and CC.
bool startsFrame(std::uint8_t marker) {
    return marker >= 0xC0 && marker <= 0xCF && marker != 0xC4 && marker != 0xC8 && marker != 0xCC;
}

}  // namespace

void readJpeg(Fields& fields) {
    constexpr std::uint8_t kStartOfScan = 0xDA;
    constexpr const char* kDigits = "0123456789ABCDEF";
    fields.add({0, 2, "FFD8", "start of image"});
    for (std::uint64_t offset = 2; fields.has(offset) && !fields.isFull();) {
        Bytes segment = fields.part(offset, 10);
        if (segment.u8(0) != 0xFF) return;
        const std::uint8_t marker = segment.u8(1);
        const std::uint16_t length = segment.be16(2);
        const bool frame = startsFrame(marker);
        const std::uint16_t height = segment.be16(5);
        const std::uint16_t width = segment.be16(7);
        const std::uint8_t channels = segment.u8(9);
        const std::string size = std::to_string(width) + " x " + std::to_string(height) + " pixels";
        fields.add({offset, 2u + length,
                    std::string("FF") + kDigits[marker >> 4] + kDigits[marker & 15],
                    frame ? "frame of " + size : ""});
        if (frame) fields.facts().picture = PictureFacts{width, height, channels, segment.u8(4)};
        if (marker == kStartOfScan || length < 2) return;
        offset += 2u + length;
    }
}
