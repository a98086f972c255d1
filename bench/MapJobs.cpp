// The jobs on maps.

#include <algorithm>
#include <filesystem>
#include <limits>
#include <utility>

#include "Grid.h"
#include "Job.h"
#include "MapPeers.h"
#include "Pictures.h"

namespace {

// Targets for what only moves bytes, and for what mostly computes or is only there for comparison.
constexpr double kMoved = 1.25;
constexpr double kNoTarget = 0.0;

enum class Work {
    kMerge,    // folds the tile into the map
    kRewrite,  // changes the map in place
    kReplace,  // replaces the map by the tile, but for a few pixels
    kMake,     // makes a new file from the map
    kRead,
};

// What a merge folds into what: the maps are painted in islands, in all their pixels, or as a sheet,
// where each source is painted in the cell of its tile alone.
enum class Sources { kHalf, kAll, kSheet };

struct MapJob;
using MakeContender = std::function<Contender(const MapJob&, const Maps&)>;

struct MapJob {
    std::string name;        // the export's, and what distinguishes its jobs
    double value = 0;        // what the export is called with, apart from paths
    double valueOfSide = 0;  // added to that for each pixel of a side
    Work work;
    MapType type;
    double madeBytes = 0;  // of the new file, per pixel, at most
    double heldBytes = 0;  // of the map that the export may hold in memory, per pixel
    std::vector<MakeContender> others;
    Sources sources = Sources::kHalf;
    std::uint64_t (*digest)(const std::string& path) = digestOf;
    std::uint32_t largestSide = kLargestSide;
    const char* made = "/made.tif";  // the new file

    bool hasTile() const { return work == Work::kMerge || work == Work::kReplace; }
    bool changesMap() const { return hasTile() || work == Work::kRewrite; }
};

using PeerWork = float (*)(const Maps&);

MakeContender peer(const char* name, double target, PeerWork work, bool sameResult = true) {
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
    switch (job.work) {
        case Work::kMerge:
            return {{Access::kRead, maps.tile, bytes}, rewriteMap};
        case Work::kReplace:
            return {{Access::kRead, maps.tile, bytes}, {Access::kOverwrite, maps.map, bytes}};
        case Work::kRewrite:
            return {rewriteMap};
        case Work::kMake:
            return {readMap, {Access::kCreate, maps.made, std::filesystem::file_size(maps.made)}};
        case Work::kRead:
            return {readMap};
    }
    return {};
}

MakeContender wholeFiles(double target) {
    return [=](const MapJob& job, const Maps& maps) { return limit(trafficOf(job, maps), target); };
}

MakeContender sourcesAlone(double target) {
    return [=](const MapJob& job, const Maps& maps) {
        return sources({trafficOf(job, maps).front()}, target);
    };
}

MakeContender thumbnail(const Layout& layout, double target) {
    return [=](auto&, auto& maps) { return thumbnailLimit(maps, layout, target); };
}

// The side of the largest float map that can be merged: its strip is shorter than 2 GiB.
constexpr std::uint32_t kLargestStrip = 13312;

// The merges of one type of map.
struct Merge {
    const char* name;
    MapType type;
    double limitTarget;
    const char* peerName;
    double peerTarget;
    PeerWork peerWork;
    std::uint32_t largestSide = kLargestSide;

