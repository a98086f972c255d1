#include <cstdint>

#include "Numpy.h"
#include "Pictures.h"
#include "Races.h"
#include "TiffPeers.h"

namespace {

// The side of the largest float map that can be merged: its strip is shorter than 2 GiB.
constexpr std::uint32_t kLargestStrip = 13312;

Race merge8(const Setup& setup) {
    const MapPaths paths(setup, ".tif");
    Race race = mergeRace(setup, paths, "mergeMapsTIF", writeTiff8, 1.5);
    race.add(peer("libtiff", 0.5, [=] { return mergeByLibtiff(paths.tile, paths.map); }));
    return race;
}

Race mergeFloat(const Setup& setup) {
    const MapPaths paths(setup, ".tif");
    Race race = mergeRace(setup, paths, "mergeMapsTIF", writeTiffFloat, 1.5);
    race.add(peer("libtiff", 0.8, [=] { return mergeByLibtiff(paths.tile, paths.map); }));
    return race;
}

Race swap(const Setup& setup) {
    const MapPaths paths(setup, ".tif");
    Race race = rewriteRace(setup, paths, {"swapRGBTIF", paths.map, 2}, writeTiff8);
    race.add(rewriteLimit(paths, 1.7));
    race.add(peer("libtiff", 0.6, [=] { return swapByLibtiff(paths.map); }));
    return race;
}

Race convert(const Setup& setup) {
    const MapPaths paths(setup, ".tif");
    const std::string out = setup.folder + "/converted.tif";
    Race race = makeRace(setup, paths, {"convertTIFF16", paths.map, 3, out}, writeTiffFloat,
                         {.bytesPerPixel = 6, .limitTarget = 1.2});
    race.resultDigest = [out] { return digestOfPixels(out); };
    race.add(peer("libtiff", 0.55, [=] { return convertByLibtiff(paths.map, out); }));
    return race;
}

Race firstChannel(const Setup& setup) {
    const MapPaths paths(setup, ".tif");
    const std::string out = setup.folder + "/single.tif";
    Race race = makeRace(setup, paths, {"convertTIFFSingle", paths.map, 0, out}, writeTiffFloat,
                         {.bytesPerPixel = 4, .limitTarget = 1.15});
    race.resultDigest = [out] { return digestOfPixels(out); };
    for (const char* variant : {"whole", "pieces"})
        race.add(firstChannelByNumpy(paths.map, out, setup.side, variant, 0.75));
    return race;
}

Race scale(const Setup& setup) {
    const std::string map = setup.folder + "/map.tif";
    writeTiffFloat(map, {setup.side, setup.sparse}, Tile::kFirst);
    Race race{.amount = static_cast<double>(pixelsOf(setup)) * 1e-6,
              .contenders = exportContenders(setup, {"getScale", map, 3})};
    race.add(limit({{Traffic::Kind::kRead, map, fileBytes(map)}}, 2.0));
    race.add(peer("libtiff", 0.5, [=] { return scaleByLibtiff(map); }));
    return race;
}

Race targa(const Setup& setup) {
    const MapPaths paths(setup, ".tif");
    const std::string out = setup.folder + "/map.tga";
    Race race = makeRace(setup, paths, {"saveAsTarga", paths.map, 0, out}, writeTiff8,
                         {.bytesPerPixel = 3, .limitTarget = 1.3});
    race.add(peer("libtiff", 0.95, [=] { return targaByLibtiff(paths.map, out); }));
    return race;
}

}  // namespace

std::vector<Job> tiffJobs() {
    return {
        {.name = "mergeMapsTIF 8-bit RGB", .unit = "MP", .prepare = merge8, .diskPerPixel = 9},
        {.name = "mergeMapsTIF float RGB",
         .unit = "MP",
         .prepare = mergeFloat,
         .diskPerPixel = 36,
         .largestSide = kLargestStrip},
        {.name = "swapRGBTIF", .unit = "MP", .prepare = swap, .diskPerPixel = 6},
        {.name = "convertTIFF16 mode 3", .unit = "MP", .prepare = convert, .diskPerPixel = 18},
        {.name = "convertTIFFSingle", .unit = "MP", .prepare = firstChannel, .diskPerPixel = 16},
        {.name = "getScale", .unit = "MP", .prepare = scale, .diskPerPixel = 12},
        {.name = "saveAsTarga", .unit = "MP", .prepare = targa, .diskPerPixel = 6},
    };
}
