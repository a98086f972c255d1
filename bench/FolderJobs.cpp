// The jobs on folders and lists of many entries, which move few bytes.

#include <dirent.h>
#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <filesystem>
#include <iterator>
#include <string>

#include "Job.h"
#include "Text.h"
#include "files/DiskFile.h"
#include "files/FolderStream.h"

namespace {

constexpr double kMoved = 1.25;  // the target, as for what only moves bytes

// How many files or ranges there are: all from maps of 4096 pixels a side on.
std::uint32_t entriesFor(const Setup& setup) {
    constexpr std::uint32_t kEntries = 100'000;
    constexpr std::uint32_t kPixelsPerEntry = 160;
    return std::min(kEntries, setup.side * setup.side / kPixelsPerEntry);
}

void fillFolder(const std::string& folder, std::uint32_t files) {
    for (std::uint32_t i = 0; i < files; ++i)
        OpenFile(folder + text("/map%06u.tif", i), Access::kCreate);
}

// Whether the entry is not the folder itself or its parent.
bool isFile(const dirent& entry) {
    return entry.d_name[0] != '.';
}

void removeAll(const std::string& folder) {
    const FolderStream stream = openFolder(folder.c_str());
    const int descriptor = ::dirfd(stream.get());
    while (const dirent* const entry = ::readdir(stream.get())) {
        if (isFile(*entry)) ::unlinkat(descriptor, entry->d_name, 0);
    }
}

void readAll(const std::string& folder) {
    const FolderStream stream = openFolder(folder.c_str());
    while (::readdir(stream.get()) != nullptr) {
    }
}

Race empty(const Setup& setup) {
    constexpr double kNameBytes = 64;  // in a list of names
    const std::string folder = setup.folder + "/maps";
    const std::uint32_t files = entriesFor(setup);
    std::filesystem::create_directory(folder);
    Race race{.amount = files * 1e-6, .bytesHeld = kNameBytes * files};
    race.restore = [=] { fillFolder(folder, files); };
    race.resultDigest = [=] {
        const std::filesystem::directory_iterator left(folder);
        return static_cast<std::uint64_t>(std::distance(begin(left), end(left)));
    };
    race.contenders = quillonContenders(setup, "EmptyFolder", {folder});
    race.contenders.push_back(limit([=] { removeAll(folder); }, 0.0, kMoved));
    return race;
}

// Returns how many names GetFile gives.
Build::Call listing(const Build& build, const std::string& folder) {
    const auto open = build.call("OpenFolder", {folder});
    const auto next = build.find("GetFile");
    const auto close = build.call("CloseFolder", {});
    if (!open || !next || !close) return {};
    return [=] {
        std::array<char, 4096> name;
        float names = 0.0f;
        open();
        while (next(nullptr, 0.0, name.data()) == 0.0f)
            ++names;
        close();
        return names;
    };
}

Race list(const Setup& setup) {
    const std::string folder = setup.folder + "/maps";
    const std::uint32_t files = entriesFor(setup);
    std::filesystem::create_directory(folder);
    fillFolder(folder, files);
    Race race{.amount = files * 1e-6};
    race.contenders =
        quillonContenders(setup, [&](const Build& build) { return listing(build, folder); });
    race.contenders.push_back(limit([=] { readAll(folder); }, 0.0, kMoved));
    return race;
}

// Ranges that do not touch, in no order.
void writeRanges(const std::string& path, std::uint32_t ranges) {
    constexpr std::uint64_t kStep = 7919;  // a prime, so that each number comes up once
    std::string list;
    for (std::uint64_t i = 0; i < ranges; ++i) {
        const std::uint64_t first = 1001 + 5 * (i * kStep % ranges);
        list += std::to_string(first) + '-' + std::to_string(first + 2) + (i % 8 == 7 ? '\n' : ',');
    }
    OutputFile file(path);
    file.append({reinterpret_cast<const std::uint8_t*>(list.data()), list.size()});
    file.finish();
}

// The filter is forgotten again, so that it does not count for other jobs.
Race filter(const Setup& setup) {
    const std::string path = setup.folder + "/tiles.txt";
    const std::uint32_t ranges = entriesFor(setup);
    writeRanges(path, ranges);
    const std::uint64_t bytes = std::filesystem::file_size(path);
    Race race{.amount = ranges * 1e-6, .bytesHeld = static_cast<double>(bytes)};
    race.contenders = quillonContenders(setup, [&](const Build& build) -> Build::Call {
        const auto set = build.call("setUVtilesOutput", {path});
        const auto clear = build.call("clearUVtilesOutput", {});
        if (!set || !clear) return {};
        return [=] {
            const float status = set();
            clear();
            return status;
        };
    });
    race.contenders.push_back(limit({{Access::kRead, path, bytes}}, kMoved));
    return race;
}

}  // namespace

std::vector<Job> folderJobs() {
    return {{.name = "EmptyFolder", .unit = "Mfiles", .prepare = empty},
            {.name = "OpenFolder, GetFile", .unit = "Mfiles", .prepare = list},
            {.name = "setUVtilesOutput", .unit = "Mranges", .prepare = filter}};
}
