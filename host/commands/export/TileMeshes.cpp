#include "commands/export/TileMeshes.h"

#include <algorithm>

#include "terminal/Failure.h"

namespace {

void requireShowable(const ExportRun& run, std::size_t count) {
    if (run.page != nullptr && count > kMaxTilesOnPage)
        throw Failure(run.options.mesh + " has " + std::to_string(count) +
                      " tiles to export, and a page shows up to " +
                      std::to_string(kMaxTilesOnPage) + "; choose some with --tiles");
}

// The library knows the names of all files that it started, also if it could not write them all.
std::vector<Tile> nameTiles(ExportRun& run, const ExportPlan& plan) {
    std::vector<Tile> tiles;
    const std::string extension(infoOf(run.options.format).extension);
    for (std::size_t position = 0; position < plan.tiles.size(); ++position) {
        const auto value = static_cast<double>(position);
        const CallResult named = run.log.require("getUVString", {.value = value});
        if (!named.text) return tiles;
        const std::string base = run.working.at(stemOf(run.options) + *named.text);
        const TilePlace place = placeOf(plan.tiles[position]);
        tiles.push_back({*named.text, base + ".Vemo", base + extension, place});
        run.working.files().add(tiles.back().meshFile);
    }
    return tiles;
}

void requireSameTiles(const ExportRun& run, const ExportPlan& plan,
                      const std::vector<Tile>& tiles) {
    const auto isNamed = [&](const Tile& tile, const UvTile& planned) {
        return tile.name == nameOf(planned, run.options.naming);
    };
    if (!std::ranges::equal(tiles, plan.tiles, isNamed))
        throw Failure(run.options.mesh +
                      " has other tiles than at first; was the file changed "
                      "during the export?");
}

}  // namespace

void findTiles(ExportRun& run) {
    const ExportOptions& options = run.options;
    run.log.require("clearUVtilesOutput");
    if (!options.tiles.empty()) run.log.require("setUVtilesOutput", {.text = options.tiles});
    const auto naming = static_cast<double>(options.naming);
    const CallResult found = run.log.require("getUVTile", {.text = options.mesh, .value = naming});
    const auto count = static_cast<std::size_t>(found.status);
    requireShowable(run, count);
    if (count > 0) return;
    const bool filteredOut = !options.tiles.empty() && found.text && !found.text->empty();
    throw Failure(filteredOut ? "no tile of " + options.mesh + " is in the filter " + options.tiles
                              : options.mesh + " has no faces, so there is no tile to export");
}

std::vector<Tile> writeTileMeshes(ExportRun& run, const ExportPlan& plan) {
    const std::string out = run.working.at(stemOf(run.options) + ".Vemo");
    const auto naming = static_cast<double>(run.options.naming);
    const std::size_t position = run.log.calls().size();
    run.log.call("getUVs", {.text = run.options.mesh, .value = naming, .buffer = out});
    const CallRecord written = run.log.calls().back();
    // A count of 1501 and more is also the status of a file that was not written.
    const bool allWritten = written.result.status == static_cast<float>(plan.tiles.size());
    std::vector<Tile> tiles = nameTiles(run, plan);
    run.log.require("clearUVString");
    if (!allWritten) throw Failure(failureSentence(written));
    requireSameTiles(run, plan, tiles);
    for (const Tile& tile : tiles) {
        if (run.page != nullptr) run.page->timeCopyOf(tile.meshFile, position);
    }
    return tiles;
}
