#include <cstdint>

#include "Pictures.h"
#include "Races.h"

namespace {

constexpr std::uint32_t kHeadBytes = 40;

// What one writes for want of a library: both files mapped, one pass over the pixels.
float mergeMapped(const std::string& source, const std::string& target, std::size_t pixels) {
    const MappedFile sourceFile = MappedFile::forReading(source);
    const MappedFile targetFile = MappedFile::forRewriting(target);
    const std::uint8_t* const tile = sourceFile.data() + kHeadBytes;
    std::uint8_t* const map = targetFile.data() + kHeadBytes;
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

// The planes change places through a copy of one of them.
float rotateMapped(const std::string& path, std::size_t pixels) {
    const MappedFile file = MappedFile::forRewriting(path);
    std::uint8_t* const red = file.data() + kHeadBytes;
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

Race merge(const Setup& setup) {
    const MapPaths paths(setup, ".psd");
    const std::size_t pixels = pixelsOf(setup);
    Race race = mergeRace(setup, paths, "mergeMapsPSD", writePsd8, 1.4);
    race.bytesHeld = race.bytesWritten;
    race.add(peer("C++, mapped", 0.75, [=] { return mergeMapped(paths.tile, paths.map, pixels); }));
    return race;
}

Race rotate(const Setup& setup) {
    const MapPaths paths(setup, ".psd");
    const std::size_t pixels = pixelsOf(setup);
    Race race = rewriteRace(setup, paths, {"swapRGBPSD", paths.map, 2}, writePsd8);
    race.bytesHeld = race.bytesWritten;
    race.add(rewriteLimit(paths, 1.2));
    race.add(peer("C++, mapped", 1.0, [=] { return rotateMapped(paths.map, pixels); }));
    return race;
}

}  // namespace

std::vector<Job> psdJobs() {
    return {
        {.name = "mergeMapsPSD", .unit = "MP", .prepare = merge, .diskPerPixel = 9},
        {.name = "swapRGBPSD", .unit = "MP", .prepare = rotate, .diskPerPixel = 6},
    };
}
