// quillon tour: two exports of a mesh, shown on one page.

#include <algorithm>
#include <cstdio>
#include <filesystem>

#include "commands/Commands.h"
#include "commands/export/MapExport.h"
#include "files/DiskFile.h"

namespace fs = std::filesystem;

namespace {

constexpr const char* kExamples = R"(Examples:
  quillon tour model.Vemo --out maps

Exports the normals as BMP, with a thumbnail and a JPEG, their channels swapped for hosts in
which z is up; and the heights as TIFF, of 32 and of 16 bits, with their displacement scale.
maps/model.html shows the model, its tiles, every step, and the time of each call beside the
time that copying its file takes.
)";

ExportOptions normalsOf(ExportOptions options) {
    options.format = MapFormat::kBmp;
    options.order = "rbg";  // as for a renderer in which z is up
    options.thumbnail = std::min(options.size, 256u);
    options.jpeg = 30.0;
    return options;
}

ExportOptions heightsOf(ExportOptions options) {
    options.map = MapKind::kHeight;
    options.sixteenBits = true;
    return options;
}

// An export that has ended stays if the next one fails.
void runTour(const Library& library, const ExportOptions& options, Report& report) {
    requireConsistent(options);
    const std::string name = fs::path(options.mesh).stem().string();
    const std::string path = (fs::path(options.out) / (name + ".html")).string();
    requireFreePath(path);
    requireReplaceable(path, options.overwrite);
    ExportPage page(library, "The maps of " + name);
    exportMap(library, normalsOf(options), report, &page);
    if (report.hasLines()) std::puts("");
    exportMap(library, heightsOf(options), report, &page);
    page.write(path);
    report.addFile(path);
    if (report.hasLines()) printSize(path);
}

}  // namespace

void addTourCommand(CommandLine& line) {
    const auto options = std::make_shared<ExportOptions>();
    CLI::App& command = line.add("tour", "Export two maps of a mesh and a page that shows how",
                                 kExamples, [&line, options] {
                                     runTour(line.openLibrary(), *options, line.report());
                                     return line.finishReport();
                                 });
    CommandLine::addArgument(command, "MESH", options->mesh, "Vemo file");
    addOutSizeAndTiles(command, *options);
    line.addOutputFlags(command, Verbose::kYes);
}
