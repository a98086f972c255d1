#include <limits>

#include "ExrPeers.h"
#include "JpegPeer.h"
#include "Pictures.h"
#include "Races.h"

namespace {

// tinyexr holds the file and all its channels; nothing is asked of it.
constexpr double kAnyNumber = std::numeric_limits<double>::infinity();

Race jpeg(const Setup& setup) {
    const MapPaths paths(setup, ".bmp");
    const std::string out = setup.folder + "/map.jpg";
    Race race = makeRace(setup, paths, {"saveAsJpeg", paths.map, 50, out}, writeBmp, {});
    race.bytesHeld = static_cast<double>(fileBytes(paths.map));
    const auto addPeer = [&](const char* name, JpegDct dct, double target) {
        race.add(peer(name, target, [=] { return jpegByTurbo(paths.map, out, dct); }));
        race.contenders.back().sameResult = false;
    };
    addPeer("libjpeg-turbo, fast DCT", JpegDct::kFast, 0.8);
    addPeer("float DCT", JpegDct::kFloat, 0.7);
    return race;
}

Race exr(const Setup& setup, ExrSamples samples) {
    const std::string map = setup.folder + "/map.exr";
    writeExr(map, setup.side, samples);
    Race race{.amount = static_cast<double>(pixelsOf(setup)) * 1e-6,
              .bytesHeld = kAnyNumber,
              .contenders = exportContenders(setup, {"OpenEXR", map})};
    race.add(peer("OpenEXR", 0.8, [=] { return rangeByOpenExr(map); }));
    return race;
}

Race exrHalf(const Setup& setup) {
    return exr(setup, ExrSamples::kHalf);
}

Race exrFloat(const Setup& setup) {
    return exr(setup, ExrSamples::kFloat);
}

}  // namespace

std::vector<Job> encoderJobs() {
    return {
        {.name = "saveAsJpeg 50", .unit = "MP", .prepare = jpeg, .diskPerPixel = 4},
        {.name = "OpenEXR half ZIP",
         .unit = "MP",
         .prepare = exrHalf,
         .diskPerPixel = 6,
         .canBeSparse = false},
        {.name = "OpenEXR float ZIP",
         .unit = "MP",
         .prepare = exrFloat,
         .diskPerPixel = 12,
         .canBeSparse = false},
    };
}
