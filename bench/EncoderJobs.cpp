#include <limits>

#include "BmpWriter.h"
#include "ExrPeers.h"
#include "Job.h"
#include "JpegLiteral.h"
#include "JpegPeer.h"
#include "Pictures.h"

namespace {

// tinyexr holds the file and all its channels; nothing is asked of it.
constexpr double kAnyNumber = std::numeric_limits<double>::infinity();

Race jpeg(const Setup& setup) {
    const std::string in = setup.folder + "/map.bmp";
    const std::string out = setup.folder + "/map.jpg";
    writeBmp(in, specOf(setup), Tile::kFirst);

    Race race{.amount = megapixels(setup.side),
              .bytesHeld = static_cast<double>(OpenFile::forReading(in).size()),
              .created = {out},
              .resultDigest = [out] { return digestOfScan(out); },
              .contenders = exportContenders(setup, {"saveAsJpeg", in, 50, out})};
    const auto addPeer = [&](const char* name, JpegDct dct, double target) {
        race.contenders.push_back({.role = Role::kPeer,
                                   .name = name,
                                   .work = [=] { return jpegByTurbo(in, out, dct); },
                                   .target = target,
                                   .sameResult = false});
    };
    addPeer("libjpeg-turbo, fast DCT", JpegDct::kFast, 0.8);
    addPeer("float DCT", JpegDct::kFloat, 0.7);
    race.contenders.push_back({Role::kLiteral, "literal", [=] { return literalJpeg(in, out); }});
    return race;
}

Race exr(const Setup& setup, ExrSamples samples) {
    const std::string map = setup.folder + "/map.exr";
    writeExr(map, setup.side, samples);

    Race race{.amount = megapixels(setup.side),
              .bytesHeld = kAnyNumber,
              .contenders = exportContenders(setup, {"OpenEXR", map})};
    race.contenders.push_back({Role::kPeer, "OpenEXR", [=] { return rangeByOpenExr(map); }, 0.8});
    race.contenders.push_back({Role::kLiteral, "literal", [=] { return rangeByTinyExr(map); }});
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
