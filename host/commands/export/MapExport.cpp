#include "commands/export/MapExport.h"

#include <filesystem>
#include <optional>
#include <span>

#include "commands/export/ExportReport.h"
#include "commands/export/TileMaps.h"
#include "terminal/Failure.h"
#include "terminal/Interrupt.h"

namespace fs = std::filesystem;

namespace {

std::string titleOf(const ExportOptions& options) {
    const std::string kind = options.map == MapKind::kNormal ? "Normals" : "Heights";
    return kind + " as " + infoOf(options.format).title;
}

// A call that processes a map and must succeed.
CallResult process(ExportRun& run, std::string_view name, const CallArguments& arguments) {
    if (run.page) run.page->timeCopyOf(*arguments.text, run.log.calls().size());
    return run.log.require(name, arguments);
}

void mergeTiles(ExportRun& run, std::span<const Tile> tiles, const std::string& map) {
    process(run, "FileCopyTo", {.text = tiles.front().mapFile, .buffer = map});
    if (run.page) run.page->addBetween(map, tiles.front().name);
    for (std::size_t i = 1; i < tiles.size(); ++i) {
        stopIfInterrupted();
        run.log.progress().show("merging", i, tiles.size(), tiles[i].name);
        process(run, infoOf(run.options.format).merge, {.text = tiles[i].mapFile, .buffer = map});
        if (run.page) run.page->addBetween(map, "+ " + tiles[i].name);
    }
    if (tiles.size() > 1) run.log.progress().finish("merging", tiles.size());
    if (run.page) run.page->addStep(map);
}

void reorderChannels(ExportRun& run, const std::string& map) {
    for (const int mode : swapsFor(run.options.format, run.options.order))
        process(run, infoOf(run.options.format).swap,
                {.text = map, .value = static_cast<double>(mode)});
    if (run.page) run.page->addStep(map);
}

// The library does not report every full disk. A map is as long as each tile's.
void requireWhole(const std::string& map, std::uintmax_t bytes) {
    if (fs::file_size(map) != bytes)
        throw Failure("cannot write " + map + ": the disk took only a part of it");
}

float measureScale(ExportRun& run, const std::string& map) {
    const float scale = process(run, "getScale", {.text = map, .value = 1.0}).status;
    if (run.page) run.page->addStep();
    return scale;
}

void convertTo16Bits(ExportRun& run, const std::string& map, const std::string& target) {
    constexpr double kGreyToGrey = 1.0;
    process(run, "convertTIFF16", {.text = map, .value = kGreyToGrey, .buffer = target});
    if (run.page) run.page->addStep(target);
}

void saveTarga(ExportRun& run, const std::string& map, const std::string& targa) {
    process(run, "saveAsTarga", {.text = map, .buffer = targa});
    if (run.page) run.page->addStep();
}

void makeThumbnail(ExportRun& run, const std::string& map, const std::string& thumbnail) {
    process(run, "FileCopyTo", {.text = map, .buffer = thumbnail});
    requireWhole(thumbnail, fs::file_size(map));
    const auto size = static_cast<double>(run.options.thumbnail);
    process(run, "CreateThumbnailBMP", {.text = thumbnail, .value = size});
    if (run.page) run.page->addStep(thumbnail);
}

void saveJpeg(ExportRun& run, const std::string& map, const std::string& jpeg) {
    process(run, "saveAsJpeg", {.text = map, .value = *run.options.jpeg, .buffer = jpeg});
    if (run.page) run.page->addJpegStep(jpeg);
}

void finishPage(ExportRun& run, const std::string& page) {
    run.page->endChapter();
    if (run.options.page) run.page->write(run.working.addResult(page));
}

// Makes what the options ask for beside the map. Returns the displacement scale, where it has one.
std::optional<float> makeExtras(ExportRun& run, const ExportFiles& files, const std::string& map) {
    const ExportOptions& options = run.options;
    WorkingFolder& working = run.working;
    std::optional<float> scale;
    stopIfInterrupted();
    if (options.map == MapKind::kHeight && options.format == MapFormat::kTiff)
        scale = measureScale(run, map);
    if (options.sixteenBits) convertTo16Bits(run, map, working.addResult(files.sixteenBitMap));
    if (options.targa) saveTarga(run, map, working.addResult(files.targa));
    if (options.thumbnail > 0) makeThumbnail(run, map, working.addResult(files.thumbnail));
    if (options.jpeg) saveJpeg(run, map, working.addResult(files.jpeg));
    if (run.page) finishPage(run, files.page);
    stopIfInterrupted();
    return scale;
}

// Makes a map of these tiles and all its files in the working folder.
MadeMap makeMap(ExportRun& run, const PlannedMap& planned, std::span<const Tile> tiles) {
    renderTiles(run, planned.sheet, tiles);
    const std::string map = run.working.addResult(planned.files.map);
    mergeTiles(run, tiles, map);
    if (!run.options.order.empty()) reorderChannels(run, map);
    requireWhole(map, fs::file_size(tiles.front().mapFile));
    MadeMap made{planned, makeExtras(run, planned.files, map), {}};
    if (run.options.map == MapKind::kHeight) made.heights = statisticsOf(map, factsOf(map));
    return made;
}

std::vector<MadeMap> makeMaps(ExportRun& run, const ExportPlan& plan,
                              const std::vector<Tile>& tiles) {
    run.tiles = tiles.size();
    if (!run.options.perTile) return {makeMap(run, plan.maps.front(), tiles)};
    std::vector<MadeMap> maps;
    maps.reserve(tiles.size());
    for (std::size_t i = 0; i < tiles.size(); ++i)
        maps.push_back(makeMap(run, plan.maps[i], {&tiles[i], 1}));
    return maps;
}

// Gives the results their names. Returns the working files that remain.
std::vector<std::string> finishFiles(ExportRun& run, const std::vector<Tile>& tiles) {
    std::vector<std::string> kept;
    run.working.publish();
    if (run.options.keepTiles) {
        run.working.files().keep();
        for (const Tile& tile : tiles)
            kept.insert(kept.end(), {tile.meshFile, tile.mapFile});
    } else {
        run.working.files().deleteAll();
    }
    run.log.finishRow();
    return kept;
}

void writeMaps(ExportRun& run, const VemoMesh& mesh, const ExportPlan& plan, Report& report) {
    run.working.create(run.options.out);
    if (run.page)
        run.page->beginChapter(titleOf(run.options), mesh, run.working.path(), run.log,
                               run.working.files());
    const std::vector<Tile> tiles = writeTileMeshes(run, plan);
    const std::vector<MadeMap> maps = makeMaps(run, plan, tiles);
    reportMaps(run.options, maps, finishFiles(run, tiles), report);
}

}  // namespace

void exportMap(const Library& library, const ExportOptions& options, Report& report,
               ExportPage* page) {
    noteInterrupts();
    ExportRun run(library, options, report, page);
    std::optional<TileFilterFile> filter;
    if (!options.tiles.empty()) filter.emplace(options.tiles);
    findTiles(run);
    const VemoMesh mesh = readVemo(options.mesh);
    const ExportPlan plan = planExport(mesh, filter, options);
    if (options.dryRun) {
        run.log.finishRow();
        reportPlan(options, plan, report);
    } else {
        writeMaps(run, mesh, plan, report);
    }
    if (plan.crossing.count > 0) run.log.warn(unpaintedSentence(options, plan));
}
