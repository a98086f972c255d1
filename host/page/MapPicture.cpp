#include "page/MapPicture.h"

#include <algorithm>
#include <vector>

#include "bytes/Bytes.h"
#include "files/BmpWriter.h"
#include "files/DiskFile.h"
#include "files/FileFacts.h"
#include "terminal/Failure.h"

namespace {

enum class SampleKind { kByte, kLe16, kBe16, kFloat };

// Where a sample stands: at + perRow * y + perPixel * x + perChannel * channel.
struct Layout {
    SampleKind kind;
    std::int64_t at;
    std::int64_t perRow;
    std::int64_t perPixel;
    std::int64_t perChannel;
    std::int64_t sampleBytes;
};

Layout layoutOf(const FileFacts& facts) {
    const PictureFacts& picture = *facts.picture;
    const auto at = static_cast<std::int64_t>(picture.samplesAt);
    const std::int64_t bytes = picture.depth / 8;
    if (facts.kind == FileKind::kBmp) {  // bottom row and blue first
        const std::int64_t row = bmpRowBytes(static_cast<std::uint32_t>(picture.width));
        return {SampleKind::kByte, at + row * (picture.height - 1) + 2, -row, 3, -1, 1};
    }
    if (facts.kind == FileKind::kPsd) {  // a plane for each channel
        const std::int64_t row = picture.width * bytes;
        return {bytes == 2 ? SampleKind::kBe16 : SampleKind::kByte,
                at,
                row,
                bytes,
                row * picture.height,
                bytes};
    }
    const std::int64_t pixel = picture.channels * bytes;
    const SampleKind kind = bytes == 4   ? SampleKind::kFloat
                            : bytes == 2 ? SampleKind::kLe16
                                         : SampleKind::kByte;
    return {kind, at, picture.width * pixel, pixel, bytes, bytes};
}

bool isReadable(const FileFacts& facts) {
    const bool isMap = facts.kind == FileKind::kTiff || facts.kind == FileKind::kPsd ||
                       facts.kind == FileKind::kBmp;
    if (!isMap || !facts.picture) return false;
    const PictureFacts& picture = *facts.picture;
    const auto isSide = [](std::int64_t side) { return side > 0 && side <= 65535; };
    const bool isFloat = facts.kind == FileKind::kTiff && picture.depth == 32;
    return isSide(picture.width) && isSide(picture.height) &&
           (picture.channels == 1 || picture.channels == 3) &&
           (picture.depth == 8 || picture.depth == 16 || isFloat);
}

FileFacts requireMap(const std::string& path) {
    FileFacts facts = factsOf(path);
    if (!isReadable(facts)) throw Failure(path + " is no map that can be shown");
    return facts;
}

std::uint8_t levelOf(float sample) {
    const float level = sample * 255.0f + 0.5f;
    return level > 0.0f ? static_cast<std::uint8_t>(std::min(level, 255.0f)) : 0;
}

std::uint8_t sampleAt(const std::uint8_t* bytes, SampleKind kind) {
    if (kind == SampleKind::kFloat) return levelOf(loadLeFloat(bytes));
    return kind == SampleKind::kLe16 ? bytes[1] : bytes[0];
}

}  // namespace

Picture pictureOfMap(const std::string& path, std::uint32_t longest) {
    const FileFacts facts = requireMap(path);
    const auto width = static_cast<std::uint32_t>(facts.picture->width);
    const auto height = static_cast<std::uint32_t>(facts.picture->height);
    return pictureOfMap(path, {0, 0, width, height}, longest);
}

Picture pictureOfMap(const std::string& path, const MapPart& part, std::uint32_t longest) {
    const FileFacts facts = requireMap(path);
    const Layout layout = layoutOf(facts);
    const std::int64_t lastChannel = facts.picture->channels - 1;
    const std::uint32_t step = (std::max(part.width, part.height) - 1) / longest + 1;
    const auto middleOf = [step](std::uint32_t block, std::uint32_t pixels) {
        return std::min(block * step + step / 2, pixels - 1);
    };

    Picture picture((part.width - 1) / step + 1, (part.height - 1) / step + 1);
    InputFile file(path, "map");
    std::vector<std::uint8_t> row(
        static_cast<std::size_t>(layout.perPixel * (part.width - 1) + layout.sampleBytes));
    for (std::uint32_t y = 0; y < picture.height; ++y) {
        const std::int64_t rowAt = layout.at + layout.perPixel * part.left +
                                   layout.perRow * (part.top + middleOf(y, part.height));
        for (std::int64_t channel = 0; channel < 3; ++channel) {
            const std::int64_t at = rowAt + layout.perChannel * std::min(channel, lastChannel);
            file.read(static_cast<std::uint64_t>(at), row);
            for (std::uint32_t x = 0; x < picture.width; ++x) {
                const std::int64_t sample = layout.perPixel * middleOf(x, part.width);
                picture.at(x, y)[channel] =
                    sampleAt(&row[static_cast<std::size_t>(sample)], layout.kind);
            }
        }
    }
    return picture;
}
