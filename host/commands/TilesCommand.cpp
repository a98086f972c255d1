// quillon tiles: the UV tiles of a mesh, and what no map of them shows.

#include <algorithm>
#include <cstdio>

#include "commands/Commands.h"
#include "commands/TileReport.h"
#include "exports/Meanings.h"
#include "mesh/TileList.h"
#include "mesh/VemoMesh.h"

namespace {

constexpr const char* kExamples = R"(Examples:
  quillon tiles model.Vemo
  quillon tiles model.Vemo --json

UV space is cut into squares of side 1, the tiles. Columns count to the right along u, rows
upward along v, both from 0; a sheet of all tiles, which export makes, has the same order:

  v
  2 +------+------+------+
    | 1011 | 1012 | 1013 |   row 1
  1 +------+------+------+
    | 1001 | 1002 | 1003 |   row 0
  0 +------+------+------+
    0      1      2      3 u

Each tile has a name in each naming mode. That of column 2, row 1:

  0  _u2_v1    column and row from 0
  1  _u3_v2    column and row from 1
  2  1013      1001 + column + 10 x row
  3  u2v1      column and row from 0

In mode 2 columns beyond 9 have the numbers of the next row: column 10, row 0 and column 0,
row 1 are both 1011, and of the two only the one that comes first in the mesh is exported.

A face belongs to the tile of its first corner, and is painted if all of its corners are in
that tile. A coordinate that is a whole number belongs to the tile that begins there: a face
from 0 to 1 ends in the next tile and is not painted, unless import --clamp-uv has moved its
last corners to the nearest number below 1. Below 0, -1 is in tile -2, -0.5 in tile -1.

The columns of the table: the names, column and row, how many faces belong to the tile, how
many of them reach out of it, from where to where their corners are, and their face groups.
)";

using Row = std::vector<std::string>;

Row rowOf(const UvTile& tile) {
    Row row;
    for (int naming = 0; naming < kNamings; ++naming)
        row.push_back(nameOf(tile, naming));
    for (const std::int32_t place : {tile.column, tile.row})
        row.push_back(std::to_string(place));
    for (const std::size_t count : {tile.faces, tile.crossing.count})
        row.push_back(std::to_string(count));
    for (const double border : {tile.u.low, tile.u.high, tile.v.low, tile.v.high})
        row.push_back(statusText(static_cast<float>(border)));
    row.push_back(groupsText(tile.groups));
    return row;
}

void printTable(const std::vector<UvTile>& tiles) {
    std::vector<Row> rows{{"mode 0", "mode 1", "mode 2", "mode 3", "column", "row", "faces",
                           "reach out", "u from", "to", "v from", "to", "groups"}};
    for (const UvTile& tile : tiles)
        rows.push_back(rowOf(tile));
    std::vector<int> widths(rows.front().size() - 1);
    for (const Row& row : rows) {
        for (std::size_t i = 0; i < widths.size(); ++i)
            widths[i] = std::max(widths[i], static_cast<int>(row[i].size()));
    }
    for (const Row& row : rows) {
        for (std::size_t i = 0; i < widths.size(); ++i)
            std::printf("  %*s", i < std::size_t{kNamings} ? -widths[i] : widths[i],
                        row[i].c_str());
        std::puts(row.back().empty() ? "" : ("  " + row.back()).c_str());
    }
}

void print(const std::string& path, const std::vector<UvTile>& tiles,
           const std::vector<SharedName>& shared) {
    std::size_t faces = 0;
    for (const UvTile& tile : tiles)
        faces += tile.faces;
    std::printf("%s: tiles %zu, faces %zu\n", path.c_str(), tiles.size(), faces);
    if (!tiles.empty()) printTable(tiles);
    printLines(linesAbout(crossingFaces(tiles)));
    printLines(linesAbout(shared));
}

Json rangeObject(const Extent& extent) {
    return {{"from", jsonOf(static_cast<float>(extent.low))},
            {"to", jsonOf(static_cast<float>(extent.high))}};
}

Json tileObject(const UvTile& tile) {
    Json names = Json::array();
    for (int naming = 0; naming < kNamings; ++naming)
        names.push_back(nameOf(tile, naming));
    Json groups = Json::array();
    for (const auto& [group, faces] : tile.groups)
        groups.push_back({{"group", group}, {"faces", faces}});
    return {{"names", std::move(names)},
            {"column", tile.column},
            {"row", tile.row},
            {"faces", tile.faces},
            {"crossing", jsonOf(tile.crossing)},
            {"u", rangeObject(tile.u)},
            {"v", rangeObject(tile.v)},
            {"groups", std::move(groups)}};
}

void listTiles(const std::string& path, Report& report) {
    const std::vector<UvTile> tiles = tilesOf(readVemo(path), kNumberNaming);
    const std::vector<SharedName> shared = collisions(tiles, kNumberNaming);
    Json list = Json::array();
    for (const UvTile& tile : tiles)
        list.push_back(tileObject(tile));
    report.set("mesh", path);
    report.set("tiles", std::move(list));
    report.set("crossing", jsonOf(crossingFaces(tiles)));
    report.set("sharedNames", jsonOf(shared));
    if (report.hasLines()) print(path, tiles, shared);
}

}  // namespace

void addTilesCommand(CommandLine& line) {
    const auto mesh = std::make_shared<std::string>();
    CLI::App& command =
        line.add("tiles", "List the UV tiles of a mesh, and faces that no map shows", kExamples,
                 [&line, mesh] {
                     listTiles(*mesh, line.report());
                     return line.finishReport();
                 });
    CommandLine::addArgument(command, "MESH", *mesh, "Vemo file");
    line.addStyle(command, "--json", OutputStyle::kJson, "Print JSON, for scripts");
}
