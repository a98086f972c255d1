// A program of up to 40 calls of any exports on a folder of files that earlier calls made: outputs
// become inputs, sources become targets, files vanish between two calls.
//
// The first file is the program, four bytes a call: export, text, buffer1, value. The others are the files
// that the folder holds at the start.

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <bit>
#include <filesystem>
#include <fstream>
#include <limits>
#include <stdexcept>
#include <string_view>

#include "calls/CallModel.h"
#include "harness/Target.h"

namespace {

namespace fs = std::filesystem;

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

// A folder that calls work in, named by relative paths: a dot in an absolute one would count.
class WorkingFolder {
public:
    explicit WorkingFolder(const Case& files)
        : path_(fs::path(files.folderPath()) / "calls"), before_(fs::current_path()) {
        fs::create_directory(path_);
        Case::expect(::chdir(path_.c_str()) == 0, "a folder can be entered");
        std::ofstream(kNeverNamed).flush();
        for (std::size_t i = 0; i < kGiven.size(); ++i) {
            const ByteList& bytes = files.given(i + 1);
            if (bytes.empty()) continue;
            const auto count = static_cast<std::streamsize>(std::min(bytes.size(), kMaxFileBytes));
            std::ofstream(kGiven[i], std::ios::binary)
                .write(reinterpret_cast<const char*>(bytes.data()), count);
        }
    }
    WorkingFolder(const WorkingFolder&) = delete;
    WorkingFolder& operator=(const WorkingFolder&) = delete;
    ~WorkingFolder() {
        std::error_code ignored;
        fs::current_path(before_, ignored);
        fs::remove_all(path_, ignored);
    }

private:
    fs::path path_;
    fs::path before_;
};

ByteList readFile(const char* path, off_t size) {
    ByteList bytes(static_cast<std::size_t>(size));
    const int file = ::open(path, O_RDONLY | O_CLOEXEC);
    const ssize_t count = ::read(file, bytes.data(), bytes.size());
    ::close(file);
    Case::expect(count == static_cast<ssize_t>(bytes.size()), "a file in the folder can be read");
    return bytes;
}

Entries readFolder() {
    Entries entries;
    DIR* const folder = ::opendir(".");
    while (const dirent* const entry = ::readdir(folder)) {
        const char* const name = entry->d_name;
        if (name == std::string_view(".") || name == std::string_view("..")) continue;
        struct stat status {};
        ::lstat(name, &status);
        const bool isFolder = S_ISDIR(status.st_mode);
        entries[name] = {isFolder, isFolder ? ByteList() : readFile(name, status.st_size)};
    }
    ::closedir(folder);
    return entries;
}

// Of the first descriptors, more than ever are open here.
int openFiles() {
    constexpr int kDescriptors = 48;
    int count = 0;
    for (int file = 0; file < kDescriptors; ++file)
        count += ::fcntl(file, F_GETFD) != -1 ? 1 : 0;
    return count;
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
void note(std::ofstream& transcript, const Call& call, const Result& result) {
    const bool isListing = call.function.function == GetFile;
    transcript << call.function.name << ' ' << std::bit_cast<std::uint32_t>(result.status) << ' '
               << (isListing ? "" : result.text.value_or("")) << '\n';
}

void forgetState() {
    CloseFolder(nullptr, 0, nullptr, 0, nullptr, 0, nullptr);
    clearUVtilesOutput(nullptr, 0, nullptr, 0, nullptr, 0, nullptr);
    clearUVString(nullptr, 0, nullptr, 0, nullptr, 0, nullptr);
}

}  // namespace

FUZZ_TARGET(calls, kAny, 1 + kGiven.size()) {
    forgetState();
    std::ofstream transcript(files.output(), std::ios::binary);
    {
        const WorkingFolder folder(files);
        const int opened = openFiles();
        const ByteList& program = files.given(0);
        CallModel model;
        Entries before = readFolder();
        for (std::size_t at = 0;
             at + kCallBytes <= std::min(program.size(), kMaxCalls * kCallBytes);
             at += kCallBytes) {
            const Call call = callAt(program, at);
            const Result result = make(call);
            Entries after = readFolder();
            model.check(call, result, before, after);
            Case::expect(openFiles() == opened + (model.isListing() ? 1 : 0),
                         "only a listing stays open");
            note(transcript, call, result);
            before = std::move(after);
        }
        for (const auto& [name, entry] : before)
            transcript.write(reinterpret_cast<const char*>(entry.bytes.data()),
                             static_cast<std::streamsize>(entry.bytes.size()));
        forgetState();
    }
    return 0.0f;
}
