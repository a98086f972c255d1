// quillon inspect: the fields of files, which exports accept them, and what a byte belongs to.

#include <charconv>
#include <cinttypes>
#include <cstdio>
#include <optional>

#include "commands/Commands.h"
#include "commands/StatisticsReport.h"
#include "commands/Trials.h"
#include "exports/Meanings.h"
#include "files/Place.h"
#include "terminal/Colour.h"
#include "terminal/Failure.h"
#include "terminal/Interrupt.h"

namespace {

constexpr const char* kExamples = R"(Examples:
  quillon inspect all.tif
  quillon inspect model.Vemo maps/*.psd --json
  quillon inspect all.tif --at 0x1F4

Notes say what the exports do not expect in the file, and what to do about it. Each export that
works on such files is called to find out whether it accepts the file. It "changes nothing" when
it leaves a map as it is that it should change; "the result is wrong" when it takes the file for
one of another kind. The file itself is only read: exports that change a file in place get a copy
in the folder for temporary files, TMPDIR or /tmp, which takes as much space as the file and is
deleted at the end; other output is dropped. Of maps of 16 bits or more, and of OpenEXR files,
all samples are read: each channel's minimum, maximum and mean, and how many samples are NaN or
infinite. --fields only reads headers.

--at names the field at a byte: a field of the header, a pixel with its x, y and channel, or
an element of a mesh. Bytes, pixels and elements count from 0, rows from the top. OFFSET is
decimal, or hexadecimal after 0x. cmp -l counts bytes from 1, so subtract 1 from its numbers.
)";

struct InspectOptions {
    std::vector<std::string> files;
    bool fieldsOnly = false;          // no export is called
    std::optional<std::uint64_t> at;  // the byte to explain; nothing: the whole file
    bool json = false;
};

void printHead(const std::string& path, const FileFacts& facts) {
    std::printf("%s: %s, %" PRIu64 " bytes", path.c_str(), facts.format.c_str(), facts.bytes);
    if (const auto& picture = facts.picture) {
        std::printf(", %" PRId64 " x %" PRId64 " pixels, %" PRId64 " %s", picture->width,
                    picture->height, picture->channels,
                    picture->channels == 1 ? "channel" : "channels");
        if (picture->depth > 0) std::printf(" of %" PRId64 " bits", picture->depth);
    }
    std::puts("");
}

void printFields(const FileFacts& facts) {
    if (facts.fields.empty()) return;
    std::printf("  %10s %10s  %-22s %s\n", "offset", "bytes", "field", "value");
    for (const Field& field : facts.fields) {
        const int width = field.value.empty() ? 0 : 22;
        std::printf("  %10" PRIu64 " %10" PRIu64 "  %-*s", field.offset, field.bytes, width,
                    field.name.c_str());
        std::puts(field.value.empty() ? "" : (' ' + field.value).c_str());
    }
}

// A count or a measure says more than that the file is accepted.
std::string verdictText(const Verdict& verdict) {
    switch (verdict.outcome) {
        case Outcome::kRefused:
            return inRed(stdout, "refused") + ": " + verdict.meaning;
        case Outcome::kChangesNothing:
            return "accepted, " + inRed(stdout, "changes nothing") + ": " + verdict.meaning;
        case Outcome::kWrongResult:
            return "accepted, " + inRed(stdout, "the result is wrong") + ": see the notes";
        case Outcome::kAccepted:
            break;
    }
    const bool counts = requireExport(verdict.name).countOne != nullptr;
    return inGreen(stdout, "accepted") + (counts ? ": " + verdict.meaning : "");
}

void printVerdicts(const std::vector<Verdict>& verdicts) {
    if (verdicts.empty()) {
        std::puts("  no export reads such a file");
        return;
    }
    std::printf("  %-41s %10s\n", "export", "status");
    for (const Verdict& verdict : verdicts) {
        const std::string call = verdict.name + (verdict.how.empty() ? "" : ", " + verdict.how);
        std::printf("  %-41s %10s  %s\n", call.c_str(), statusText(verdict.status).c_str(),
                    verdictText(verdict).c_str());
    }
}

Json factsObject(const std::string& path, const FileFacts& facts) {
    Json object = {
        {"file", path}, {"success", true}, {"format", facts.format}, {"bytes", facts.bytes}};
    if (const auto& picture = facts.picture) {
        object["width"] = picture->width;
        object["height"] = picture->height;
        object["channels"] = picture->channels;
        if (picture->depth > 0) object["depth"] = picture->depth;
    }
    object["fields"] = Json::array();
    for (const Field& field : facts.fields)
        object["fields"].push_back({{"offset", field.offset},
                                    {"bytes", field.bytes},
                                    {"name", field.name},
                                    {"value", field.value}});
    return object;
}

Json verdictList(const std::vector<Verdict>& verdicts) {
    Json list = Json::array();
    for (const Verdict& verdict : verdicts) {
        Json object = {{"export", verdict.name}};
        if (!verdict.how.empty()) object["how"] = verdict.how;
        object["status"] = jsonOf(verdict.status);
        object["accepted"] = verdict.outcome != Outcome::kRefused;
        object["changesNothing"] = verdict.outcome == Outcome::kChangesNothing;
        object["wrongResult"] = verdict.outcome == Outcome::kWrongResult;
        object["meaning"] = verdict.meaning;
        list.push_back(std::move(object));
    }
    return list;
}

void printPlace(const std::string& path, const FileFacts& facts, std::uint64_t offset) {
    const Place place = placeOf(path, facts, offset);
    std::printf("%s: %s, byte %" PRIu64 " (0x%" PRIX64 ") of %" PRIu64 " is %d (0x%02X)\n",
                path.c_str(), facts.format.c_str(), offset, offset, facts.bytes, place.byte,
                place.byte);
    std::printf("  %s\n", textOf(place).c_str());
    if (place.bytes > 1)
        std::printf("  byte %" PRIu64 " of %" PRIu64 " from offset %" PRIu64 " on\n",
                    offset - place.offset, place.bytes, place.offset);
}

Json placeObject(const std::string& path, const FileFacts& facts, std::uint64_t offset) {
    const Place place = placeOf(path, facts, offset);
    Json object = {{"file", path},         {"success", true}, {"format", facts.format},
                   {"bytes", facts.bytes}, {"at", offset},    {"byte", place.byte}};
    for (const Step& step : place.path)
        object[step.key] = step.word.empty() ? Json(step.number) : Json(step.word);
    object["value"] = place.value;
    object["valueOffset"] = place.offset;
    object["valueBytes"] = place.bytes;
    return object;
}

std::string knownKinds() {
    std::vector<std::string> titles;
    forEachFileKind([&](FileKind kind) { titles.emplace_back(infoOf(kind).title); });
    return listed(titles);
}

// What is found out about a file.
struct Findings {
    std::vector<std::string> notes;  // sentences
    std::vector<SampleStatistics> samples;
    std::vector<Verdict> verdicts;
};

Findings findingsOn(const Library& library, const std::string& path, const FileFacts& facts,
                    const InspectOptions& options) {
    Findings findings;
    for (const Note& note : facts.notes)
        findings.notes.push_back(note.sentence);
    if (options.fieldsOnly) return findings;
    try {
        if (hasStatistics(facts)) findings.samples = statisticsOf(path, facts);
    } catch (const Failure& failure) {
        findings.notes.emplace_back(failure.what());  // the fields and the exports still say much
    }
    findings.verdicts = trialsOf(library, path, facts);
    return findings;
}

void inspectWhole(const Library& library, const std::string& path, const FileFacts& facts,
                  const InspectOptions& options) {
    if (facts.kind == FileKind::kUnknown)
        throw Failure(path +
                      " is no file that Quillon knows: neither its first bytes nor its "
                      "extension are those of " +
                      knownKinds());
    const Findings findings = findingsOn(library, path, facts, options);
    if (options.json) {
        Json object = factsObject(path, facts);
        object["notes"] = findings.notes;
        if (!options.fieldsOnly) {
            object["samples"] = jsonOf(findings.samples);
            object["exports"] = verdictList(findings.verdicts);
        }
        printJson(object);
        return;
    }
    printHead(path, facts);
    printFields(facts);
    for (const std::string& note : findings.notes)
        std::printf("  note: %s\n", note.c_str());
    if (options.fieldsOnly) return;
    printStatistics(findings.samples);
    printVerdicts(findings.verdicts);
}

void inspectFile(const Library& library, const std::string& path, const InspectOptions& options) {
    const FileFacts facts = factsOf(path);
    if (!options.at) return inspectWhole(library, path, facts, options);
    if (options.json) return printJson(placeObject(path, facts, *options.at));
    printPlace(path, facts, *options.at);
}

// Returns whether every file could be inspected. A file that no export accepts is no failure; one of
// no known kind is.
bool inspectFiles(const Library& library, const InspectOptions& options) {
    noteInterrupts();
    bool all = true;
    for (const std::string& path : options.files) {
        stopIfInterrupted();
        try {
            if (&path != &options.files.front() && !options.json) std::puts("");
            inspectFile(library, path, options);
        } catch (const Failure& failure) {
            all = false;
            if (options.json)
                printJson({{"file", path}, {"success", false}, {"error", failure.what()}});
            printError(failure.what());
        }
    }
    return all;
}

std::uint64_t offsetFrom(const std::string& text) {
    const bool isHex = text.starts_with("0x") || text.starts_with("0X");
    const char* first = text.data() + (isHex ? 2 : 0);
    const char* end = text.data() + text.size();
    std::uint64_t offset = 0;
    const auto read = std::from_chars(first, end, offset, isHex ? 16 : 10);
    if (read.ec != std::errc() || read.ptr != end)
        throw WrongUsage("--at " + text + " is no offset; give a number such as 500 or 0x1F4");
    return offset;
}

}  // namespace

void addInspectCommand(CommandLine& line) {
    const auto options = std::make_shared<InspectOptions>();
    CLI::App& command =
        line.add("inspect", "Print the fields of files and which exports accept them", kExamples,
                 [&line, options] {
                     options->json = line.report().isJson();
                     return inspectFiles(line.openLibrary(LibraryPrints::kDropped), *options);
                 });
    CommandLine::addArgument(command, "FILE", options->files, "Meshes, maps and images");
    command.add_flag("--fields", options->fieldsOnly,
                     "Only print fields; call no export, read no samples");
    command.add_option("--at")
        ->description("Only say what the byte at this offset belongs to")
        ->each([options](const std::string& text) { options->at = offsetFrom(text); })
        ->type_name("OFFSET");
    line.addStyle(command, "--json", OutputStyle::kJson,
                  "Print JSON, an object per line for each file");
}
