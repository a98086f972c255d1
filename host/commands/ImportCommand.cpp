// quillon import: an OBJ model as a mesh file.

#include <algorithm>
#include <cstdio>
#include <filesystem>

#include "commands/Commands.h"
#include "files/FileKind.h"
#include "mesh/ObjModel.h"
#include "mesh/TilePerGroup.h"
#include "terminal/Failure.h"
#include "terminal/Interrupt.h"

namespace {

constexpr const char* kExamples = R"(Examples:
  quillon import model.obj model.Vemo
  quillon import model.obj model.Vemo --tile-per-group

Triangles and quads stay as they are; larger polygons become quads and triangles. The
model's groups, or its materials if there is one group, become face groups. With
--tile-per-group the first group's UVs go to tile 1001, the second's to 1002, ten tiles
to a row.
)";

struct ImportOptions {
    std::string model;
    std::string out;
    bool tilePerGroup = false;
    Overwrite overwrite = Overwrite::kReplace;
};

void requireOtherFile(const ImportOptions& options) {
    if (isSameFile(options.model, options.out))
        throw Failure(options.out + " is the model itself; choose another name for the mesh");
}

// A second model, say, that the shell put where the mesh belongs.
void requireEarlierMesh(const ImportOptions& options) {
    requireReplaceable(options.out, options.overwrite);
    std::error_code ignored;
    if (options.overwrite == Overwrite::kForce ||
        !std::filesystem::is_regular_file(options.out, ignored))
        return;
    InputFile file(options.out, "file");
    const bool isMesh = kindOf(file.part(0, kHeadBytes), "") == FileKind::kVemo;
    if (file.size() > 0 && !isMesh)
        throw Failure(options.out + " exists and is no mesh file; --force replaces it");
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
    if (report.hasLines())
        std::printf("%s: vertices %zu, quads %zu, triangles %zu, groups %zu\n", options.out.c_str(),
                    vertices, faces - triangles, triangles, model.groupCount);
}

// What was written so far is deleted if a Failure or Ctrl-C ends the import.
void importModel(const ImportOptions& options, Report& report) {
    noteInterrupts();
    requireOtherFile(options);
    requireEarlierMesh(options);
    ObjModel model = readObj(options.model);
    if (options.tilePerGroup) moveGroupsToTiles(model);
    writeVemo(options.out, model.mesh);
    summarise(options, model, report);
}

}  // namespace

void addImportCommand(CommandLine& line) {
    const auto options = std::make_shared<ImportOptions>();
    CLI::App& command =
        line.add("import", "Convert an OBJ model to a mesh file", kExamples, [&line, options] {
            importModel(*options, line.report());
            return line.finishReport();
        });
    CommandLine::addArgument(command, "MODEL", options->model, "OBJ model with UVs");
    CommandLine::addArgument(command, "OUT", options->out, "Vemo file to write");
    command.add_flag("--tile-per-group", options->tilePerGroup,
                     "Give each group a UV tile of its own");
    CommandLine::addOverwriteFlags(command, options->overwrite,
                                   "Replace OUT even if it is no mesh file");
    line.addOutputFlags(command, Verbose::kNo);
}
