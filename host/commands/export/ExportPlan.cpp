#include "commands/export/ExportPlan.h"

#include <algorithm>
#include <filesystem>
#include <utility>

#include "render/SheetWriter.h"
#include "terminal/Failure.h"

namespace {

void requireOneTilePerName(const std::vector<UvTile>& tiles, const ExportOptions& options) {
    const std::vector<SharedName> shared = collisions(tiles, options.naming);
    if (shared.empty()) return;
    throw Failure(options.mesh + " has " + std::to_string(shared.front().tiles.size()) +
                  " tiles named " + shared.front().name +
                  ", of which the library would export the first; choose --naming 0, 1 or 3");
}

// An earlier output is replaced, unless the options say otherwise.
void requireFreeOutputs(const ExportFiles& files, const ExportOptions& options) {
    for (const std::string& path : files.wanted(options)) {
        requireFreePath(path);
        requireReplaceable(path, options.overwrite);
        if (!options.tiles.empty() && !options.perTile && options.overwrite != Overwrite::kForce &&
            std::filesystem::exists(path))
            throw Failure(path +
                          " exists and may show other tiles than the filter's; --force "
                          "replaces it, another --out keeps it");
    }
}

// The shorter side of a thumbnail is rounded down, to nothing for a long thin sheet.
void requireVisibleThumbnail(std::uint32_t thumbnail, const TileSheet& sheet) {
    const std::uint64_t shorter = std::min(sheet.width(), sheet.height());
    const std::uint32_t longer = std::max(sheet.width(), sheet.height());
    if (thumbnail <= longer && thumbnail * shorter <= longer)
        throw Failure("a sheet of " + sizeText(sheet) +
                      " pixels is too thin for that thumbnail; raise --thumbnail to " +
                      std::to_string(longer / shorter + 1));
}

void requireMergeable(const TileSheet& sheet, const std::vector<TilePlace>& places,
                      const ExportOptions& options) {
    const auto isEnough = [&](const TileSheet& other) {
        return isMergeable(options.format, other, options.map);
    };
    if (isEnough(sheet)) return;
    std::uint32_t size = options.size;
    while (!isEnough(TileSheet(places, size)))
        ++size;
    throw Failure("a sheet of " + sizeText(sheet) +
                  " pixels is too small to merge; raise --size to " + std::to_string(size));
}

PlannedMap planMap(const std::vector<TilePlace>& places, const std::string& tile,
                   const ExportOptions& options) {
    PlannedMap map{tile, TileSheet(places, options.size), ExportFiles(options, tile)};
    requireMergeable(map.sheet, places, options);
    if (options.thumbnail > 0) requireVisibleThumbnail(options.thumbnail, map.sheet);
    requireFreeOutputs(map.files, options);
    return map;
}

std::vector<PlannedMap> planMaps(const std::vector<UvTile>& tiles, const ExportOptions& options) {
    std::vector<PlannedMap> maps;
    std::vector<TilePlace> places;
    for (const UvTile& tile : tiles) {
        places.push_back(placeOf(tile));
        if (options.perTile)
            maps.push_back(planMap({places.back()}, nameOf(tile, options.naming), options));
    }
    if (!options.perTile && !places.empty()) maps.push_back(planMap(places, "", options));
    return maps;
}

}  // namespace

TilePlace placeOf(const UvTile& tile) {
    return {tile.column, tile.row};
}

ExportPlan planExport(const VemoMesh& mesh, const std::optional<TileFilterFile>& filter,
                      const ExportOptions& options) {
    std::vector<UvTile> tiles = tilesOf(mesh, options.naming);
    std::erase_if(tiles, [&](const UvTile& tile) {
        return filter && !filter->lists(nameOf(tile, options.naming));
    });
    requireOneTilePerName(tiles, options);
    CrossingFaces crossing = crossingFaces(tiles);
    std::vector<PlannedMap> maps = planMaps(tiles, options);
    return {std::move(tiles), std::move(crossing), std::move(maps)};
}
