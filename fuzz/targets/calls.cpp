// A program of up to 40 calls of any exports on a folder of files that earlier calls made: outputs
// become inputs, sources become targets, files vanish between two calls.
//
// The first file is the program, four bytes a call: export, text, buffer1, value. The others are the files
// that the folder holds at the start.

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <bit>
#include <limits>
#include <set>
#include <stdexcept>
#include <string_view>

#include "calls/CallModel.h"
#include "harness/Target.h"

namespace {

constexpr std::size_t kMaxCalls = 40;
constexpr std::size_t kCallBytes = 4;
constexpr std::size_t kMaxFileBytes = 4096;   // so that a mesh has few tiles
constexpr const char* kNeverNamed = "stays";  // keeps the folder from being empty

constexpr std::array<const char*, 7> kGiven = {"a.tif",  "b.tif",    "a.psd", "a.bmp",
                                               "a.Vemo", "list.txt", "a.exr"};
constexpr std::array<const char*, 18> kNames = {
    "a.tif",   "b.tif",  "a.psd",      "b.psd",         "a.bmp", "b.bmp",
    "a.Vemo",  "b.Vemo", "a1001.Vemo", "list.txt",      "a.exr", "out.tga",
    "out.jpg", "sub.d",  "plain",      "missing/x.tif", ".",     nullptr};

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr std::array<double, 16> kValues = {1,  0, 2, 3,  4,  0.5, 2.9, 3.5,
                                            -1, 5, 7, 11, 50, 100, 101, kNaN};

std::optional<std::string> nameOf(std::uint8_t number) {
    const char* const name = kNames[number % kNames.size()];
    return name == nullptr ? std::nullopt : std::optional<std::string>(name);
}

// Calls work in the working folder, by relative paths: a dot in an absolute one would count.
void fillFolder(const Case& files) {
    writeFile(kNeverNamed, {});
    for (std::size_t i = 0; i < kGiven.size(); ++i) {
        ByteList bytes = files.given(i + 1);
        if (bytes.empty()) continue;
        bytes.resize(std::min(bytes.size(), kMaxFileBytes));
        writeFile(kGiven[i], bytes);
    }
}

void readEntry(const std::string& name, Entries& entries) {
    struct stat status {};
    if (::lstat(name.c_str(), &status) != 0)
        entries.erase(name);
    else if (S_ISDIR(status.st_mode))
        entries[name] = {true};
    else
        entries[name] = {false, std::make_shared<ByteList>(readFile(name.c_str()).bytes)};
}

Entries readEntries(const auto& names, Entries entries = {}) {
    for (const std::string& name : names)
        readEntry(name, entries);
    return entries;
}

// A map of many missing rows makes one of hundreds of megabytes, which a later call would load.
bool isAnyHuge(const std::set<std::string>& names) {
    constexpr off_t kHuge = 128 * 1024;
    struct stat status {};
    return std::ranges::any_of(names, [&](const std::string& name) {
        return ::lstat(name.c_str(), &status) == 0 && status.st_size > kHuge;
    });
}

bool takesLong(const Call& call, const Entries& entries) {
    if (call.function.function != saveAsJpeg || !call.text) return false;
    const auto source = entries.find(*call.text);
    return source != entries.end() && source->second.bytes && isLongToCode(*source->second.bytes);
}

Call callAt(const ByteList& program, std::size_t at) {
    const Export& function = kAllExports[program[at] % kExports];
    return {function, nameOf(program[at + 1]), nameOf(program[at + 2]),
            kValues[program[at + 3] % kValues.size()]};
}

Result make(const Call& call) {
    constexpr char kUntouched = '\x7e';
    std::array<char, 4096> block{};
    block.fill(kUntouched);
    block.back() = '\0';
    std::string path = call.buffer.value_or("");
    char* const buffer = !call.buffer                             ? nullptr
                         : call.function.buffer == Buffer::kBlock ? block.data()
                                                                  : path.data();
    const char* const text = call.text ? call.text->c_str() : nullptr;
    Result result;
    try {
        result.status = call.function.function(text, call.value, buffer, 0, nullptr, 0, nullptr);
    } catch (const std::out_of_range&) {
        result.threw = true;
    }
    if (block.front() != kUntouched) result.text = block.data();
    return result;
}

// The names of a listing depend on the file system; all else is the same each time.
void note(Case& files, const Call& call, const Result& result) {
    const auto status = std::bit_cast<std::array<char, sizeof(float)>>(result.status);
    files.note({status.data(), status.size()});
    if (call.function.function != GetFile) files.note(result.text.value_or(""));
}

void note(Case& files, const Entries& entries) {
    for (const auto& [name, entry] : entries) {
        if (!entry.isFolder)
            files.note({reinterpret_cast<const char*>(entry.bytes->data()), entry.bytes->size()});
    }
}

void forgetState() {
    CloseFolder(nullptr, 0, nullptr, 0, nullptr, 0, nullptr);
    clearUVtilesOutput(nullptr, 0, nullptr, 0, nullptr, 0, nullptr);
    clearUVString(nullptr, 0, nullptr, 0, nullptr, 0, nullptr);
}

}  // namespace

FUZZ_TARGET(calls, kAny, 1 + kGiven.size()) {
    forgetState();
    fillFolder(files);
    folder().changed();
    const int descriptors = folder().openDescriptors();
    const ByteList& program = files.given(0);
    const std::size_t end = std::min(program.size(), kMaxCalls * kCallBytes);
    CallModel model;
    Entries before = readEntries(folder().others());
    for (std::size_t at = 0; at + kCallBytes <= end; at += kCallBytes) {
        const Call call = callAt(program, at);
        if (takesLong(call, before)) continue;
        const Result result = make(call);
        const std::set<std::string> names = folder().changed();
        Entries after = names.empty() ? Entries() : readEntries(names, before);
        model.check(call, result, before, names.empty() ? before : after);
        Case::expect(folder().openDescriptors() == descriptors + (model.isListing() ? 1 : 0),
                     "only a listing stays open");
        note(files, call, result);
        if (!names.empty()) before = std::move(after);
        if (isAnyHuge(names)) break;
    }
    Case::expect(readEntries(folder().others()) == before, "no change has escaped notice");
    note(files, before);
    forgetState();
    Folder::remove(folder().others());
    return 0.0f;
}
