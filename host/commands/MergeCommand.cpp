// quillon merge: maps of single tiles merged into one map, whatever rendered them.

#include <cstdio>
#include <filesystem>

#include "calls/CallLog.h"
#include "commands/Commands.h"
#include "exports/Meanings.h"
#include "files/DiskFile.h"
#include "files/MapFormat.h"
#include "terminal/Failure.h"
#include "terminal/Interrupt.h"

namespace fs = std::filesystem;

namespace {

constexpr const char* kExamples = R"(Examples:
  quillon merge all.tif 1001.tif 1002.tif 1003.tif
  quillon merge maps/all.psd maps/10*.psd

All files have the same format, known by the extension: .tif, .tiff, .psd or .bmp. A tile's
pixel is merged where it differs from the background. The background is the tile's first
pixel (TIFF), the target's first pixel (PSD), or the tile's pixel at the bottom left (BMP).
Where several tiles have a pixel, the first one wins, in PSD the last. A tile that does not
fit ends the merge; the tiles before it are in the target.
)";

struct MergeOptions {
    std::string target;
    std::vector<std::string> sources;
};

MapFormat requireFormat(const std::string& path) {
    if (const auto format = formatOfPath(path)) return *format;
    throw WrongUsage(path + " is no map by its name; maps end in " + listed(mapExtensions()));
}

MapFormat requireOneFormat(const MergeOptions& options) {
    const MapFormat format = requireFormat(options.target);
    for (const std::string& source : options.sources) {
        if (requireFormat(source) != format)
            throw WrongUsage(source + " and " + options.target +
                             " are files of two formats, which cannot be merged");
    }
    return format;
}

void requireFiles(const MergeOptions& options) {
    requireFile(options.target, "map");
    for (const std::string& source : options.sources)
        requireFile(source, "map");
}

void mergeOne(CallLog& log, std::string_view merge, const std::string& source,
              const std::string& target) {
    const float status = log.call(merge, {.text = source, .buffer = target}).status;
    const Meaning& meaning = log.calls().back().meaning;
    if (!meaning.success)
        throw Failure(source + " cannot be merged into " + target + ": " + meaning.sentence + " (" +
                      std::string(merge) + " returned " + statusText(status) + ')');
}

// Merges the sources into the target, in their order, until one does not fit.
void mergeMaps(const Library& library, const MergeOptions& options, Report& report) {
    const std::string_view merge = infoOf(requireOneFormat(options)).merge;
    requireFiles(options);
    noteInterrupts();
    CallLog log(library, report);
    std::size_t done = 0;
    for (const std::string& source : options.sources) {
        stopIfInterrupted();
        log.progress().show("merging", done++, options.sources.size(), source);
        std::error_code ignored;
        if (fs::equivalent(source, options.target, ignored))
            log.print("(left out)", "", source + " is the target itself");
        else
            mergeOne(log, merge, source, options.target);
    }
    log.finishRow();
    report.addFile(options.target);
    if (!report.hasLines()) return;
    std::puts("");
    printSize(options.target);
}

}  // namespace

void addMergeCommand(CommandLine& line) {
    const auto options = std::make_shared<MergeOptions>();
    CLI::App& command =
        line.add("merge", "Merge maps of single tiles into one map", kExamples, [&line, options] {
            mergeMaps(line.openLibrary(), *options, line.report());
            return line.finishReport();
        });
    CommandLine::addArgument(command, "TARGET", options->target,
                             "The map to merge into; it must exist");
    CommandLine::addArgument(command, "SOURCE", options->sources, "Maps of single tiles");
    line.addOutputFlags(command, Verbose::kYes);
}
