#include "commands/export/ExportReport.h"

#include <cmath>
#include <cstdio>
#include <filesystem>

#include "commands/StatisticsReport.h"
#include "commands/TileReport.h"
#include "exports/Meanings.h"

namespace {

Json objectOf(const MadeMap& map, const ExportOptions& options) {
    const PlannedMap& planned = map.planned;
    Json object = {{"mesh", options.mesh}, {"path", planned.files.map}};
    if (!planned.tile.empty()) object["tile"] = planned.tile;
    object["width"] = planned.sheet.width();
    object["height"] = planned.sheet.height();
    if (map.scale) object["scale"] = jsonOf(*map.scale);
    if (!map.heights.empty()) object["samples"] = jsonOf(map.heights);
    return object;
}

// The scale of one surface is different in a map of another size, which has other levels.
void printScale(float scale) {
    if (std::isinf(scale))
        std::puts("displacement scale infinite: the map has too few levels to tell");
    else
        std::printf(
            "displacement scale %s, by the number of levels in this map: another --size "
            "gives another\n",
            statusText(scale).c_str());
}

void printMap(const MadeMap& map) {
    if (map.heights.empty()) return;
    std::printf("%s, %s pixels\n", map.planned.files.map.c_str(),
                sizeText(map.planned.sheet).c_str());
    printStatistics(map.heights);
    if (map.scale) printScale(*map.scale);
}

void printTiles(const ExportPlan& plan, const ExportOptions& options) {
    std::printf("\n%zu %s:", plan.tiles.size(), plan.tiles.size() == 1 ? "tile" : "tiles");
    for (const UvTile& tile : plan.tiles)
        std::printf(" %s", nameOf(tile, options.naming).c_str());
    std::puts("");
}

Json tileNames(const ExportPlan& plan, const ExportOptions& options) {
    Json names = Json::array();
    for (const UvTile& tile : plan.tiles)
        names.push_back(nameOf(tile, options.naming));
    return names;
}

void reportPlannedMap(const PlannedMap& map, const ExportOptions& options, Report& report) {
    for (const std::string& path : map.files.wanted(options)) {
        const bool replaces = std::filesystem::exists(path);
        report.append("wouldWrite", {{"path", path}, {"replaces", replaces}});
        if (!report.hasLines()) continue;
        const std::string size =
            path == map.files.map ? ", " + sizeText(map.sheet) + " pixels" : "";
        std::printf("would %s %s%s\n", replaces ? "replace" : "write", path.c_str(), size.c_str());
    }
}

}  // namespace

void reportMaps(const ExportOptions& options, const std::vector<MadeMap>& maps,
                const std::vector<std::string>& kept, Report& report) {
    std::vector<std::string> paths = kept;
    for (const MadeMap& map : maps) {
        const std::vector<std::string> made = map.planned.files.wanted(options);
        paths.insert(paths.end(), made.begin(), made.end());
        report.append("maps", objectOf(map, options));
        if (map.scale) report.set("scale", jsonOf(*map.scale));
    }
    for (const std::string& path : paths)
        report.addFile(path);
    if (!report.hasLines()) return;
    std::puts("");
    for (const MadeMap& map : maps)
        printMap(map);
    for (const std::string& path : paths)
        printSize(path);
}

void reportPlan(const ExportOptions& options, const ExportPlan& plan, Report& report) {
    report.set("tiles", tileNames(plan, options));
    if (report.hasLines()) printTiles(plan, options);
    for (const PlannedMap& map : plan.maps)
        reportPlannedMap(map, options, report);
}

std::string unpaintedSentence(const ExportOptions& options, const ExportPlan& plan) {
    std::string sentence = options.mesh;
    const char* separator = ": ";
    for (const std::string& line : linesAbout(plan.crossing)) {
        sentence += separator + line;
        separator = "; ";
    }
    return sentence;
}
