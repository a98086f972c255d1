// quillon: the command-line stand-in for Morvane. This file is the command line only; what each
// command does stands in its own file.

#include <CLI/CLI.hpp>
#include <csignal>
#include <cstdio>
#include <exception>
#include <new>
#include <string>

#include "calls/CallWords.h"
#include "calls/Library.h"
#include "calls/Report.h"
#include "commands/CallCommand.h"
#include "commands/Completions.h"
#include "commands/ExportCommand.h"
#include "commands/ImportCommand.h"
#include "commands/InspectCommand.h"
#include "commands/MergeCommand.h"
#include "commands/ScriptCommand.h"
#include "commands/TourCommand.h"
#include "exports/Exports.h"
#include "exports/Reference.h"
#include "terminal/Colour.h"
#include "terminal/Failure.h"
#include "terminal/Interrupt.h"

namespace {

constexpr int kSuccess = 0;
constexpr int kFailure = 1;
constexpr int kWrongUsage = 2;
constexpr int kInterrupted = 130;  // as shells report it
constexpr const char* kInterruptedSentence = "interrupted";

constexpr const char* kExamples = R"(Examples:
  quillon call Version
  quillon describe getUVTile
  quillon inspect all.tif
  quillon script calls.txt
  quillon import model.obj model.Vemo --tile-per-group
  quillon export model.Vemo --out maps
  quillon tour model.Vemo --out maps
  quillon merge all.tif 1001.tif 1002.tif
  quillon --library build/release/libQuillon.so call Version

Exit status: 0 success, 1 failure, 2 wrong usage, 130 interrupted.
quillon COMMAND --help explains a command.
)";

constexpr const char* kCallExamples = R"(Examples:
  quillon call CreateFolder maps
  quillon call GetString abcdefgh --value 2
  quillon call getUVTile model.Vemo --value 2
  quillon call getUVs model.Vemo --value 2 --buffer maps/model.Vemo
  quillon call mergeMapsTIF maps/1002.tif --buffer maps/all.tif
  quillon call FileDelete -- -name-with-a-dash.tif

VALUE and BUFFER may also stand behind TEXT, as in
  quillon call mergeMapsTIF 1002.tif 0 all.tif

TEXT or BUFFER left out is a null pointer. A block that takes a text is always there.
Each call is a process of its own: the open folder, the tile filter and the tile names
do not outlive it. In quillon script they do.

Exports and what they read:
)";

constexpr const char* kScriptExamples = R"(Examples:
  quillon script calls.txt
  quillon script calls.txt --keep-going --json
  printf 'OpenFolder maps\nGetFile\nCloseFolder\n' | quillon script -

A line is what follows quillon call, quoted as in a shell; # starts a comment:
  setUVtilesOutput filter.txt # the tiles that are wanted
  getUVs 'my model.Vemo' 2 maps/model.Vemo
  getUVString --value 0

The open folder, the tile filter and the tile names carry over from call to call. The first
call that fails ends the script, unless --keep-going is given. A file is checked to its end
before the first call; standard input is carried out line by line. --json prints an object
a line for each call.
)";

constexpr const char* kDescribeExamples = R"(Examples:
  quillon describe mergeMapsTIF

Tells what the export reads, writes and answers, with an example and what to check when
a call fails.

Exports and what they read:
)";

constexpr const char* kReferenceExamples = R"(Examples:
  quillon reference >exports.md
)";

