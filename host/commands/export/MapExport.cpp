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

// An earlier output is replaced, unless the options say otherwise.
void requireFreeOutputs(const std::vector<std::string>& paths, const ExportOptions& options) {
    for (const std::string& path : paths) {
        requireFreePath(path);
        requireReplaceable(path, options.overwrite);
        if (!options.tiles.empty() && options.overwrite != Overwrite::kForce && fs::exists(path))
            throw Failure(path +
                          " exists and may show other tiles than the filter's; --force "
                          "replaces it, another --out keeps it");
    }
}

// A call that processes a map and must succeed.
CallResult process(ExportRun& run, std::string_view name, const CallArguments& arguments) {
    if (run.page) run.page->timeCopyOf(*arguments.text, run.log.calls().size());
    return run.log.require(name, arguments);
}

void mergeTiles(ExportRun& run, const std::vector<Tile>& tiles, const std::string& map) {
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

// A map that was made, with what is known of it.
struct MadeMap {
    std::vector<std::string> paths;  // where its files will be
    std::optional<float> scale;
    std::string sizes;
    std::string tile;  // empty: it is of all tiles
};

// Makes the map of these tiles and all its files in the working folder.
MadeMap makeMap(ExportRun& run, const VemoMesh& mesh, std::vector<Tile> tiles,
                const std::string& tile) {
    const ExportFiles files(run.options, tile);
    requireFreeOutputs(files.wanted(run.options), run.options);
    const TileSheet sheet = layOutSheet(run, mesh, tiles);
    renderTiles(run, sheet, tiles);
    const std::string map = run.working.addResult(files.map);
    mergeTiles(run, tiles, map);
    if (!run.options.order.empty()) reorderChannels(run, map);
    requireWhole(map, fs::file_size(tiles.front().mapFile));
    const std::optional<float> scale = makeExtras(run, files, map);
    return {files.wanted(run.options), scale, sizeText(sheet), tile};
}

std::vector<MadeMap> makeMaps(ExportRun& run, const VemoMesh& mesh,
                              const std::vector<Tile>& tiles) {
    if (!run.options.perTile) return {makeMap(run, mesh, tiles, "")};
    std::vector<MadeMap> maps;
    for (const Tile& tile : tiles)
        maps.push_back(makeMap(run, mesh, {tile}, tile.name));
    return maps;
}

// Gives the results their names. Returns the files that remain; working files come first.
std::vector<std::string> finishFiles(ExportRun& run, const std::vector<Tile>& tiles,
                                     const std::vector<MadeMap>& maps) {
    std::vector<std::string> paths;
    run.working.publish();
    if (run.options.keepTiles) {
        run.working.files().keep();
        for (const Tile& tile : tiles)
            paths.insert(paths.end(), {tile.meshFile, tile.mapFile});
    } else {
        run.working.files().deleteAll();
    }
    run.log.finishRow();
    for (const MadeMap& map : maps)
        paths.insert(paths.end(), map.paths.begin(), map.paths.end());
    return paths;
}

void printScale(const MadeMap& map) {
    if (!map.scale) return;
    const std::string of = map.tile.empty() ? "" : " of " + map.tile;
    if (std::isinf(*map.scale))
        std::printf("displacement scale%s infinite: the map has too few levels to tell\n",
                    of.c_str());
    else
        std::printf(
            "displacement scale%s %s, by the levels of %s pixels: it is different at "
            "another --size\n",
            of.c_str(), statusText(*map.scale).c_str(), map.sizes.c_str());
}

void reportOutputs(const std::vector<MadeMap>& maps, const std::vector<std::string>& paths,
                   Report& report) {
    for (const std::string& path : paths)
        report.addFile(path);
    for (const MadeMap& map : maps) {
        if (map.scale) report.set("scale", jsonOf(*map.scale));
    }
    if (!report.hasLines()) return;
    std::puts("");
    for (const MadeMap& map : maps)
        printScale(map);
    for (const std::string& path : paths)
        printSize(path);
}

}  // namespace

void exportMap(const Library& library, const ExportOptions& options, Report& report,
               ExportPage* page) {
    noteInterrupts();
    ExportRun run(library, options, report, page);
    const std::size_t count = findTiles(run);
    const VemoMesh mesh = readVemo(options.mesh);
    if (!options.perTile) requireFreeOutputs(ExportFiles(options, "").wanted(options), options);
    run.working.create(options.out);
    if (page)
        page->beginChapter(titleOf(options), mesh, run.working.path(), run.log,
                           run.working.files());
    const std::vector<Tile> tiles = writeTileMeshes(run, count);
    const std::vector<MadeMap> maps = makeMaps(run, mesh, tiles);
    reportOutputs(maps, finishFiles(run, tiles, maps), report);
}
