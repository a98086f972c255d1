#include "commands/TourCommand.h"

#include <algorithm>
#include <cstdio>
#include <filesystem>

#include "commands/ExportCommand.h"
#include "files/DiskFile.h"

namespace fs = std::filesystem;

namespace {

ExportOptions exportOf(const TourOptions& tour) {
    ExportOptions options;
    options.mesh = tour.mesh;
    options.out = tour.out;
    options.size = tour.size;
    options.output = tour.output;
    return options;
}

ExportOptions normalsOf(const TourOptions& tour) {
    ExportOptions options = exportOf(tour);
    options.format = MapFormat::kBmp;
    options.order = "rbg";  // as for a renderer in which z is up
    options.thumbnail = std::min(tour.size, 256u);
    options.jpeg = 30.0;
    return options;
}

ExportOptions heightsOf(const TourOptions& tour) {
    ExportOptions options = exportOf(tour);
    options.map = MapKind::kHeight;
    options.sixteenBits = true;
    return options;
}

}  // namespace

void runTour(const Library& library, const TourOptions& options, Report& report) {
    const std::string name = fs::path(options.mesh).stem().string();
    const std::string path = (fs::path(options.out) / (name + ".html")).string();
    requireFreePath(path);
    ExportPage page(library, "The maps of " + name);
    exportMap(library, normalsOf(options), report, &page);
    if (printsLines(options.output)) std::puts("");
    exportMap(library, heightsOf(options), report, &page);
    page.write(path);
    report.addFile(path);
    if (printsLines(options.output)) printSize(path);
}
