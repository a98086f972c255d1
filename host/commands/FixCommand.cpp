// quillon fix: a map of another program, rewritten as the kind that the exports take.

#include <cstdio>
#include <filesystem>

#include "commands/Commands.h"
#include "files/DiskFile.h"
#include "files/MapFix.h"
#include "terminal/Failure.h"
#include "terminal/Interrupt.h"

namespace fs = std::filesystem;

namespace {

constexpr const char* kExamples = R"(Examples:
  quillon fix painted.tif all.tif
  quillon fix displacement.tif height.tif --bits 32
  quillon fix layered.psd all.psd --drop-alpha
  quillon fix topdown.bmp all.bmp --force

IN and OUT are of one format, known by the extension: .tif, .tiff, .psd or .bmp. OUT has the
same samples; what else was changed is printed, one line each.

  TIFF  any byte order, BigTIFF, compression, tiles, strips, planes and palettes become one
        uncompressed strip of grey or RGB, little-endian, with the directory at byte 8. Integers
        of 1 to 8 bits become 8, 16 stay, floats become 32. Merges take all three; the exports
        that swap channels and write Targa take 8 bits, those that convert and measure 32.
        --bits 32 turns integers into floats from 0 to 1, from which convertTIFF16 makes the
        same 16 bits again. The merge leaves maps of 224 bytes of pixels and fewer, and of 2 GiB
        and more, as they are.
  PSD   run-length compression, palettes and layers become the merged image alone: RGB of 8 bits,
        grey of 16, which is what merges take.
  BMP   headers of any length, palettes, run lengths, 16 and 32 bits per pixel and top-down images
        become 24 bits per pixel, the bottom row first.

Nothing is lost unless you say so: alpha and other further channels go with --drop-alpha, 16 bits
become 8 with --bits 8. Floats of 64 bits are rounded to 32. Of several pages the first is taken.
Colour profiles, descriptions and the resolution are left out, and no orientation is applied.
CMYK, Lab and signed integers are refused.
)";

struct FixCommandOptions {
    std::string in;
    std::string out;
    std::string bits;
    bool force = false;
    FixOptions fix;
};

MapFormat requireOneFormat(const FixCommandOptions& options) {
    const auto format = formatOfPath(options.in);
    for (const std::string& path : {options.in, options.out}) {
        if (!formatOfPath(path))
            throw WrongUsage(path + " is no map by its name; maps end in " +
                             listed(mapExtensions()));
    }
    if (format != formatOfPath(options.out))
        throw WrongUsage(options.in + " and " + options.out +
                         " are of two formats; fix keeps the format, so give both one extension");
    return *format;
}

void requireFreeOut(const FixCommandOptions& options) {
    std::error_code missing;
    if (fs::equivalent(options.in, options.out, missing))
        throw Failure(options.out + " is the map itself; choose another name for the new one");
    requireFreePath(options.out);
    if (!options.force && fs::exists(options.out, missing))
        throw Failure(options.out + " exists; choose another name, or replace it with --force");
}

void summarise(const std::string& out, const FixedMap& map, Report& report) {
    report.addFile(out);
    report.set("width", map.width);
    report.set("height", map.height);
    report.set("channels", map.channels);
    report.set("bits", map.bits);
    report.set("changes", map.changes);
    if (!report.hasLines()) return;
    std::printf("%s: %u x %u pixels, %s of %u bits\n", out.c_str(), map.width, map.height,
                counted(map.channels, "channel", "channels").c_str(), map.bits);
    if (map.changes.empty()) std::puts("  nothing had to change");
    for (const std::string& change : map.changes)
        std::printf("  %s\n", change.c_str());
}

void fixFile(FixCommandOptions options, Report& report) {
    noteInterrupts();
    const MapFormat format = requireOneFormat(options);
    requireFile(options.in, "map");
    requireFreeOut(options);
    if (!options.bits.empty()) options.fix.bits = static_cast<unsigned>(std::stoul(options.bits));
    summarise(options.out, fixMap(format, options.in, options.out, options.fix), report);
}

}  // namespace

void addFixCommand(CommandLine& line) {
    const auto options = std::make_shared<FixCommandOptions>();
    CLI::App& command = line.add("fix", "Rewrite a map as the kind that the exports take",
                                 kExamples, [&line, options] {
                                     fixFile(*options, line.report());
                                     return line.finishReport();
                                 });
    CommandLine::addArgument(command, "IN", options->in, "The map; it is only read");
    CommandLine::addArgument(command, "OUT", options->out, "The map to write, of the same format");
    line.oneOf(command
                   .add_option("--bits", options->bits,
                               "Bits of a sample, 32 for floats; by default the map's own: ")
                   ->type_name("BITS"),
               {"8", "16", "32"});
    command.add_flag("--drop-alpha", options->fix.dropAlpha,
                     "Leave out alpha and other channels beyond grey or RGB");
    command.add_flag("--force", options->force, "Replace OUT if it exists");
    line.addOutputFlags(command, Verbose::kNo);
}
