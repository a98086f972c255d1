#include "commands/ImportCommand.h"

#include <algorithm>
#include <cstdio>
#include <filesystem>

#include "mesh/ObjModel.h"
#include "mesh/TilePerGroup.h"
#include "terminal/Failure.h"
#include "terminal/Interrupt.h"

namespace {

void requireOtherFile(const ImportOptions& options) {
    std::error_code missing;
    if (std::filesystem::equivalent(options.model, options.out, missing))
        throw Failure(options.out + " is the model itself; choose another name for the mesh");
}

void summarise(const ImportOptions& options, const ObjModel& model, Report& report) {
    const auto isTriangle = [](const Face& face) { return face.corners() == 3; };
    const std::size_t vertices = model.mesh.points.size();
    const std::size_t faces = model.mesh.faces.size();
    const auto triangles = static_cast<std::size_t>(
        std::count_if(model.mesh.faces.begin(), model.mesh.faces.end(), isTriangle));
    report.addFile(options.out);
    report.set("vertices", vertices);
    report.set("quads", faces - triangles);
    report.set("triangles", triangles);
    report.set("groups", model.groupCount);
    if (printsLines(options.output))
        std::printf("%s: vertices %zu, quads %zu, triangles %zu, groups %zu\n", options.out.c_str(),
                    vertices, faces - triangles, triangles, model.groupCount);
}

}  // namespace

void importModel(const ImportOptions& options, Report& report) {
    noteInterrupts();
    requireOtherFile(options);
    ObjModel model = readObj(options.model);
    if (options.tilePerGroup) moveGroupsToTiles(model);
    writeVemo(options.out, model.mesh);
    summarise(options, model, report);
}
