#include "harness/Target.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstdio>
#include <numeric>

#include "bytes/Bytes.h"
#include "harness/Folder.h"

namespace {

constexpr const char* kOutputName = "out.tif";

// What a call returned and left.
struct Outcome {
    std::uint32_t status;  // the bits, so that one NaN equals another
    std::string notes;
    std::map<std::string, FileState> files;
    bool operator==(const Outcome&) const = default;
};

// Calls the operation and checks what holds for all of them.
float call(const Target& target, Case& files) {
    // Counted each time: libFuzzer opens some between two inputs when it looks for a function's name.
    const int descriptors = folder().openDescriptors();
    const float status = target.run(files);
    if (folder().openDescriptors() != descriptors) fail("no file is left open");
    files.finish(status);
    return status;
}

Outcome outcomeOf(const Case& files, float status) {
    Outcome outcome{std::bit_cast<std::uint32_t>(status), files.notes(), files.givenNow()};
    for (const std::string& name : files.outputs())
        outcome.files.emplace(name, readFile(name.c_str()));
    return outcome;
}

Outcome run(const Target& target, const Recipe& recipe) {
    Case files(recipe);
    const float status = call(target, files);
    return outcomeOf(files, status);
}

// The second run finds what the first left in memory, and older files, of which nothing may be left.
void runTwice(const Target& target, const Recipe& recipe) {
    const Outcome first = run(target, recipe);
    for (const std::string& name : folder().others())
        writeFile(name.c_str(), ByteList(first.files.at(name).bytes.size() + 5000, 0xEE));
    if (!(run(target, recipe) == first)) fail("the same call gives the same bytes");
}

// Some of the inputs, chosen by their bytes, so that a finding can be repeated.
bool isRunTwice(std::span<const std::uint8_t> input) {
    return std::accumulate(input.begin(), input.end(), input.size()) % 16 == 0;
}

std::vector<Target>& targets() {
    static std::vector<Target> list;
    return list;
}

}  // namespace

Case::Case(const Recipe& recipe) : recipe_(recipe), output_(kOutputName) {
    for (const RecipeFile& file : recipe.files)
        given_.push_back(file.whole());
    paths_.resize(given_.size());
}

char* Case::file(std::size_t index) {
    std::string& path = paths_.at(index);
    if (path.empty()) {
        folder().given(index).put(given_[index]);
        path = folder().given(index).name();
    }
    return path.data();
}

std::int32_t Case::number(std::size_t index) const {
    return static_cast<std::int32_t>(loadLe32(&recipe_.numbers.at(index)));
}

float Case::real(std::size_t index) const {
    return loadLeFloat(&recipe_.numbers.at(index));
}

const FileState& Case::now(std::size_t index) const {
    return folder().given(index).now();
}

std::uint64_t Case::sizeNow(std::size_t index) const {
    return static_cast<std::uint64_t>(now(index).size);
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
    expect(now(index).bytes == given(index),
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
    expect(histogram(now(index).bytes) == histogram(given(index)), "an exchange only moves bytes");
}

void Case::finish(float status) {
    for (std::size_t i = 0; i < paths_.size(); ++i) {
        if (paths_[i].empty()) continue;
        now(i);
        if (status != 0.0f) expectUnchanged(i);
    }
    outputs_ = folder().others();
    expect(outputs_.size() == expectedOutputs_, "a call creates the files that its status says");
}

std::map<std::string, FileState> Case::givenNow() const {
    std::map<std::string, FileState> states;
    for (std::size_t i = 0; i < paths_.size(); ++i) {
        if (!paths_[i].empty()) states.emplace(paths_[i], now(i));
    }
    return states;
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
    const Folder::Visit visit(folder());
    if (isRunTwice(input)) {
        runTwice(target, recipe);
        folder().remove(folder().others());
    } else {
        Case files(recipe);
        call(target, files);
        folder().remove(files.outputs());
    }
}
