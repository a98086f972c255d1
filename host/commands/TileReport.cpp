#include "commands/TileReport.h"

#include <cstdio>

std::vector<std::string> linesAbout(const CrossingFaces& faces,
                                    const std::vector<std::string>& groupNames) {
    if (faces.count == 0) return {};
    const std::size_t further = faces.count - faces.touching;
    const std::string what =
        faces.count == 1
            ? "1 face reaches out of its tile and is not painted: "
            : std::to_string(faces.count) + " faces reach out of their tiles and are not painted: ";
    std::vector<std::string> lines{what + textOf(faces, groupNames)};
    if (faces.touching > 0)
        lines.push_back("to paint those that end exactly where the next tile begins (" +
                        std::to_string(faces.touching) + "), import the model with --clamp-uv");
    if (further > 0)
        lines.push_back("to paint those that reach further (" + std::to_string(further) +
                        "), move their UVs into one tile, or import the model with "
                        "--tile-per-group");
    return lines;
}

std::vector<std::string> linesAbout(const std::vector<SharedName>& names) {
    std::vector<std::string> lines;
    for (const SharedName& shared : names) {
        std::string line = std::to_string(shared.tiles.size()) + " tiles are named " + shared.name;
        for (const UvTile& tile : shared.tiles) {
            line += &tile == &shared.tiles.front() ? ": column " : ", column ";
            line += std::to_string(tile.column) + " row " + std::to_string(tile.row);
        }
        lines.push_back(line + "; only the first is painted");
    }
    if (!names.empty()) lines.emplace_back("to paint all of them, export with --naming 0, 1 or 3");
    return lines;
}

void printLines(const std::vector<std::string>& lines) {
    for (const std::string& line : lines)
        std::puts(line.c_str());
}

Json jsonOf(const CrossingFaces& faces, const std::vector<std::string>& groupNames) {
    Json first = Json::array();
    for (const FaceInGroup& face : faces.first) {
        Json entry = {{"face", face.face}};
        if (face.group) entry["group"] = groupText(*face.group, groupNames);
        first.push_back(std::move(entry));
    }
    return {{"count", faces.count}, {"touching", faces.touching}, {"first", std::move(first)}};
}

Json jsonOf(const std::vector<SharedName>& names) {
    Json list = Json::array();
    for (const SharedName& shared : names) {
        Json tiles = Json::array();
        for (const UvTile& tile : shared.tiles)
            tiles.push_back({{"column", tile.column}, {"row", tile.row}});
        list.push_back({{"name", shared.name}, {"tiles", std::move(tiles)}});
    }
    return list;
}
