#include "files/ChangedPixels.h"

#include <algorithm>
#include <cstring>
#include <utility>

#include "files/DiskFile.h"
#include "files/FileFacts.h"

namespace {

constexpr std::size_t kBlockBytes = 64 * 1024;

// A pixel counts once, also if samples of several planes changed.
class PixelSet {
public:
    explicit PixelSet(const PixelLayout& layout)
        : layout_(layout), taken_(static_cast<std::size_t>(layout.width * layout.height)) {}

    void take(std::uint64_t offset) {
        const auto found = sampleAt(layout_, offset);
        if (!found || !found->sample) return;
        taken_[static_cast<std::size_t>(found->sample->y * layout_.width + found->sample->x)] =
            true;
    }
    std::uint64_t size() const {
        return static_cast<std::uint64_t>(std::count(taken_.begin(), taken_.end(), true));
    }

private:
    const PixelLayout& layout_;
    std::vector<bool> taken_;
};

void takeChanges(PixelSet& pixels, std::span<std::uint8_t> before,
                 std::span<const std::uint8_t> now, std::uint64_t offset) {
    if (std::memcmp(before.data(), now.data(), now.size()) == 0) return;
    for (std::size_t i = 0; i < now.size(); ++i) {
        if (before[i] != now[i]) pixels.take(offset + i);
    }
    std::ranges::copy(now, before.begin());
}

}  // namespace

ChangedPixels::ChangedPixels(std::string path)
    : path_(std::move(path)), bytes_(readWholeFile(path_, "map")) {}

std::optional<std::uint64_t> ChangedPixels::count() {
    const FileFacts facts = factsOf(path_);
    if (!facts.picture || !facts.picture->pixels || facts.bytes != bytes_.size()) return {};
    PixelSet pixels(*facts.picture->pixels);
    InputFile file(path_, "map");
    std::vector<std::uint8_t> block(kBlockBytes);
    for (std::uint64_t offset = 0; offset < bytes_.size(); offset += kBlockBytes) {
        const auto before = std::span(bytes_).subspan(
            static_cast<std::size_t>(offset),
            static_cast<std::size_t>(std::min<std::uint64_t>(kBlockBytes, bytes_.size() - offset)));
        const std::size_t got = file.read(offset, std::span(block).first(before.size()));
        takeChanges(pixels, before.first(got), std::span(block).first(got), offset);
    }
    return pixels.size();
}
