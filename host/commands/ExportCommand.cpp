// quillon export: a map of all UV tiles of a mesh.

#include <cstdio>
#include <filesystem>
#include <map>

#include "commands/Commands.h"
#include "commands/export/ExportFiles.h"
#include "commands/export/MapExport.h"
#include "terminal/Failure.h"

namespace fs = std::filesystem;

namespace {

constexpr const char* kExamples = R"(Examples:
  quillon export model.Vemo --out maps
  quillon export model.Vemo --out maps --map height --bits 16 --size 4096
  quillon export model.Vemo --out maps --order bgr --targa
  quillon export model.Vemo --out maps --format psd --map height
  quillon export model.Vemo --out maps --format bmp --thumbnail 256 --jpeg 30 --page
  quillon export model.Vemo --out maps --tiles wanted.txt     (such as: 1001-1003, 1011)
  quillon export *.Vemo --out maps --per-tile --dry-run

Makes the host's calls in the host's order: finds the UV tiles, writes a mesh per tile,
renders a map per tile, merges the maps into maps/model_normal.tif and deletes the
working files. All files get their names at the end: an export that fails or is interrupted
leaves earlier maps as they were.

For a height map, also prints its range, its mean and, with 32 bits, the displacement scale:
the factor for a renderer that displaces by the map's levels. It depends on how many levels
the map has, so it is different at another --size.

Tiles are side by side on the map as in UV space, v upward. --per-tile makes a map of each
tile alone, --size pixels wide and high: maps/model_normal_1001.tif. Normals are in object
space. A face that reaches out of the tile of its first corner is not painted; a corner at
exactly 1 is already in the next tile. quillon tiles lists such faces, and quillon import
--clamp-uv mends those that end exactly at a border.

--bits 16 also writes maps/model_height_16bit.tif, --targa maps/model_normal.tga,
--thumbnail maps/model_normal_thumbnail.bmp.

--progress json writes lines to standard error such as
  {"file":"model.Vemo","step":"rendering","done":3,"total":19,"next":"1004"}
The last line of a step has done equal to total, and no next. Warnings and errors are there,
too; their lines do not begin with {.

Names of the first tile by naming mode: 0 _u0_v0, 1 _u1_v1, 2 1001, 3 u0v0. The mode is 2
when it is left out here, but 0 in quillon call.
)";

struct ExportWords {
    std::vector<std::string> meshes;
    ExportOptions options;  // for each of them
};

// Maps are named after the mesh alone, without its folder.
void requireOwnNames(const std::vector<std::string>& meshes) {
    std::map<std::string, std::string> seen;
    for (const std::string& mesh : meshes) {
        const auto [first, isNew] = seen.emplace(fs::path(mesh).stem().string(), mesh);
        if (!isNew)
            throw WrongUsage(first->second + " and " + mesh +
                             " have one name, and so would their maps; export them to two folders");
    }
}

void exportMesh(CommandLine& line, const Library& library, const ExportOptions& options) {
    ExportPage page(library, "The maps of " + stemOf(options));
    exportMap(library, options, line.report(), options.page ? &page : nullptr);
}

// The maps of a mesh that is done stay if the next one fails.
bool runExport(CommandLine& line, const ExportWords& words) {
    requireConsistent(words.options);
    requireOwnNames(words.meshes);
    const Library library = line.openLibrary();
    ExportOptions options = words.options;
    for (const std::string& mesh : words.meshes) {
        if (line.report().hasLines() && mesh != words.meshes.front()) std::puts("");
        options.mesh = mesh;
        exportMesh(line, library, options);
    }
    return line.finishReport();
}

void addNaming(CLI::App& command, ExportOptions& options) {
    command.add_option("--naming", options.naming, "How tiles are named: 0 to 3, see below")
        ->check(CommandLine::wholeNumber("--naming", 0, 3))
        ->type_name("MODE")
        ->capture_default_str();
}

void addKinds(CommandLine& line, CLI::App& command, ExportOptions& options) {
    const auto setMap = [&options](const std::string& kind) {
        options.map = kind == "height" ? MapKind::kHeight : MapKind::kNormal;
    };
    const auto setFormat = [&options](const std::string& name) {
        options.format = formatNamed(name).value();
    };
    line.oneOf(command.add_option_function<std::string>("--map", setMap)
                   ->type_name("KIND")
                   ->default_str("normal"),
               {"normal", "height"});
    line.oneOf(command.add_option_function<std::string>("--format", setFormat)
                   ->type_name("FORMAT")
                   ->default_str("tiff"),
               formatNames());
    line.oneOf(
        command.add_option("--order", options.order, "Colour channels as ")->type_name("ORDER"),
        {"bgr", "rbg", "grb"});
}

void addExtras(CLI::App& command, ExportOptions& options) {
    command
        .add_option_function<int>(
            "--bits", [&options](int) { options.sixteenBits = true; },
            "16: also write a height map with 16 bits")
        ->check(CommandLine::wholeNumber("--bits", 16, 16))
        ->type_name("BITS");
    command.add_flag("--targa", options.targa, "Also write a normal map as Targa");
    command
        .add_option("--thumbnail", options.thumbnail,
                    "Also write a thumbnail of a BMP, its longer side in pixels: 16 to 16384")
        ->check(CommandLine::wholeNumber("--thumbnail", 16, kMaxSheetSide))
        ->type_name("PIXELS");
    command
        .add_option_function<double>(
            "--jpeg", [&options](double quality) { options.jpeg = quality; },
            "Also write a BMP as JPEG; 0 is the finest, 100 the smallest, 50 if left out")
        ->expected(0, 1)
        ->default_str("50")
        ->check(CommandLine::wholeNumber("--jpeg", 0, 100))
        ->type_name("QUALITY");
    command.add_flag("--page", options.page, "Also write a page that shows the export");
    command.add_flag("--per-tile", options.perTile,
                     "Make a map of each tile alone, at full size, named after the tile");
    command.add_flag("--keep-tiles", options.keepTiles, "Keep the working files");
    command.add_flag("--dry-run", options.dryRun,
                     "Only say which files would be written; write nothing");
}

}  // namespace

void addOutSizeAndTiles(CLI::App& command, ExportOptions& options) {
    command.add_option("--out", options.out, "Folder for the maps; created if it is missing")
        ->required()
        ->type_name("DIR");
    command
        .add_option("--size", options.size, "Pixels of a map's longer side, at most: 16 to 16384")
        ->check(CommandLine::wholeNumber("--size", 16, kMaxSheetSide))
        ->type_name("PIXELS")
        ->capture_default_str();
    command.add_option("--tiles", options.tiles, "Text file that lists the tiles to export")
        ->type_name("FILTER");
    CommandLine::addOverwriteFlags(command, options.overwrite,
                                   "With --tiles: replace maps that may show other tiles");
}

void addExportCommand(CommandLine& line) {
    const auto words = std::make_shared<ExportWords>();
    ExportOptions& options = words->options;
    CLI::App& command = line.add("export", "Export a map of all UV tiles of a mesh", kExamples,
                                 [&line, words] { return runExport(line, *words); });
    CommandLine::addArgument(command, "MESH", words->meshes, "Vemo files");
    addOutSizeAndTiles(command, options);
    addNaming(command, options);
    addKinds(line, command, options);
    addExtras(command, options);
    line.addProgress(command);
    line.addOutputFlags(command, Verbose::kYes);
}
