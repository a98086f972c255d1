// The jobs on maps.

#include <filesystem>
#include <limits>

#include "Job.h"
#include "MapPeers.h"
#include "Pictures.h"

namespace {

enum class Work {
    kMerge,    // folds the tile into the map
    kRewrite,  // changes the map in place
    kMake,     // makes a new file from the map
    kRead,
};

struct MapJob;
using MakeContender = std::function<Contender(const MapJob&, const Maps&)>;

struct MapJob {
    std::string name;  // the export's, and what distinguishes its jobs
    double value = 0;  // what the export is called with, apart from paths
    Work work;
    MapType type;
    double madeBytes = 0;  // of the new file, per pixel
    double heldBytes = 0;  // of the map that the export may hold in memory, per pixel
    std::vector<MakeContender> others;
    std::uint64_t (*digest)(const std::string& path) = digestOf;
    std::uint32_t largestSide = kLargestSide;

    bool changesMap() const { return work == Work::kMerge || work == Work::kRewrite; }
};

MakeContender peer(const char* name, double target, float (*work)(const Maps&),
                   bool sameResult = true) {
    return [=](auto&, auto& maps) {
        return Contender{Role::kPeer, name, [=] { return work(maps); }, target, sameResult};
    };
}

MakeContender numpy(const char* variant, double target) {
    return [=](auto&, auto& maps) { return firstChannelByNumpy(maps, variant, target); };
}

std::vector<Traffic> trafficOf(const MapJob& job, const Maps& maps) {
    const std::uint64_t bytes = std::filesystem::file_size(maps.original);
    const Traffic readMap{Access::kRead, maps.map, bytes};
    const Traffic rewriteMap{Access::kRewrite, maps.map, bytes};
    const auto madeBytes = static_cast<std::uint64_t>(job.madeBytes) * maps.pixels();
    switch (job.work) {
        case Work::kMerge:
            return {{Access::kRead, maps.tile, bytes}, rewriteMap};
        case Work::kRewrite:
            return {rewriteMap};
        case Work::kMake:
            return {readMap, {Access::kCreate, maps.made, madeBytes}};
        case Work::kRead:
            return {readMap};
    }
    return {};
}

MakeContender wholeFiles(double target) {
    return [=](const MapJob& job, const Maps& maps) {
        return limit([traffic = trafficOf(job, maps)] { moveBytes(traffic); }, target);
    };
}

MakeContender thumbnail(double target) {
    return [=](auto&, auto& maps) { return limit([=] { thumbnailTraffic(maps); }, target); };
}

// The side of the largest float map that can be merged: its strip is shorter than 2 GiB.
constexpr std::uint32_t kLargestStrip = 13312;

std::vector<MapJob> tiffJobs() {
    return {{.name = "mergeMapsTIF 8-bit RGB",
             .work = Work::kMerge,
             .type = kTiff8,
             .others = {wholeFiles(1.5), peer("libtiff", 0.5, mergeByLibtiff)}},
            {.name = "mergeMapsTIF float RGB",
             .work = Work::kMerge,
             .type = kTiffFloat,
             .others = {wholeFiles(1.5), peer("libtiff", 0.8, mergeByLibtiff)},
             .largestSide = kLargestStrip},
            {.name = "swapRGBTIF",
             .value = 2,
             .work = Work::kRewrite,
             .type = kTiff8,
             .others = {wholeFiles(1.7), peer("libtiff", 0.6, swapByLibtiff)}},
            {.name = "convertTIFF16 mode 3",
             .value = 3,
             .work = Work::kMake,
             .type = kTiffFloat,
             .madeBytes = 6,
             .others = {wholeFiles(1.2), peer("libtiff", 0.55, convertByLibtiff)},
             .digest = digestOfPixels},
            {.name = "convertTIFFSingle",
             .work = Work::kMake,
             .type = kTiffFloat,
             .madeBytes = 4,
             .others = {wholeFiles(1.15), numpy("whole", 0.75), numpy("pieces", 0.75)},
             .digest = digestOfPixels},
            {.name = "getScale",
             .value = 3,
             .work = Work::kRead,
             .type = kTiffFloat,
             .others = {wholeFiles(2.0), peer("libtiff", 0.5, scaleByLibtiff)}},
            {.name = "saveAsTarga",
             .work = Work::kMake,
             .type = kTiff8,
             .madeBytes = 3,
             .others = {wholeFiles(1.3), peer("libtiff", 0.95, targaByLibtiff)}}};
}

std::vector<MapJob> psdJobs() {
    return {{.name = "mergeMapsPSD",
             .work = Work::kMerge,
             .type = kPsd,
             .heldBytes = 3,
             .others = {wholeFiles(1.4), peer("C++, mapped", 0.75, mergeMappedPsd)}},
            {.name = "swapRGBPSD",
             .value = 2,
             .work = Work::kRewrite,
             .type = kPsd,
             .heldBytes = 3,
             .others = {wholeFiles(1.2), peer("C++, mapped", 1.0, rotateMappedPsd)}}};
}

std::vector<MapJob> bmpJobs() {
    return {{.name = "mergeMapsBMP",
             .work = Work::kMerge,
             .type = kBmp,
             .others = {wholeFiles(1.4), peer("C++, mapped", 0.75, mergeMappedBmp)}},
            {.name = "swapRGBBMP",
             .value = 2,
             .work = Work::kRewrite,
             .type = kBmp,
             .others = {wholeFiles(1.3), peer("C++, mapped", 0.95, swapMappedBmp)}},
            {.name = "CreateThumbnailBMP",
             .value = kThumbSide,
             .work = Work::kRewrite,
             .type = kBmp,
             .heldBytes = 3,
             .others = {thumbnail(1.1), peer("C++, mapped", 0.9, shrinkMappedBmp)}},
            {.name = "saveAsJpeg 50",
             .value = 50,
             .work = Work::kMake,
             .type = kBmp,
             .madeBytes = 1,
             .heldBytes = 3,
             .others = {peer("libjpeg-turbo, fast DCT", 0.8, jpegByFastDct, /*sameResult=*/false),
                        peer("float DCT", 0.7, jpegByFloatDct, /*sameResult=*/false)}}};
}

std::vector<MapJob> exrJobs() {
    // tinyexr holds the file and all its channels, so no memory is too much.
    constexpr double kAnyNumber = std::numeric_limits<double>::infinity();
    return {{.name = "OpenEXR half ZIP",
             .work = Work::kRead,
             .type = kExrHalf,
             .heldBytes = kAnyNumber,
             .others = {peer("OpenEXR", 0.8, rangeByOpenExr)}},
            {.name = "OpenEXR float ZIP",
             .work = Work::kRead,
             .type = kExrFloat,
             .heldBytes = kAnyNumber,
             .others = {peer("OpenEXR", 0.8, rangeByOpenExr)}}};
}

Maps writeMaps(const MapJob& job, const Setup& setup) {
    const auto path = [&](const char* name) { return setup.folder + name + job.type.extension; };
    const Maps maps{setup.side, path("/tile"), path("/map"),
                    path(job.changesMap() ? "/original" : "/map"), setup.folder + "/made"};
    job.type.write(maps.original, setup.side, Tile::kFirst);
    if (job.work == Work::kMerge) job.type.write(maps.tile, setup.side, Tile::kSecond);
    return maps;
}

CallArguments argumentsFor(const MapJob& job, const Maps& maps) {
    if (job.work == Work::kMerge) return {maps.tile, job.value, maps.map};
    if (job.work == Work::kMake) return {maps.map, job.value, maps.made};
    return {maps.map, job.value};
}

Race raceOf(const MapJob& job, const Setup& setup) {
    const Maps maps = writeMaps(job, setup);
    const auto pixels = static_cast<double>(maps.pixels());
    const std::string exportName = job.name.substr(0, job.name.find(' '));
    Race race{.amount = pixels * 1e-6,
              .bytesHeld = job.heldBytes * pixels,
              .contenders = exportContenders(setup, exportName, argumentsFor(job, maps))};
    if (job.changesMap()) {
        race.rewritten = maps.map;
        race.original = maps.original;
    }
    if (job.work == Work::kMake) race.created = {maps.made};
    if (job.work != Work::kRead) {
        const std::string& result = job.work == Work::kMake ? maps.made : maps.map;
        race.resultDigest = [digest = job.digest, result] { return digest(result); };
    }
    for (const MakeContender& make : job.others)
        race.contenders.push_back(make(job, maps));
    return race;
}

// Of all files, per pixel.
double diskBytes(const MapJob& job) {
    const int maps = job.work == Work::kMerge ? 3 : job.work == Work::kRewrite ? 2 : 1;
    return maps * job.type.bytesPerPixel + job.madeBytes;
}

}  // namespace

std::vector<Job> mapJobs() {
    std::vector<Job> jobs;
    for (const auto& family : {tiffJobs, psdJobs, bmpJobs, exrJobs}) {
        for (const MapJob& job : family())
            jobs.push_back({.name = job.name,
                            .unit = "MP",
                            .prepare = [job](const Setup& setup) { return raceOf(job, setup); },
                            .diskPerPixel = diskBytes(job),
                            .largestSide = job.largestSide});
    }
    return jobs;
}
