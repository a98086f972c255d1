#include <cstdint>

#include "BmpWriter.h"
#include "ExrPeers.h"
#include "Job.h"
#include "JpegLiteral.h"
#include "JpegPeer.h"
#include "Pictures.h"

namespace {

using enum Traffic::Kind;

Race jpeg(const Setup& setup) {
    const std::string in = setup.folder + "/map.bmp";
    const std::string out = setup.folder + "/map.jpg";
    writeBmp(in, setup.side, Tile::kFirst);

    Race race{.amount = megapixels(setup.side),
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
        {"saveAsJpeg 50", "MP", Loads::kWholeFile, jpeg},
        {"OpenEXR half ZIP", "MP", Loads::kWholeFile, exrHalf},
        {"OpenEXR float ZIP", "MP", Loads::kWholeFile, exrFloat},
    };
}
