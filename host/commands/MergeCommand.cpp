#include "commands/MergeCommand.h"

#include <cstdio>
#include <filesystem>

#include "calls/CallLog.h"
#include "exports/Meanings.h"
#include "files/DiskFile.h"
#include "files/MapFormat.h"
#include "terminal/Failure.h"
#include "terminal/Interrupt.h"
#include "terminal/Progress.h"

namespace fs = std::filesystem;

namespace {

MapFormat requireFormat(const std::string& path) {
    if (const auto format = formatOfPath(path)) return *format;
    throw WrongUsage(path + " is no map by its name; maps end in .tif, .tiff, .psd or .bmp");
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

bool isTarget(const std::string& source, const MergeOptions& options) {
    std::error_code ignored;
    return fs::equivalent(source, options.target, ignored);
}

class Merge {
public:
    Merge(const Library& library, const MergeOptions& options, MapFormat format, Report& report)
        : options_(options),
          export_(infoOf(format).merge),
          report_(report),
          progress_(options.output != OutputStyle::kQuiet),
          log_(library, progress_, report, options.output) {}

    void run();

private:
    void fold(const std::string& source);

    const MergeOptions& options_;
    const std::string_view export_;
    Report& report_;
    Progress progress_;
    CallLog log_;
};

void Merge::run() {
    std::size_t done = 0;
    for (const std::string& source : options_.sources) {
        stopIfInterrupted();
        progress_.show("merging", done++, options_.sources.size(), source);
        if (isTarget(source, options_))
            log_.print("(left out)", "", source + " is the target itself");
        else
            fold(source);
    }
    log_.finishRow();
    report_.addFile(options_.target);
    if (!printsLines(options_.output)) return;
    std::puts("");
    printSize(options_.target);
}

void Merge::fold(const std::string& source) {
    const CallArguments arguments{.text = source, .buffer = options_.target};
    const float status = log_.call(export_, arguments).status;
    const Meaning meaning = meaningOf(requireExport(export_), arguments, status);
    if (!meaning.success)
        throw Failure(source + " cannot be merged into " + options_.target + ": " +
                      meaning.sentence + " (" + std::string(export_) + " answered " +
                      statusText(status) + ')');
}

}  // namespace

void mergeMaps(const Library& library, const MergeOptions& options, Report& report) {
    const MapFormat format = requireOneFormat(options);
    requireFiles(options);
    noteInterrupts();
    Merge(library, options, format, report).run();
}
