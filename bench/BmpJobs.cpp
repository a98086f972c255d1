#include <cstdint>
#include <cstring>
#include <vector>

#include "Pictures.h"
#include "PlainPixels.h"
#include "Races.h"
#include "files/BmpWriter.h"

namespace {

constexpr std::uint32_t kHeadBytes = 54;
constexpr std::uint32_t kThumbSide = 256;

// Sides are multiples of four, so that rows have no padding.

// What one writes for want of a library: files mapped, one pass over the pixels.

float mergeMapped(const std::string& source, const std::string& target, std::size_t pixels) {
    const MappedFile tile = MappedFile::forReading(source);
    const MappedFile map = MappedFile::forRewriting(target);
    plainMerge(map.data() + kHeadBytes, tile.data() + kHeadBytes, tile.data() + kHeadBytes, pixels,
               3);
    return 0.0f;
}

float swapMapped(const std::string& path, std::size_t pixels) {
    const MappedFile map = MappedFile::forRewriting(path);
    plainSwap(map.data() + kHeadBytes, pixels, 0, 2);
    return 0.0f;
}

std::vector<std::uint8_t> sampleMapped(const std::string& path, std::uint32_t side) {
    const MappedFile map = MappedFile::forReading(path);
    const std::size_t step = side / kThumbSide;
    std::vector<std::uint8_t> thumb(kHeadBytes + std::size_t{3} * kThumbSide * kThumbSide);
    std::memcpy(thumb.data(), map.data(), kHeadBytes);
    plainBmpSize(thumb.data(), kThumbSide);
    std::uint8_t* to = &thumb[kHeadBytes];
    for (std::size_t y = 0; y < kThumbSide; ++y) {
        const std::uint8_t* row = map.data() + kHeadBytes + y * step * bmpRowBytes(side);
        for (std::size_t x = 0; x < kThumbSide; ++x, to += 3)
            std::memcpy(to, row + x * step * 3, 3);
    }
    return thumb;
}

float thumbnailMapped(const std::string& path, std::uint32_t side) {
    const std::vector<std::uint8_t> thumb = sampleMapped(path, side);
    OpenFile::create(path).writeAt(0, thumb);
    return 0.0f;
}

// The least that a thumbnail asks for: the rows that it shows, read, and the file made anew.
float thumbnailTraffic(const std::string& path, std::uint32_t side) {
    std::vector<std::uint8_t> thumb(kHeadBytes + std::size_t{3} * kThumbSide * kThumbSide);
    std::vector<std::uint8_t> row(bmpRowBytes(side));
    {
        const OpenFile map = OpenFile::forReading(path);
        for (std::uint64_t y = 0; y < side; y += side / kThumbSide)
            map.readAt(kHeadBytes + y * row.size(), row);
    }
    OpenFile::create(path).writeAt(0, thumb);
    return 0.0f;
}

Race merge(const Setup& setup) {
    const MapPaths paths(setup, ".bmp");
    const std::size_t pixels = pixelsOf(setup);
    Race race = mergeRace(setup, paths, "mergeMapsBMP", writeBmp, 1.4);
    race.add(peer("C++, mapped", 0.75, [=] { return mergeMapped(paths.tile, paths.map, pixels); }));
    return race;
}

Race swap(const Setup& setup) {
    const MapPaths paths(setup, ".bmp");
    const std::size_t pixels = pixelsOf(setup);
    Race race = rewriteRace(setup, paths, {"swapRGBBMP", paths.map, 2}, writeBmp);
    race.add(rewriteLimit(paths, 1.3));
    race.add(peer("C++, mapped", 0.95, [=] { return swapMapped(paths.map, pixels); }));
    return race;
}

Race thumbnail(const Setup& setup) {
    const MapPaths paths(setup, ".bmp");
    const std::uint32_t side = setup.side;
    Race race = rewriteRace(setup, paths, {"CreateThumbnailBMP", paths.map, kThumbSide}, writeBmp);
    race.bytesHeld = race.bytesWritten;
    race.add({.role = Role::kLimit,
              .name = "limit",
              .work = [=] { return thumbnailTraffic(paths.map, side); },
              .target = 1.1,
              .sameResult = false});
    race.add(peer("C++, mapped", 0.9, [=] { return thumbnailMapped(paths.map, side); }));
    return race;
}

}  // namespace

std::vector<Job> bmpJobs() {
    return {
        {.name = "mergeMapsBMP", .unit = "MP", .prepare = merge, .diskPerPixel = 9},
        {.name = "swapRGBBMP", .unit = "MP", .prepare = swap, .diskPerPixel = 6},
        {.name = "CreateThumbnailBMP", .unit = "MP", .prepare = thumbnail, .diskPerPixel = 6},
    };
}
