#include "commands/export/MapExport.h"

#include <cmath>
#include <cstdio>
#include <filesystem>
#include <optional>

#include "commands/export/TileMaps.h"
#include "exports/Meanings.h"
#include "files/DiskFile.h"
#include "terminal/Failure.h"
#include "terminal/Interrupt.h"

namespace fs = std::filesystem;

namespace {

std::string titleOf(const ExportOptions& options) {
    const std::string kind = options.map == MapKind::kNormal ? "Normals" : "Heights";
    return kind + " as " + infoOf(options.format).title;
}

// An earlier output is replaced.
void requireFreeOutputs(const ExportRun& run) {
    for (const std::string& path : run.files.wanted(run.options))
        requireFreePath(path);
}

// A call that processes a map and must succeed.
CallResult process(ExportRun& run, std::string_view name, const CallArguments& arguments) {
    if (run.page) run.page->timeCopyOf(*arguments.text, run.log.calls().size());
    return run.log.require(name, arguments);
}

void mergeTiles(ExportRun& run, const std::vector<Tile>& tiles) {
    const std::string& map = run.files.map;
    run.unfinished.add(map);
    process(run, "FileCopyTo", {.text = tiles.front().mapFile, .buffer = map});
    if (run.page) run.page->addBetween(map, tiles.front().name);
    for (std::size_t i = 1; i < tiles.size(); ++i) {
        stopIfInterrupted();
        run.log.progress().show("merging", i, tiles.size(), tiles[i].name);
        process(run, infoOf(run.options.format).merge, {.text = tiles[i].mapFile, .buffer = map});
        if (run.page) run.page->addBetween(map, "+ " + tiles[i].name);
    }
    if (run.page) run.page->addStep(map);
}

void reorderChannels(ExportRun& run) {
    const std::string& map = run.files.map;
    for (const int mode : swapsFor(run.options.format, run.options.order))
        process(run, infoOf(run.options.format).swap,
                {.text = map, .value = static_cast<double>(mode)});
    if (run.page) run.page->addStep(map);
}

// The library does not report every full disk. The map is as long as each tile's.
void requireWholeMap(const std::string& map, const Tile& tile) {
    if (fs::file_size(map) != fs::file_size(tile.mapFile))
        throw Failure("cannot write " + map + ": the disk took only a part of it");
}

float measureScale(ExportRun& run) {
    const float scale = process(run, "getScale", {.text = run.files.map, .value = 1.0}).status;
    if (run.page) run.page->addStep();
    return scale;
}

void convertTo16Bits(ExportRun& run) {
    const std::string& target = run.files.sixteenBitMap;
    run.unfinished.add(target);
    constexpr double kGreyToGrey = 1.0;
    process(run, "convertTIFF16", {.text = run.files.map, .value = kGreyToGrey, .buffer = target});
    if (run.page) run.page->addStep(target);
}

void saveTarga(ExportRun& run) {
    run.unfinished.add(run.files.targa);
    process(run, "saveAsTarga", {.text = run.files.map, .buffer = run.files.targa});
    if (run.page) run.page->addStep();
}

void makeThumbnail(ExportRun& run) {
    const std::string& thumbnail = run.files.thumbnail;
    run.unfinished.add(thumbnail);
    process(run, "FileCopyTo", {.text = run.files.map, .buffer = thumbnail});
    const auto size = static_cast<double>(run.options.thumbnail);
    process(run, "CreateThumbnailBMP", {.text = thumbnail, .value = size});
    if (run.page) run.page->addStep(thumbnail);
}

void saveJpeg(ExportRun& run) {
    const std::string& jpeg = run.files.jpeg;
    run.unfinished.add(jpeg);
    process(run, "saveAsJpeg", {.text = run.files.map, .value = *run.options.jpeg, .buffer = jpeg});
    if (run.page) run.page->addJpegStep(jpeg);
}

void finishPage(ExportRun& run) {
    run.page->endChapter();
    if (!run.options.page) return;
    run.unfinished.add(run.files.page);
    run.page->write(run.files.page);
}

// Returns the displacement scale, where the map has one.
std::optional<float> makeExtras(ExportRun& run) {
    const ExportOptions& options = run.options;
    std::optional<float> scale;
    stopIfInterrupted();
    if (options.map == MapKind::kHeight && options.format == MapFormat::kTiff)
        scale = measureScale(run);
    if (options.sixteenBits) convertTo16Bits(run);
    if (options.targa) saveTarga(run);
    if (options.thumbnail > 0) makeThumbnail(run);
    if (options.jpeg) saveJpeg(run);
    if (run.page) finishPage(run);
    stopIfInterrupted();
    return scale;
}

// The files that remain; working files come first.
std::vector<std::string> finishFiles(ExportRun& run, const std::vector<Tile>& tiles) {
    std::vector<std::string> paths;
    run.unfinished.keep();
    if (run.options.keepTiles) {
        run.working.keep();
        for (const Tile& tile : tiles)
            paths.insert(paths.end(), {tile.meshFile, tile.mapFile});
    } else {
        run.working.deleteAll();
    }
    run.log.finishRow();
    const std::vector<std::string> made = run.files.wanted(run.options);
    paths.insert(paths.end(), made.begin(), made.end());
    return paths;
}

void reportOutputs(const std::vector<std::string>& paths, std::optional<float> scale,
                   Report& report) {
    if (scale) report.set("scale", jsonOf(*scale));
    for (const std::string& path : paths)
        report.addFile(path);
    if (!report.hasLines()) return;
    std::puts("");
    if (scale) {
        std::printf("displacement scale %s\n", std::isinf(*scale)
                                                   ? "infinite: the map has too few levels to tell"
                                                   : statusText(*scale).c_str());
    }
    for (const std::string& path : paths)
        printSize(path);
}

}  // namespace

void exportMap(const Library& library, const ExportOptions& options, Report& report,
               ExportPage* page) {
    noteInterrupts();
    ExportRun run(library, options, report, page);
    requireFreeOutputs(run);
    const std::size_t count = findTiles(run);
    const VemoMesh mesh = readVemo(options.mesh);
    makeOutFolder(run);
    makeWorkingFolder(run);
    if (page) page->beginChapter(titleOf(options), mesh, run.workingFolder, run.log, run.working);
    std::vector<Tile> tiles = writeTileMeshes(run, count);
    renderTiles(run, layOutSheet(run, mesh, tiles), tiles);
    mergeTiles(run, tiles);
    if (!options.order.empty()) reorderChannels(run);
    requireWholeMap(run.files.map, tiles.front());
    const std::optional<float> scale = makeExtras(run);
    reportOutputs(finishFiles(run, tiles), scale, report);
}
