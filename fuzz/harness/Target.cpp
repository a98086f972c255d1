#include "harness/Target.h"

#include <fcntl.h>
#include <stdlib.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <bit>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <map>
#include <numeric>

#include "bytes/Bytes.h"

namespace {

constexpr const char* kInputName = "in";
constexpr const char* kOutputName = "out.tif";

// How much of an output is compared: a header may claim gigabytes of black.
constexpr std::size_t kMaxBytesCompared = std::size_t{128} * 1024;

[[noreturn]] void fail(const char* what) {
    std::fprintf(stderr, "\nDoes not hold: %s\n", what);
    std::abort();
}

// A folder for the files of one process, in memory where TMPDIR is.
class Folder {
public:
    Folder() {
        path_ = (std::filesystem::temp_directory_path() / "quillon-fuzz-XXXXXX").string();
        if (::mkdtemp(path_.data()) == nullptr) fail("there is a temporary folder");
    }
    Folder(const Folder&) = delete;
    Folder& operator=(const Folder&) = delete;
    ~Folder() {
        std::error_code ignored;
        std::filesystem::remove_all(path_, ignored);
    }

    const std::string& path() const { return path_; }

    std::vector<std::string> names() const {
        std::vector<std::string> found;
        for (const auto& entry : std::filesystem::directory_iterator(path_))
            found.push_back(entry.path().filename());
        return found;
    }

private:
    std::string path_;
};

const Folder& folder() {
    static const Folder folder;
    return folder;
}

void writeFile(const std::string& path, const ByteList& bytes) {
    const int file = ::open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666);
    if (file < 0) fail("an input can be created");
    if (::write(file, bytes.data(), bytes.size()) != static_cast<ssize_t>(bytes.size()))
        fail("an input can be written");
    ::close(file);
}

// A file's length and as much of its bytes as is compared.
struct FileState {
    off_t size = 0;
    ByteList bytes;
    bool operator==(const FileState&) const = default;
};

FileState readFile(const std::string& path) {
    const int file = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
    struct stat status {};
    if (file < 0 || ::fstat(file, &status) != 0) fail("a file that was there is there still");
    FileState state{status.st_size, {}};
    state.bytes.resize(std::min(static_cast<std::size_t>(status.st_size), kMaxBytesCompared));
    if (::read(file, state.bytes.data(), state.bytes.size()) !=
        static_cast<ssize_t>(state.bytes.size()))
        fail("a file can be read");
    ::close(file);
    return state;
}

int lowestFreeDescriptor() {
    const int descriptor = ::dup(STDERR_FILENO);
    ::close(descriptor);
    return descriptor;
}

struct Outcome {
    std::uint32_t status;  // the bits, so that one NaN equals another
    std::map<std::string, FileState> files;
    bool operator==(const Outcome&) const = default;
};

Outcome runOnce(const Target& target, const Recipe& recipe) {
    Case files(recipe, folder().path());
    const int descriptor = lowestFreeDescriptor();
    const float status = target.run(files);
    if (lowestFreeDescriptor() != descriptor) fail("no file is left open");
    if (status != 0.0f) {
        for (std::size_t i = 0; i < recipe.files.size(); ++i)
            files.expectUnchanged(i);
    }

    Outcome outcome{std::bit_cast<std::uint32_t>(status), {}};
    for (const std::string& name : folder().names()) {
        const std::string path = folder().path() + '/' + name;
        outcome.files.emplace(name, readFile(path));
        ::unlink(path.c_str());
    }
    return outcome;
}

// Some of the inputs, chosen by their bytes, so that a finding can be repeated.
bool isRunTwice(std::span<const std::uint8_t> input) {
    return std::accumulate(input.begin(), input.end(), input.size()) % 4 == 0;
}

std::vector<Target>& targets() {
    static std::vector<Target> list;
    return list;
}

}  // namespace

Case::Case(const Recipe& recipe, const std::string& folder)
    : recipe_(recipe), folder_(folder), output_(folder + '/' + kOutputName) {
    for (std::size_t i = 0; i < recipe.files.size(); ++i) {
        given_.push_back(recipe.files[i].whole());
        paths_.push_back(folder + '/' + kInputName + std::to_string(i));
        writeFile(paths_[i], given_[i]);
    }
}

std::int32_t Case::number(std::size_t index) const {
    return static_cast<std::int32_t>(loadLe32(&recipe_.numbers.at(index)));
}

float Case::real(std::size_t index) const {
    return loadLeFloat(&recipe_.numbers.at(index));
}

std::uint64_t Case::sizeNow(std::size_t index) const {
    return std::filesystem::file_size(paths_.at(index));
}

void Case::expect(bool holds, const char* what) {
    if (!holds) fail(what);
}

void Case::expectStatus(float status, std::initializer_list<float> known) {
    if (std::find(known.begin(), known.end(), status) != known.end()) return;
    std::fprintf(stderr, "status %g: ", static_cast<double>(status));
    fail("the status is a known one");
}

void Case::expectUnchanged(std::size_t index) const {
    expect(readFile(paths_.at(index)).bytes == given(index),
           "a file that is only read, or given to a call that is refused, stays as it is");
}

void Case::expectSameSize(std::size_t index) const {
    expect(sizeNow(index) == given(index).size(), "a file that is changed in place never grows");
}

void Case::expectSameBytes(std::size_t index) const {
    const auto histogram = [](const ByteList& bytes) {
        std::array<std::size_t, 256> counts{};
        for (const std::uint8_t byte : bytes)
            ++counts[byte];
        return counts;
    };
    expect(histogram(readFile(paths_.at(index)).bytes) == histogram(given(index)),
           "an exchange only moves bytes");
}

void Case::expectOutputs(std::size_t count) const {
    expect(folder().names().size() == paths_.size() + count,
           "a call creates the files that its status says");
}

const std::vector<Target>& allTargets() {
    return targets();
}

const Target* findTarget(const std::string& name) {
    const auto found = std::find_if(targets().begin(), targets().end(),
                                    [&](const Target& target) { return target.name == name; });
    return found == targets().end() ? nullptr : &*found;
}

AddTarget::AddTarget(const Target& target) {
    targets().push_back(target);
}

void runInput(const Target& target, std::span<const std::uint8_t> input) {
    const Recipe recipe = readRecipe(input, target.files);
    const Outcome first = runOnce(target, recipe);
    if (!isRunTwice(input)) return;
    // Older files, of which nothing may be left.
    for (const auto& [name, state] : first.files) {
        if (!name.starts_with(kInputName))
            writeFile(folder().path() + '/' + name, ByteList(state.bytes.size() + 5000, 0xEE));
    }
    if (!(runOnce(target, recipe) == first)) fail("the same call gives the same bytes");
}
