#include "page/MapPicture.h"

#include <algorithm>
#include <vector>

#include "bytes/Bytes.h"
#include "files/DiskFile.h"
#include "files/FileFacts.h"
#include "render/Raster.h"
#include "terminal/Failure.h"

namespace {

bool isReadable(const FileFacts& facts) {
    if (!facts.picture || !facts.picture->pixels) return false;
    const PixelLayout& layout = *facts.picture->pixels;
    const bool isKnown = layout.sample.type != NumberKind::kFloat ||
                         (layout.sample.bytes == sizeof(float) && !layout.sample.bigEndian);
    return isKnown && layout.width <= 65535 && layout.height <= 65535 &&
           (layout.channels == 1 || layout.channels == 3);
}

PixelLayout requireMap(const std::string& path) {
    const FileFacts facts = factsOf(path);
    if (!isReadable(facts)) throw Failure(path + " is no map that can be shown");
    return *facts.picture->pixels;
}

// A float from 0 to 1 as 0 to 255, any other number by its most significant eight bits.
std::uint8_t levelAt(const std::uint8_t* bytes, NumberKind kind) {
    if (kind.type == NumberKind::kFloat) return rounded<std::uint8_t>(loadLeFloat(bytes) * 255.0f);
    return bytes[kind.bigEndian ? 0 : kind.bytes - 1];
}

// Which of a map's pixels a picture shows: the middle of every `step`.
std::uint32_t middleOf(std::uint32_t block, std::uint32_t step, std::uint32_t pixels) {
    return std::min(block * step + step / 2, pixels - 1);
}

}  // namespace

Picture pictureOfMap(const std::string& path, std::uint32_t longest) {
    const PixelLayout layout = requireMap(path);
    const auto width = static_cast<std::uint32_t>(layout.width);
    const auto height = static_cast<std::uint32_t>(layout.height);
    return pictureOfMap(path, {0, 0, width, height}, longest);
}

Picture pictureOfMap(const std::string& path, const MapPart& part, std::uint32_t longest) {
    const PixelLayout layout = requireMap(path);
    const std::uint64_t pixelBytes = pixelBytesOf(layout);
    const std::uint32_t step = (std::max(part.width, part.height) - 1) / longest + 1;

    Picture picture((part.width - 1) / step + 1, (part.height - 1) / step + 1);
    InputFile file(path, "map");
    std::vector<std::uint8_t> row(pixelBytes * (part.width - 1) + layout.sample.bytes);
    for (std::uint32_t y = 0; y < picture.height; ++y) {
        const std::uint32_t mapY = part.top + middleOf(y, step, part.height);
        for (std::uint64_t channel = 0; channel < 3; ++channel) {
            file.read(offsetOf(layout, {part.left, mapY, std::min(channel, layout.channels - 1)}),
                      row);
            for (std::uint32_t x = 0; x < picture.width; ++x) {
                const std::uint64_t at = pixelBytes * middleOf(x, step, part.width);
                picture.at(x, y)[channel] = levelAt(&row[at], layout.sample);
            }
        }
    }
    return picture;
}
