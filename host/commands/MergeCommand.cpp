// quillon merge: maps of single tiles merged into one map, whatever rendered them.

#include <cstdio>
#include <filesystem>

#include "calls/WorkingFolder.h"
#include "commands/Commands.h"
#include "exports/Meanings.h"
#include "files/ChangedPixels.h"
#include "files/MapFormat.h"
#include "terminal/Failure.h"
#include "terminal/Interrupt.h"

namespace fs = std::filesystem;

namespace {

constexpr const char* kExamples = R"(Examples:
  quillon merge all.tif 1001.tif 1002.tif 1003.tif
  quillon merge --out all.psd maps/10*.psd

A sheet is a map with room for all tiles, in which one tile is painted and the rest is
background. Merging lays sheets of one size over each other: a pixel of a SOURCE replaces the
background in TARGET. The background is the SOURCE's first pixel (TIFF), the TARGET's first
pixel (PSD), or the SOURCE's pixel at the bottom left (BMP), so no tile may be painted there.
Where several sheets have a pixel, the first one wins, in PSD the last.

All files have the same format, known by the extension: .tif, .tiff, .psd or .bmp. The maps
are merged in a copy, which takes TARGET's place when all fit; otherwise nothing changes.
With --out the copy becomes another map and TARGET is only read. A SOURCE that changes no
pixel is reported: it may be painted at its first pixel, or have its tile where others are.

--progress json writes lines to standard error such as
  {"file":"all.tif","step":"merging","done":1,"total":3,"next":"1003.tif"}
The last line has done equal to total, and no next. Warnings and errors are there, too; their
lines do not begin with {.
)";

constexpr std::size_t kCountWidth = 10;

struct MergeOptions {
    std::string target;
    std::vector<std::string> sources;
    std::string out;  // empty: the target
    Overwrite overwrite = Overwrite::kReplace;

    const std::string& result() const { return out.empty() ? target : out; }
};

MapFormat requireFormat(const std::string& path) {
    if (const auto format = formatOfPath(path)) return *format;
    throw WrongUsage(path + " is no map by its name; maps end in " + listed(mapExtensions()));
}

MapFormat requireOneFormat(const MergeOptions& options) {
    const MapFormat format = requireFormat(options.target);
    std::vector<std::string> others = options.sources;
    if (!options.out.empty()) others.push_back(options.out);
    for (const std::string& other : others) {
        if (requireFormat(other) != format)
            throw WrongUsage(other + " and " + options.target +
                             " are files of two formats, which cannot be merged");
    }
    return format;
}

void requireFiles(const MergeOptions& options) {
    requireFile(options.target, "map");
    for (const std::string& source : options.sources)
        requireFile(source, "map");
    if (options.out.empty()) return;
    requireFreePath(options.out);
    requireReplaceable(options.out, options.overwrite);
    for (const std::string& source : options.sources) {
        if (isSameFile(source, options.out))
            throw Failure(options.out + " is also a map to merge; choose another --out");
    }
}

// A merge that runs.
struct MergeRun {
    const MergeOptions& options;
    std::string_view merge;  // the export
    Report& report;
    CallLog log;
    WorkingFolder working{log};
    std::string map = {};                  // the copy into which the sources are merged
    std::vector<std::string> counts = {};  // lines: how many pixels of which source
};

void copyTarget(MergeRun& run) {
    const std::string path = linkTarget(run.options.result());
    const std::string folder = fs::path(path).parent_path().string();
    run.working.create(folder.empty() ? "." : folder);
    run.map = run.working.addResult(path);
    run.log.require("FileCopyTo", {.text = run.options.target, .buffer = run.map});
    if (fs::file_size(run.map) != fs::file_size(run.options.target))
        throw Failure("cannot copy " + run.options.target + " to " + run.map +
                      ": the disk took only a part of it");
}

void mergeOne(MergeRun& run, ChangedPixels& pixels, const std::string& source) {
    const float status = run.log.call(run.merge, {.text = source, .buffer = run.map}).status;
    const Meaning& meaning = run.log.calls().back().meaning;
    if (!meaning.success)
        throw Failure(source + " cannot be merged into " + run.options.target + ": " +
                      meaning.sentence + " (" + std::string(run.merge) + " returned " +
                      statusText(status) + ')');
    const std::optional<std::uint64_t> changed = pixels.count();
    if (!changed) return;
    run.report.append("merged", {{"source", source}, {"pixels", *changed}});
    std::string number = std::to_string(*changed);
    number.insert(0, number.size() < kCountWidth ? kCountWidth - number.size() : 0, ' ');
    run.counts.push_back(number + " pixels of " + source + " merged");
    if (*changed == 0)
        run.log.warn(source + " changed no pixel of " + run.options.target +
                     "; see quillon merge --help for what counts as background");
}

void mergeAll(MergeRun& run) {
    ChangedPixels pixels(run.map);
    Progress& progress = run.log.progress();
    progress.setFile(run.options.result());
    std::size_t done = 0;
    for (const std::string& source : run.options.sources) {
        stopIfInterrupted();
        progress.show("merging", done++, run.options.sources.size(), source);
        if (isSameFile(source, run.options.target))
            run.log.print("(left out)", "", source + " is the target itself");
        else
            mergeOne(run, pixels, source);
    }
    progress.finish("merging", done);
    stopIfInterrupted();
}

// Merges the sources, in their order, in a copy of the target, which then replaces the result.
void mergeMaps(const Library& library, const MergeOptions& options, Report& report) {
    const std::string_view merge = infoOf(requireOneFormat(options)).merge;
    requireFiles(options);
    noteInterrupts();
    MergeRun run{options, merge, report, CallLog(library, report)};
    copyTarget(run);
    mergeAll(run);
    run.working.publish();
    run.working.files().deleteAll();
    run.log.finishRow();
    report.addFile(options.result());
    if (!report.hasLines()) return;
    std::puts("");
    for (const std::string& count : run.counts)
        std::puts(count.c_str());
    printSize(options.result());
}

}  // namespace

void addMergeCommand(CommandLine& line) {
    const auto options = std::make_shared<MergeOptions>();
    CLI::App& command =
        line.add("merge", "Merge maps of single tiles into one map", kExamples, [&line, options] {
            mergeMaps(line.openLibrary(), *options, line.report());
            return line.finishReport();
        });
    CommandLine::addArgument(command, "TARGET", options->target, "The map to merge into");
    CommandLine::addArgument(command, "SOURCE", options->sources, "Maps of single tiles");
    command.add_option("--out", options->out, "Write the result here; TARGET is only read")
        ->type_name("NEW");
    command.add_flag_callback(
        "--no-clobber", [options] { options->overwrite = Overwrite::kNever; },
        "Fail if the file of --out exists");
    line.addProgress(command);
    line.addOutputFlags(command, Verbose::kYes);
}
