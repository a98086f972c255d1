#include <cstdint>

#include "Job.h"
#include "Literals.h"
#include "Pictures.h"

namespace {

using enum Traffic::Kind;

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
    const std::string tile = setup.folder + "/tile.psd";
    const std::string map = setup.folder + "/map.psd";
    const std::string original = setup.folder + "/original.psd";
    writePsd8(tile, specOf(setup), Tile::kFirst);
    writePsd8(original, specOf(setup), Tile::kSecond);

    const std::size_t pixels = std::size_t{setup.side} * setup.side;
    const std::uint64_t bytes = kHeadBytes + 3 * pixels;
    Race race{.amount = megapixels(setup.side),
              .bytesWritten = static_cast<double>(bytes),
              .bytesHeld = static_cast<double>(bytes),
              .rewritten = {{map, original}},
              .resultDigest = [map] { return digestOf(map); },
              .contenders = exportContenders(setup, {"mergeMapsPSD", tile, 0, map})};
    race.contenders.push_back(
        {Role::kPeer, "C++, mapped", [=] { return mergeMapped(tile, map, pixels); }, 0.75});
    race.contenders.push_back(limit({{kRead, tile, bytes}, {kRewrite, map, bytes}}, 1.4));
    race.contenders.push_back({Role::kLiteral, "literal",
                               [=] { return literalMergePlanes(tile, map, kHeadBytes, pixels); }});
    return race;
}

Race rotate(const Setup& setup) {
    const std::string map = setup.folder + "/map.psd";
    const std::string original = setup.folder + "/original.psd";
    writePsd8(original, specOf(setup), Tile::kFirst);

    const std::size_t pixels = std::size_t{setup.side} * setup.side;
    const std::uint64_t bytes = kHeadBytes + 3 * pixels;
    Race race{.amount = megapixels(setup.side),
              .bytesWritten = static_cast<double>(bytes),
              .bytesHeld = static_cast<double>(bytes),
              .rewritten = {{map, original}},
              .resultDigest = [map] { return digestOf(map); },
              .contenders = exportContenders(setup, {"swapRGBPSD", map, 2})};
    race.contenders.push_back(
        {Role::kPeer, "C++, mapped", [=] { return rotateMapped(map, pixels); }, 1.0});
    race.contenders.push_back(limit({{kRewrite, map, bytes}}, 1.2));
    race.contenders.push_back(
        {Role::kLiteral, "literal", [=] { return literalRotatePlanes(map, kHeadBytes, pixels); }});
    return race;
}

}  // namespace

std::vector<Job> psdJobs() {
    return {
        {.name = "mergeMapsPSD", .unit = "MP", .prepare = merge, .diskPerPixel = 9},
        {.name = "swapRGBPSD", .unit = "MP", .prepare = rotate, .diskPerPixel = 6},
    };
}
