// quillon import: an OBJ model as a mesh file.

#include <algorithm>
#include <cstdio>
#include <filesystem>

#include "commands/Commands.h"
#include "commands/TileReport.h"
#include "files/FileKind.h"
#include "mesh/ClampUvs.h"
#include "mesh/ObjModel.h"
#include "mesh/TilePerGroup.h"
#include "terminal/Failure.h"
#include "terminal/Interrupt.h"

namespace {

constexpr const char* kExamples = R"(Examples:
  quillon import model.obj model.Vemo
  quillon import model.obj model.Vemo --clamp-uv
  quillon import model.obj model.Vemo --tile-per-group

Triangles and quads stay as they are; larger polygons become quads and triangles. The
model's groups, or its materials (usemtl) if there is one group, become face groups. With
--tile-per-group the first group's UVs go to tile 1001, the second's to 1002, ten tiles
to a row; a group that fits into no tile becomes smaller. quillon tiles --help says what
tiles are.

A coordinate of exactly 1 belongs to the next tile, and a face with corners in two tiles is
not painted. So the faces at the end of a layout that fills 0 to 1 stay black, unless
--clamp-uv moves their last corners to the nearest number below 1. It does so in every
tile, and leaves alone what reaches further.

UVs must be between -1000000 and 1000000.
)";

struct ImportOptions {
    std::string model;
    std::string out;
    bool tilePerGroup = false;
    bool clampUv = false;
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

void countElements(const ImportOptions& options, const ObjModel& model, Report& report) {
    const auto isTriangle = [](const Face& face) { return face.corners() == 3; };
    const std::size_t vertices = model.mesh.points.size();
    const std::size_t faces = model.mesh.faces.size();
    const std::size_t groups = model.groupNames.size();
    const auto triangles = static_cast<std::size_t>(
        std::count_if(model.mesh.faces.begin(), model.mesh.faces.end(), isTriangle));
    report.set("vertices", vertices);
    report.set("quads", faces - triangles);
    report.set("triangles", triangles);
    report.set("groups", groups);
    if (report.hasLines())
        std::printf("%s: vertices %zu, quads %zu, triangles %zu, groups %zu\n", options.out.c_str(),
                    vertices, faces - triangles, triangles, groups);
}

std::string spaced(const std::vector<std::string>& words) {
    std::string text;
    for (const std::string& word : words)
        text += ' ' + word;
    return text;
}

// The names of each group's tiles.
std::vector<std::vector<std::string>> tileNames(const std::vector<UvTile>& tiles,
                                                std::size_t groups) {
    std::vector<std::vector<std::string>> names(groups);
    for (const UvTile& tile : tiles) {
        for (const auto& [group, faces] : tile.groups)
            names[static_cast<std::size_t>(group)].push_back(nameOf(tile, kNumberNaming));
    }
    return names;
}

// Says which group became which tile.
void listGroups(const ObjModel& model, const std::vector<UvTile>& tiles, Report& report) {
    std::vector<std::vector<std::string>> names = tileNames(tiles, model.groupNames.size());
    Json list = Json::array();
    for (std::size_t group = 0; group < names.size(); ++group) {
        const std::string& name = model.groupNames[group];
        if (report.hasLines())
            std::printf("  group %s: tile%s%s\n", name.empty() ? "without a name" : name.c_str(),
                        names[group].size() == 1 ? "" : "s", spaced(names[group]).c_str());
        list.push_back({{"group", name}, {"tiles", std::move(names[group])}});
    }
    report.set("tilesOfGroups", std::move(list));
}

void summarise(const ImportOptions& options, const ObjModel& model, std::size_t moved,
               Report& report) {
    const std::vector<UvTile> tiles = tilesOf(model.mesh, kNumberNaming);
    const CrossingFaces crossing = crossingFaces(tiles);
    const std::vector<SharedName> shared = collisions(tiles, kNumberNaming);
    report.addFile(options.out);
    countElements(options, model, report);
    listGroups(model, tiles, report);
    if (options.clampUv) report.set("clampedCorners", moved);
    report.set("crossing", jsonOf(crossing, model.groupNames));
    report.set("sharedNames", jsonOf(shared));
    if (!report.hasLines()) return;
    if (options.clampUv) std::printf("corners moved below the end of their tiles: %zu\n", moved);
    printLines(linesAbout(crossing, model.groupNames));
    printLines(linesAbout(shared));
}

// What was written so far is deleted if a Failure or Ctrl-C ends the import.
void importModel(const ImportOptions& options, Report& report) {
    noteInterrupts();
    requireOtherFile(options);
    requireEarlierMesh(options);
    ObjModel model = readObj(options.model);
    if (options.tilePerGroup) moveGroupsToTiles(model);
    const std::size_t moved = options.clampUv ? clampUvs(model.mesh) : 0;
    writeVemo(options.out, model.mesh);
    summarise(options, model, moved, report);
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
    command.add_flag("--clamp-uv", options->clampUv,
                     "Move corners that are exactly at the end of their tile into it");
    CommandLine::addOverwriteFlags(command, options->overwrite,
                                   "Replace OUT even if it is no mesh file");
    line.addOutputFlags(command, Verbose::kNo);
}