constexpr const char* kInspectExamples = R"(Examples:
  quillon inspect all.tif
  quillon inspect model.Vemo maps/*.psd --json

Which exports take a file is found out by calling them. The file itself is only read: exports
that change a file in place get a copy in a temporary folder, as long as the file and deleted
at the end; what an export writes besides goes nowhere. --fields makes no copy.
)";

constexpr const char* kCompletionsExamples = R"(Examples:
  quillon completions bash >~/.local/share/bash-completion/completions/quillon
  quillon completions zsh >~/.zfunc/_quillon
  quillon completions fish >~/.config/fish/completions/quillon.fish
)";

constexpr const char* kImportExamples = R"(Examples:
  quillon import model.obj model.Vemo
  quillon import model.obj model.Vemo --tile-per-group

Triangles and quads stay as they are, larger polygons become quads and triangles. The
model's groups, or its materials when there is one group, become face groups. With
--tile-per-group the first group's UVs go to tile 1001, the second's to 1002, ten tiles
to a row.
)";

constexpr const char* kExportExamples = R"(Examples:
  quillon export model.Vemo --out maps
  quillon export model.Vemo --out maps --map height --bits 16 --size 4096
  quillon export model.Vemo --out maps --order bgr --targa
  quillon export model.Vemo --out maps --format psd --map height
  quillon export model.Vemo --out maps --format bmp --thumbnail 256 --jpeg 30 --page
  quillon export model.Vemo --out maps --tiles wanted.txt     (such as: 1001-1003, 1011)

Makes Morvane's calls in Morvane's order: finds the UV tiles, writes a mesh per tile,
renders a map per tile, merges the maps into maps/model_normal.tif and deletes the
working files. Of a height map in 32 bits the displacement scale is told.

--bits 16 leaves maps/model_height_16bit.tif besides, --targa maps/model_normal.tga,
--thumbnail maps/model_normal_thumbnail.bmp.

Names of the first tile by naming mode: 0 _u0_v0, 1 _u1_v1, 2 1001, 3 u0v0.
)";

constexpr const char* kTourExamples = R"(Examples:
  quillon tour model.Vemo --out maps

Exports the normals as BMP, their channels swapped for hosts in which z is up, with a
thumbnail and a JPEG, and the heights as TIFF, with their scale and 16 bits besides.
maps/model.html shows the model, its tiles, every step and the time that each call took
beside the time of copying its file.
)";

constexpr const char* kMergeExamples = R"(Examples:
  quillon merge all.tif 1001.tif 1002.tif 1003.tif
  quillon merge maps/all.psd maps/10*.psd

All files are of one format, told by .tif, .tiff, .psd or .bmp. A tile's pixel counts where
it is not background: the first pixel of the tile (TIFF), of the target (PSD), the tile's
at the bottom left (BMP). Where several tiles have a pixel, the first one wins, in PSD the
last. A tile that does not fit stops the work with what was merged before it.
)";

// "tiff, psd or bmp".
std::string listed(const std::vector<std::string>& words) {
    std::string list = words.front();
    for (std::size_t i = 1; i < words.size(); ++i)
        list += (i + 1 < words.size() ? ", " : " or ") + words[i];
    return list;
}

class CommandLine {
public:
    CommandLine();

    // Carries out what the arguments ask for and returns the exit status.
    int run(int argc, char** argv);

private:
    void addCall();
    void addScript();
    void addReference();
    void addInspect();
    void addImport();
    void addExport();
    void addExportKinds();
    void addExportExtras();
    void addTour();
    void addMerge();
    void addCompletions();
    void addMeshOutAndSize(CLI::App& command, std::string& mesh, std::string& out,
                           std::uint32_t& size);
    void addOutput(CLI::App& command, bool withVerbose);
    // Lets an option take these words only, names them behind its description and when it completes.
    void oneOf(CLI::Option* option, const std::vector<std::string>& choices);

    Library openLibrary(LibraryPrints prints) const {
        return Library(library_.empty() ? libraryBesideProgram() : library_, prints);
    }
    Library openLibrary() const {
        return openLibrary(printsLines(output()) ? LibraryPrints::kShown : LibraryPrints::kDropped);
    }
    OutputStyle output() const;
    int carryOut(Report& report);
    void complete(const std::vector<std::string>& words) const;

    CLI::App app_{"Calls the Quillon plug-in the way Morvane does."};
    std::string library_;
    OptionChoices choices_;  // of the options that take a few words only
    CLI::App* completions_ = nullptr;
    std::string shell_;
    bool json_ = false;
    bool quiet_ = false;
    bool verbose_ = false;

    CLI::App* call_ = nullptr;
    CallWords callWords_;

    CLI::App* script_ = nullptr;
    ScriptOptions scriptOptions_;

    CLI::App* describe_ = nullptr;
    std::string described_;
    CLI::App* reference_ = nullptr;

    CLI::App* inspect_ = nullptr;
    InspectOptions inspectOptions_;

    CLI::App* import_ = nullptr;
    ImportOptions importOptions_;

    CLI::App* export_ = nullptr;
    ExportOptions exportOptions_;
    std::string mapKind_ = "normal";
    std::string formatName_ = "tiff";

    CLI::App* tour_ = nullptr;
    TourOptions tourOptions_;

    CLI::App* merge_ = nullptr;
    MergeOptions mergeOptions_;
};

CommandLine::CommandLine() {
    app_.name("quillon");
    app_.set_help_flag("--help", "Print this help and exit");
    app_.set_version_flag("--version", "quillon " QUILLON_VERSION, "Print the version and exit");
    app_.require_subcommand(1);
    app_.footer(kExamples);
    app_.add_option("--library", library_, "The built library; otherwise the one near this program")
        ->type_name("PATH");
    addCall();
    addScript();
    addReference();
    addInspect();
    addImport();
    addExport();
    addTour();
    addMerge();
    addCompletions();
}

void CommandLine::addCall() {
    call_ = app_.add_subcommand("call", "Call one export and print its status and its meaning");
    callWords_.addTo(*call_);
    addOutput(*call_, false);
    call_->footer(kCallExamples + exportList());
}

void CommandLine::addScript() {
    script_ = app_.add_subcommand("script", "Make a list of calls in one process");
    script_->add_option("FILE", scriptOptions_.file, "The calls, one a line; - is standard input")
        ->required()
        ->type_name("");
    script_->add_flag("--keep-going", scriptOptions_.keepGoing, "Go on after a call that failed");
    addOutput(*script_, false);
    script_->footer(kScriptExamples);
}

void CommandLine::addReference() {
    describe_ = app_.add_subcommand("describe", "Tell all about one export");
    describe_->add_option("EXPORT", described_, "Which export")->required()->type_name("");
    describe_->footer(kDescribeExamples + exportList());
    reference_ = app_.add_subcommand("reference", "Tell all about every export, as Markdown");
    reference_->footer(kReferenceExamples);
}

void CommandLine::addInspect() {
    inspect_ =
        app_.add_subcommand("inspect", "Tell what stands in files and which exports take them");
    inspect_->add_option("FILE", inspectOptions_.files, "Meshes, maps and images")
        ->required()
        ->type_name("");
    inspect_->add_flag("--fields", inspectOptions_.fieldsOnly, "Fields only; try no export");
    inspect_->add_flag("--json", json_, "Print JSON, an object a line for each file");
    inspect_->footer(kInspectExamples);
}

void CommandLine::addImport() {
    import_ = app_.add_subcommand("import", "Turn an OBJ model into a mesh file");
    import_->add_option("MODEL", importOptions_.model, "OBJ model with UVs")
        ->required()
        ->type_name("");
    import_->add_option("OUT", importOptions_.out, "Vemo file to write")->required()->type_name("");
    import_->add_flag("--tile-per-group", importOptions_.tilePerGroup,
                      "Give each group a UV tile of its own");
    addOutput(*import_, false);
    import_->footer(kImportExamples);
}

void CommandLine::addExport() {
    ExportOptions& options = exportOptions_;
    export_ = app_.add_subcommand("export", "Export a map of all UV tiles of a mesh");
    addMeshOutAndSize(*export_, options.mesh, options.out, options.size);
    export_->add_option("--naming", options.naming, "How tiles are named: 0 to 3, see below")
        ->check(CLI::Range(0, 3).description(""))
        ->type_name("MODE")
        ->capture_default_str();
    export_->add_option("--tiles", options.tiles, "Text file of the tiles wanted")
        ->type_name("FILTER");
    addExportKinds();
    addExportExtras();
    export_->footer(kExportExamples);
}

void CommandLine::addTour() {
    TourOptions& options = tourOptions_;
    tour_ = app_.add_subcommand("tour", "Export two maps of a mesh and show how, on a page");
    addMeshOutAndSize(*tour_, options.mesh, options.out, options.size);
    addOutput(*tour_, true);
    tour_->footer(kTourExamples);
}

void CommandLine::addMeshOutAndSize(CLI::App& command, std::string& mesh, std::string& out,
                                    std::uint32_t& size) {
    command.add_option("MESH", mesh, "Vemo file")->required()->type_name("");
    command.add_option("--out", out, "Folder for the maps; created when it is missing")
        ->required()
        ->type_name("DIR");
    command.add_option("--size", size, "Pixels of a map's longer side, at most: 16 to 16384")
        ->check(CLI::Range(16, 16384).description(""))
        ->type_name("PIXELS")
        ->capture_default_str();
}

void CommandLine::addExportKinds() {
    oneOf(export_->add_option("--map", mapKind_, "")->type_name("KIND")->capture_default_str(),
          {"normal", "height"});
    oneOf(export_->add_option("--format", formatName_, "")
              ->type_name("FORMAT")
              ->capture_default_str(),
          formatNames());
    oneOf(export_->add_option("--order", exportOptions_.order, "Colour channels as ")
              ->type_name("ORDER"),
          {"bgr", "rbg", "grb"});
}

void CommandLine::addExportExtras() {
    ExportOptions& options = exportOptions_;
    export_
        ->add_option_function<int>(
            "--bits", [&options](int) { options.sixteenBits = true; },
            "16: a height map in 16 bits besides")
        ->check(CLI::IsMember({16}).description(""))
        ->type_name("BITS");
    export_->add_flag("--targa", options.targa, "A normal map as Targa besides");
    export_
        ->add_option("--thumbnail", options.thumbnail,
                     "A thumbnail of a BMP besides, its longer side in pixels: 16 to 16384")
        ->check(CLI::Range(16, 16384).description(""))
        ->type_name("PIXELS");
    export_
        ->add_option_function<double>(
            "--jpeg", [&options](double quality) { options.jpeg = quality; },
            "A BMP as JPEG besides; 0 is the finest, 100 the smallest, 50 when left out")
        ->expected(0, 1)
        ->default_str("50")
        ->check(CLI::Range(0, 100).description(""))
        ->type_name("QUALITY");
    export_->add_flag("--page", options.page, "A page that shows the export in pictures");
    export_->add_flag("--keep-tiles", options.keepTiles, "Leave the working files");
    addOutput(*export_, true);
}

void CommandLine::addMerge() {
    merge_ = app_.add_subcommand("merge", "Fold maps of single tiles into one map");
    merge_->add_option("TARGET", mergeOptions_.target, "The map that takes the others; it exists")
        ->required()
        ->type_name("");
    merge_->add_option("SOURCE", mergeOptions_.sources, "Maps of single tiles")
        ->required()
        ->type_name("");
    addOutput(*merge_, true);
    merge_->footer(kMergeExamples);
}

void CommandLine::addCompletions() {
    completions_ = app_.add_subcommand("completions", "Print the completions for a shell");
    oneOf(completions_->add_option("SHELL", shell_, "")->required()->type_name(""),
          {"bash", "zsh", "fish"});
    completions_->footer(kCompletionsExamples);
}

void CommandLine::oneOf(CLI::Option* option, const std::vector<std::string>& choices) {
    option->check(CLI::IsMember(choices).description(""));
    option->description(option->get_description() + listed(choices));
    choices_[option] = choices;
}

// The flags that say how a command tells what it did.
void CommandLine::addOutput(CLI::App& command, bool withVerbose) {
    CLI::Option* json = command.add_flag("--json", json_, "Print JSON, for scripts");
    CLI::Option* quiet =
        command.add_flag("--quiet", quiet_, "Print nothing; the exit status tells")->excludes(json);
    if (!withVerbose) return;
    command.add_flag("--verbose", verbose_, "Show every call, also of a long row")
        ->excludes(json)
        ->excludes(quiet);
}

OutputStyle CommandLine::output() const {
    if (json_) return OutputStyle::kJson;
    if (quiet_) return OutputStyle::kQuiet;
    return verbose_ ? OutputStyle::kAllLines : OutputStyle::kLines;
}

int CommandLine::carryOut(Report& report) {
    if (call_->parsed()) {
        const CallOptions options{callWords_.name(), callWords_.arguments(), output()};
        return callExport(openLibrary(), options) ? kSuccess : kFailure;
    }
    if (script_->parsed()) {
        scriptOptions_.output = output();
        return runScript(openLibrary(), scriptOptions_) ? kSuccess : kFailure;
    }
    if (describe_->parsed() || reference_->parsed()) {
        const std::string page =
            reference_->parsed() ? wholeReference() : referenceOf(requireExport(described_));
        std::fputs(page.c_str(), stdout);
        return kSuccess;
    }
    if (completions_->parsed()) {
        std::fputs(completionScript(shell_).c_str(), stdout);
        return kSuccess;
    }
    if (inspect_->parsed()) {
        inspectOptions_.output = output();
        return inspectFiles(openLibrary(LibraryPrints::kDropped), inspectOptions_) ? kSuccess
                                                                                   : kFailure;
    }
    if (import_->parsed()) {
        importOptions_.output = output();
        importModel(importOptions_, report);
    } else if (merge_->parsed()) {
        mergeOptions_.output = output();
        mergeMaps(openLibrary(), mergeOptions_, report);
    } else if (tour_->parsed()) {
        tourOptions_.output = output();
        runTour(openLibrary(), tourOptions_, report);
    } else {
        exportOptions_.output = output();
        exportOptions_.map = mapKind_ == "height" ? MapKind::kHeight : MapKind::kNormal;
        exportOptions_.format = formatNamed(formatName_).value_or(MapFormat::kTiff);
        requireConsistent(exportOptions_);
        exportMap(openLibrary(), exportOptions_, report);
    }
    if (json_) report.printSuccess();
    return kSuccess;
}

// What the shells' scripts ask for; see Completions.h. The words may be options of any kind, so they
// are not parsed as this command's own.
void CommandLine::complete(const std::vector<std::string>& words) const {
    for (const std::string& candidate : candidatesFor(app_, choices_, words))
        std::puts(candidate.c_str());
}

int CommandLine::run(int argc, char** argv) {
    if (argc > 1 && std::string_view(argv[1]) == "complete") {
        complete({argv + 2, argv + argc});
        return kSuccess;
    }
    try {
        app_.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        if (error.get_exit_code() == 0) return app_.exit(error);
        throw WrongUsage(std::string(error.what()) + "; see quillon --help");
    }
    Report report;
    try {
        return carryOut(report);
    } catch (const Interrupted&) {
        if (json_) report.printFailure(kInterruptedSentence);
        throw;
    } catch (const std::exception& failure) {
        if (json_) report.printFailure(failure.what());
        throw;
    }
}

int stopped(const char* sentence, int status) {
    std::fflush(stdout);
    std::fprintf(stderr, "%s %s\n", inRed(stderr, "quillon:").c_str(), sentence);
    return status;
}

}  // namespace

int main(int argc, char** argv) {
    // A reader that went away and a file size limit are errors of a write, not the end of the
    // program, which has working files to delete.
    std::signal(SIGPIPE, SIG_IGN);
    std::signal(SIGXFSZ, SIG_IGN);
    try {
        const int status = CommandLine().run(argc, argv);
        if (std::fflush(stdout) != 0 || std::ferror(stdout) != 0)
            throw Failure("the output could not be written");
        return status;
    } catch (const WrongUsage& wrong) {
        return stopped(wrong.what(), kWrongUsage);
    } catch (const Interrupted&) {
        return stopped(kInterruptedSentence, kInterrupted);
    } catch (const std::bad_alloc&) {
        return stopped("there is too little memory", kFailure);
    } catch (const std::exception& failure) {
        return stopped(failure.what(), kFailure);
    }
}
