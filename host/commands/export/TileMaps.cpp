#include "commands/export/TileMaps.h"

#include "render/SheetWriter.h"
#include "render/TileRenderer.h"
#include "terminal/Failure.h"
#include "terminal/Interrupt.h"

namespace {

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

void renderTiles(ExportRun& run, const TileSheet& sheet, std::span<const Tile> tiles) {
    Progress& progress = run.log.progress();
    for (const Tile& tile : tiles) {
        stopIfInterrupted();
        progress.show("rendering", run.rendered++, run.tiles, tile.name);
        renderTile(run, sheet, tile);
    }
    if (run.rendered == run.tiles) progress.finish("rendering", run.tiles);
    run.log.print("(rendered)", std::to_string(tiles.size()),
                  "maps of " + sizeText(sheet) + " pixels, as the host does");
}
