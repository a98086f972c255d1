#include "exports/Exports.h"

#include <algorithm>
#include <utility>
#include <vector>

#include "exports/Groups.h"
#include "terminal/Failure.h"
#include "terminal/Suggestion.h"

namespace {

std::string argumentsOf(const Export& entry) {
    std::string line;
    const auto add = [&line](const char* option, const char* what) {
        if (what == nullptr) return;
        line += line.empty() ? "" : ", ";
        line += option;
        line += what;
    };
    add("TEXT ", entry.text);
    add("--value ", entry.value);
    add(entry.buffer == BufferUse::kOutput ? "writes " : "--buffer ", entry.bufferIs);
    return line.empty() ? "nothing" : line;
}

}  // namespace

std::vector<std::string> namesOf(Causes causes) {
    using namespace cause;
    static constexpr std::pair<Causes, const char*> kNames[] = {
        {kDone, "done"},
        {kNullArgument, "nullArgument"},
        {kValueRefused, "valueRefused"},
        {kPathRefused, "pathRefused"},
        {kSourceNotOpened, "sourceNotOpened"},
        {kSourceNotWritable, "sourceNotWritable"},
        {kTargetNotOpened, "targetNotOpened"},
        {kTargetNotWritten, "targetNotWritten"},
        {kDiskFull, "diskFull"},
        {kReadFailed, "readFailed"},
        {kFileRefused, "fileRefused"},
        {kNoMemory, "noMemory"},
        {kNothingOpen, "nothingOpen"},
    };
    std::vector<std::string> names;
    for (const auto& [one, name] : kNames) {
        if (causes.contain(one)) names.emplace_back(name);
    }
    return names;
}

std::span<const ExportGroup> exportGroups() {
    static const std::vector<ExportGroup> kGroups = {
        folderExports(), meshExports(), tiffExports(), psdExports(), bmpExports(), imageExports()};
    return kGroups;
}

std::vector<std::string> exportNames() {
    std::vector<std::string> names;
    for (const ExportGroup& group : exportGroups()) {
        for (const Export& entry : group.exports)
            names.emplace_back(entry.name);
    }
    return names;
}

const Export* findExport(std::string_view name) {
    for (const ExportGroup& group : exportGroups()) {
        const auto found = std::ranges::find(group.exports, name, &Export::name);
        if (found != group.exports.end()) return &*found;
    }
    return nullptr;
}

const Export& requireExport(std::string_view name) {
    if (const Export* entry = findExport(name)) return *entry;
    const std::string suggestion = suggestionFor(name, exportNames());
    throw WrongUsage("there is no export " + std::string(name) +
                     (suggestion.empty() ? "; quillon call --help lists them all" : suggestion));
}

const StatusMeaning* rowOf(const Export& entry, float status) {
    const auto found = std::ranges::find(entry.statuses, status, &StatusMeaning::status);
    if (found != entry.statuses.end()) return &*found;
    return entry.writesTiles && status >= kTileNotWritten.status ? &kTileNotWritten : nullptr;
}

bool isCount(const Export& entry, float status) {
    return entry.countOne != nullptr && status >= 0.0f && rowOf(entry, status) == nullptr;
}

std::string exportList() {
    std::string list;
    for (const ExportGroup& group : exportGroups()) {
        for (const Export& entry : group.exports) {
            std::string line = "  " + std::string(entry.name);
            line.resize(22, ' ');
            line += argumentsOf(entry);
            list += line + '\n';
        }
    }
    return list;
}
