// Plain C++, as no library edits these formats in place: files mapped, one pass over the pixels.

#include <cstring>
#include <vector>

#include "MapPeers.h"
#include "PlainPixels.h"
#include "files/BmpWriter.h"

namespace {

constexpr std::uint32_t kBmpHeadBytes = kBmpLayout.headBytes;
constexpr std::uint32_t kPsdHeadBytes = kPsdLayout.headBytes;

std::size_t rowBytes(const Maps& maps, const Layout& layout) {
    return std::size_t{3} / layout.planes * maps.side;
}

std::size_t thumbnailBytes(const Layout& layout) {
    return layout.headBytes + std::size_t{3} * kThumbSide * kThumbSide;
}

void moveThumbnail(const Maps& maps, const Layout& layout) {
    std::vector<std::uint8_t> row(rowBytes(maps, layout));
    const std::vector<std::uint8_t> thumb(thumbnailBytes(layout));
    {
        const OpenFile map(maps.map, Access::kRead);
        for (std::uint64_t plane = 0; plane < layout.planes; ++plane) {
            for (std::uint64_t y = 0; y < maps.side; y += maps.side / kThumbSide)
                map.readAt(layout.headBytes + (plane * maps.side + y) * row.size(), row);
        }
    }
    OpenFile(maps.map, Access::kCreate).writeAt(0, thumb);
}

}  // namespace

// The sides of BMP maps are multiples of four, so rows have no padding.

float mergeMappedBmp(const Maps& maps) {
    const MappedFile tile(maps.tile, Access::kRead);
    const MappedFile map(maps.map, Access::kRewrite);
    const std::uint8_t* const pixels = tile.data() + kBmpHeadBytes;
    plainMerge<3>(map.data() + kBmpHeadBytes, pixels, pixels, maps.pixels());
    return 0.0f;
}

float swapMappedBmp(const Maps& maps) {
    const MappedFile map(maps.map, Access::kRewrite);
    plainSwap(map.data() + kBmpHeadBytes, maps.pixels());
    return 0.0f;
}

float shrinkMappedBmp(const Maps& maps) {
    const std::size_t step = maps.side / kThumbSide;
    std::vector<std::uint8_t> thumb(std::size_t{3} * kThumbSide * kThumbSide);
    {
        const MappedFile map(maps.map, Access::kRead);
        std::uint8_t* to = thumb.data();
        for (std::size_t y = 0; y < kThumbSide; ++y) {
            const std::uint8_t* row =
                map.data() + kBmpHeadBytes + y * step * bmpRowBytes(maps.side);
            for (std::size_t x = 0; x < kThumbSide; ++x, to += 3)
                std::memcpy(to, row + x * step * 3, 3);
        }
    }
    BmpWriter file(maps.map, kThumbSide, kThumbSide);
    file.append(thumb);
    file.finish();
    return 0.0f;
}

Contender thumbnailLimit(const Maps& maps, const Layout& layout, double target) {
    const std::size_t bytes =
        rowBytes(maps, layout) * layout.planes * kThumbSide + thumbnailBytes(layout);
    return limit([=] { moveThumbnail(maps, layout); }, static_cast<double>(bytes), target);
}

float mergeMappedPsd(const Maps& maps) {
    const MappedFile tileFile(maps.tile, Access::kRead);
    const MappedFile mapFile(maps.map, Access::kRewrite);
    const std::uint8_t* const tile = tileFile.data() + kPsdHeadBytes;
    std::uint8_t* const map = mapFile.data() + kPsdHeadBytes;
    const std::size_t pixels = maps.pixels();
    const std::uint8_t red = map[0];
    const std::uint8_t green = map[pixels];
    const std::uint8_t blue = map[2 * pixels];
    for (std::size_t i = 0; i < pixels; ++i) {
        if (tile[i] == red && tile[pixels + i] == green && tile[2 * pixels + i] == blue) continue;
        map[i] = tile[i];
        map[pixels + i] = tile[pixels + i];
        map[2 * pixels + i] = tile[2 * pixels + i];
    }
    return 0.0f;
}

float rotateMappedPsd(const Maps& maps) {
    const MappedFile file(maps.map, Access::kRewrite);
    const std::size_t pixels = maps.pixels();
    std::uint8_t* const red = file.data() + kPsdHeadBytes;
    std::uint8_t* const green = red + pixels;
    std::uint8_t* const blue = green + pixels;
    for (std::size_t i = 0; i < pixels; ++i) {
        const std::uint8_t newRed = blue[i];
        blue[i] = green[i];
        green[i] = red[i];
        red[i] = newRed;
    }
    return 0.0f;
}