    MapJob job(const char* suffix, Sources sources, std::vector<MakeContender> others) const {
        return {.name = std::string(name) + suffix,
                .work = Work::kMerge,
                .type = type,
                .others = std::move(others),
                .sources = sources,
                .largestSide = largestSide};
    }
};

std::vector<MapJob> mergeJobs() {
    const Merge merges[] = {
        {"mergeMapsTIF 8-bit RGB", kTiff8, 1.1, "libtiff", kNoTarget, mergeByLibtiff},
        {"mergeMapsTIF float RGB", kTiffFloat, 1.1, "libtiff", kNoTarget, mergeByLibtiff,
         kLargestStrip},
        {"mergeMapsPSD", kPsd, 1.4, "C++, mapped", 0.75, mergeMappedPsd},
        {"mergeMapsBMP", kBmp, 1.4, "C++, mapped", 0.75, mergeMappedBmp}};
    std::vector<MapJob> jobs;
    for (const Merge& merge : merges) {
        const std::vector<MakeContender> others = {
            wholeFiles(merge.limitTarget), peer(merge.peerName, merge.peerTarget, merge.peerWork)};
        jobs.push_back(merge.job("", Sources::kHalf, others));
        jobs.push_back(merge.job(", all painted", Sources::kAll, others));
        jobs.push_back(merge.job(
            ", sheet", Sources::kSheet,
            {sourcesAlone(1.6), wholeFiles(kNoTarget), peer(merge.peerName, 0.4, merge.peerWork)}));
    }
    return jobs;
}

MapJob greyConversion(const char* name, double mode, const MapType& type, const char* made) {
    return {.name = name,
            .value = mode,
            .work = Work::kMake,
            .type = type,
            .madeBytes = 2,
            .others = {wholeFiles(kMoved)},
            .made = made};
}

std::vector<MapJob> tiffJobs() {
    return {{.name = "swapRGBTIF",
             .value = 2,
             .work = Work::kRewrite,
             .type = kTiff8,
             .others = {wholeFiles(1.7), peer("libtiff", 0.6, swapByLibtiff)}},
            {.name = "convertTIFF16 mode 3",
             .value = 3,
             .work = Work::kMake,
             .type = kTiffFloat,
             .madeBytes = 6,
             .others = {wholeFiles(1.1), peer("libtiff", kNoTarget, convertByLibtiff)},
             .digest = digestOfPixels},
            greyConversion("convertTIFF16 mode 1", 1, kTiffFloatGrey, "/made.tif"),
            greyConversion("convertTIFF16 mode 1, PSD", 1, kTiffFloatGrey, "/made.psd"),
            greyConversion("convertTIFF16 mode 4", 4, kTiffFloat, "/made.tif"),
            greyConversion("convertTIFF16 mode 4, PSD", 4, kTiffFloat, "/made.psd"),
            {.name = "convertTIFFSingle",
             .work = Work::kMake,
             .type = kTiffFloat,
             .madeBytes = 4,
             .others = {wholeFiles(1.1), numpy("whole", kNoTarget), numpy("pieces", kNoTarget)},
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

MapJob seamRepair(const char* name, double horizontal) {
    return {.name = name,
            .value = horizontal,
            .work = Work::kReplace,
            .type = kPsd,
            .heldBytes = 3,
            .others = {wholeFiles(kMoved)}};
}

std::vector<MapJob> psdJobs() {
    return {{.name = "mergeMapsPSD 16-bit grey",
             .work = Work::kMerge,
             .type = kPsdGrey16,
             .others = {wholeFiles(kMoved)}},
            {.name = "swapRGBPSD",
             .value = 2,
             .work = Work::kRewrite,
             .type = kPsd,
             .heldBytes = 3,
             .others = {wholeFiles(1.1), peer("C++, mapped", kNoTarget, rotateMappedPsd)}},
            seamRepair("mergeSeamlessPSD, rows", 0),
            seamRepair("mergeSeamlessPSD, columns", 1),
            {.name = "GrayscalePSD",
             .value = 10,  // the black point
             .work = Work::kMake,
             .type = kPsd,
             .madeBytes = 1,
             .others = {wholeFiles(kMoved)}},
            {.name = "convertPSD",
             .value = 0x8080FF,  // the background
             .work = Work::kRewrite,
             .type = kPsd,
             .others = {wholeFiles(kMoved)}},
            {.name = "createThumb",
             .value = kThumbSide,
             .work = Work::kRewrite,
             .type = kPsd,
             .others = {thumbnail(kPsdLayout, kMoved)}}};
}

std::vector<MapJob> bmpJobs() {
    return {{.name = "swapRGBBMP",
             .value = 2,
             .work = Work::kRewrite,
             .type = kBmp,
             .others = {wholeFiles(1.3), peer("C++, mapped", 0.95, swapMappedBmp)}},
            {.name = "CreateThumbnailBMP",
             .value = kThumbSide,
             .work = Work::kRewrite,
             .type = kBmp,
             .heldBytes = 3,
             .others = {thumbnail(kBmpLayout, 1.1), peer("C++, mapped", 0.9, shrinkMappedBmp)}},
            {.name = "cropBMP",
             .valueOfSide = 0.5,
             .work = Work::kMake,
             .type = kBmp,
             .madeBytes = 1.5,
             .heldBytes = 3,
             .others = {wholeFiles(kMoved)}},
            {.name = "FileCopyTo",
             .work = Work::kMake,
             .type = kBmp,
             .madeBytes = 3,
             .others = {wholeFiles(kMoved)}},
            {.name = "saveAsJpeg 50",
             .value = 50,
             .work = Work::kMake,
             .type = kBmp,
             .madeBytes = 1,
             .heldBytes = 3,
             .others = {wholeFiles(kNoTarget),
                        peer("libjpeg-turbo, fast DCT", 0.8, jpegByFastDct, /*sameResult=*/false),
                        peer("float DCT", 0.7, jpegByFloatDct, /*sameResult=*/false)}}};
}

std::vector<MapJob> exrJobs() {
    // tinyexr holds the file and all its channels, so no memory is too much.
    constexpr double kAnyNumber = std::numeric_limits<double>::infinity();
    return {{.name = "OpenEXR half ZIP",
             .work = Work::kRead,
             .type = kExrHalf,
             .heldBytes = kAnyNumber,
             .others = {wholeFiles(kNoTarget), peer("OpenEXR", 0.8, rangeByOpenExr)}},
            {.name = "OpenEXR float ZIP",
             .work = Work::kRead,
             .type = kExrFloat,
             .heldBytes = kAnyNumber,
             .others = {wholeFiles(kNoTarget), peer("OpenEXR", 0.8, rangeByOpenExr)}}};
}

// The cell that tile number `tile` of a sheet has in each of its maps.
Area cellOf(std::uint32_t tile, const Setup& setup) {
    const Grid grid = gridOf(setup.tiles);
    const std::uint32_t column = tile % grid.columns;
    const std::uint32_t row = tile / grid.columns;
    return {setup.side * column / grid.columns, setup.side * row / grid.rows,
            setup.side * (column + 1) / grid.columns, setup.side * (row + 1) / grid.rows};
}

Painting paintingOfTarget(const MapJob& job, const Setup& setup) {
    if (job.sources != Sources::kSheet) return {Painting::Shape::kIslands};
    if (setup.tiles == 1) return {Painting::Shape::kNothing};
    return {Painting::Shape::kArea, cellOf(0, setup)};
}

Painting paintingOfSource(const MapJob& job, const Setup& setup) {
    if (job.sources == Sources::kHalf) return {Painting::Shape::kIslandsBetween};
    return {Painting::Shape::kArea, {0, 0, setup.side, setup.side}};
}

Maps writeMaps(const MapJob& job, const Setup& setup) {
    const auto path = [&](const char* name) { return setup.folder + name + job.type.extension; };
    const Maps maps{setup.side, path("/tile"), path("/map"),
                    path(job.changesMap() ? "/original" : "/map"), setup.folder + job.made};
    job.type.write(maps.original, setup.side, paintingOfTarget(job, setup));
    if (job.hasTile() && job.sources != Sources::kSheet)
        job.type.write(maps.tile, setup.side, paintingOfSource(job, setup));
    return maps;
}

// The sources of a sheet are files of their own as far as they fit into this much, which is far more
// than a processor's cache.
constexpr double kSourcesBytes = 1 << 30;

double bytesOf(const MapJob& job, const Setup& setup) {
    return job.type.bytesPerPixel * setup.side * setup.side;
}

// The merges of a sheet: one for each tile but the first, whose map is the target. A single tile is
// folded into a map of nothing.
std::uint32_t mergesOf(const Setup& setup) {
    return std::max(setup.tiles - 1, 1u);
}

std::uint32_t sourcesOf(const MapJob& job, const Setup& setup) {
    const double fitting = kSourcesBytes / bytesOf(job, setup);
    return static_cast<std::uint32_t>(std::clamp<double>(fitting, 1.0, mergesOf(setup)));
}

void putInPlace(const std::string& file, const std::string& path) {
    std::filesystem::remove(path);
    std::filesystem::create_hard_link(file, path);
}

// Before each merge the next source gets the path of the source. Where there are fewer sources than
// merges, the cell of the tile that it had before is cleared and that of the new one painted.
void addSheet(Race& race, const MapJob& job, const Maps& maps, const Setup& setup) {
    const std::uint32_t steps = mergesOf(setup);
    const std::uint32_t firstTile = setup.tiles - steps;
    std::vector<std::uint32_t> painted(sourcesOf(job, setup));  // the tile of each source
    const auto fileOf = [=](std::size_t source) { return maps.tile + std::to_string(source); };
    for (std::uint32_t source = 0; source < painted.size(); ++source) {
        painted[source] = firstTile + source;
        const Area cell = cellOf(painted[source], setup);
        job.type.write(fileOf(source), maps.side, {Painting::Shape::kArea, cell});
    }
    race.steps = steps;
    race.makeReady = [=](std::uint32_t step) mutable {
        const std::size_t source = step % painted.size();
        const std::uint32_t tile = firstTile + step;
        putInPlace(fileOf(source), maps.tile);
        if (painted[source] == tile) return;
        const Area before = cellOf(std::exchange(painted[source], tile), setup);
        const Area now = cellOf(tile, setup);
        job.type.repaint(maps.tile, maps.side, before, {Painting::Shape::kNothing});
        job.type.repaint(maps.tile, maps.side, now, {Painting::Shape::kArea, now});
    };
    race.makeReady(0);
    race.amount *= steps;
}

CallArguments argumentsFor(const MapJob& job, const Maps& maps) {
    const double value = job.value + job.valueOfSide * maps.side;
    if (job.hasTile()) return {maps.tile, value, maps.map};
    if (job.work == Work::kMake) return {maps.map, value, maps.made};
    return {maps.map, value};
}

Race raceOf(const MapJob& job, const Setup& setup) {
    const Maps maps = writeMaps(job, setup);
    const auto pixels = static_cast<double>(maps.pixels());
    const std::string name = job.name.substr(0, job.name.find_first_of(" ,"));
    Race race{.amount = pixels * 1e-6,
              .bytesHeld = job.heldBytes * pixels,
              .contenders = quillonContenders(setup, name, argumentsFor(job, maps))};
    if (job.sources == Sources::kSheet) addSheet(race, job, maps, setup);
    if (job.changesMap()) {
        race.rewritten = maps.map;
        race.original = maps.original;
    }
    if (job.work == Work::kMake) race.created = {maps.made};
    if (job.work != Work::kRead) {
        const std::string& result = job.work == Work::kMake ? maps.made : maps.map;
        race.resultDigest = [digest = job.digest, result] { return digest(result); };
    }
    if (job.work == Work::kMake) race.contenders.front().work();  // shows how long the new file is
    for (const MakeContender& make : job.others) {
        race.contenders.push_back(make(job, maps));
        race.contenders.back().bytes *= race.steps;
    }
    return race;
}

double diskBytesOf(const MapJob& job, const Setup& setup) {
    const double maps = 1.0 + (job.changesMap() ? 1 : 0) + (job.hasTile() ? 1 : 0);
    const double sources = job.sources == Sources::kSheet ? sourcesOf(job, setup) - 1.0 : 0.0;
    const double made = job.madeBytes * setup.side * setup.side;
    return (maps + sources) * bytesOf(job, setup) + made;
}

}  // namespace

std::vector<Job> mapJobs() {
    std::vector<Job> jobs;
    for (const auto& family : {mergeJobs, tiffJobs, psdJobs, bmpJobs, exrJobs}) {
        for (const MapJob& job : family())
            jobs.push_back(
                {.name = job.name,
                 .unit = "MP",
                 .prepare = [job](const Setup& setup) { return raceOf(job, setup); },
                 .diskBytes = [job](const Setup& setup) { return diskBytesOf(job, setup); },
                 .largestSide = job.largestSide});
    }
    return jobs;
}
