#include "commands/export/TileMaps.h"

#include <algorithm>

#include "render/SheetWriter.h"
#include "render/TileRenderer.h"
#include "terminal/Failure.h"
#include "terminal/Interrupt.h"

namespace {

// The shorter side of a thumbnail is rounded down, to nothing for a long thin sheet.
void requireVisibleThumbnail(std::uint32_t thumbnail, const TileSheet& sheet) {
    const std::uint64_t shorter = std::min(sheet.width(), sheet.height());
    const std::uint32_t longer = std::max(sheet.width(), sheet.height());
    if (thumbnail <= longer && thumbnail * shorter <= longer)
        throw Failure("a sheet of " + sizeText(sheet) +
                      " pixels is too thin for that thumbnail; raise --thumbnail");
}

void renderTile(ExportRun& run, const TileSheet& sheet, const Tile& tile) {
    const VemoMesh mesh = readVemo(tile.meshFile);
    const TileMap map = renderTile(mesh, run.options.map, sheet.cellSize());
    const Cell cell = sheet.cellOf(tile.place);
    run.working.files().add(tile.mapFile);
    writeSheet(tile.mapFile, run.options.format, sheet, cell, map);
    if (run.page != nullptr)
        run.page->addTile(tile.name, mesh, tile.mapFile,
                          {cell.left, cell.top, sheet.cellSize(), sheet.cellSize()});
}

}  // namespace

TileSheet layOutSheet(ExportRun& run, const VemoMesh& mesh, std::vector<Tile>& tiles) {
    std::vector<TilePlace> places;
    for (Tile& tile : tiles) {
        run.log.progress().show("placing", places.size(), tiles.size(), tile.name);
        tile.place = placeOfTile(mesh, readVemo(tile.meshFile), tile.meshFile);
        places.push_back(tile.place);
    }
    TileSheet sheet(places, run.options.size);
    requireMergeable(run.options.format, sheet, run.options.map);
    if (run.options.thumbnail > 0) requireVisibleThumbnail(run.options.thumbnail, sheet);
    return sheet;
}

void renderTiles(ExportRun& run, const TileSheet& sheet, const std::vector<Tile>& tiles) {
    std::size_t done = 0;
    for (const Tile& tile : tiles) {
        stopIfInterrupted();
        run.log.progress().show("rendering", done++, tiles.size(), tile.name);
        renderTile(run, sheet, tile);
    }
    run.log.print("(rendered)", std::to_string(tiles.size()),
                  "maps of " + sizeText(sheet) + " pixels, as the host does");
}
