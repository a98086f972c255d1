// quillon_fuzz TARGET [libFuzzer's arguments]: the fuzzer of every target, and the mutator that
// they share.

#include <stdlib.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <filesystem>
#include <random>
#include <string>

#include "harness/Target.h"

extern "C" std::size_t LLVMFuzzerMutate(std::uint8_t* data, std::size_t size, std::size_t maxSize);

namespace {

constexpr std::size_t kLongestInput = 2048;
constexpr std::size_t kBytesPerFile = 512;
constexpr const char* kTargetVariable = "QUILLON_FUZZ_TARGET";

const Target* target = nullptr;

[[noreturn]] void explainUsage() {
    std::fprintf(stderr, "quillon_fuzz TARGET [libFuzzer's arguments], one of:\n");
    for (const Target& known : allTargets())
        std::fprintf(stderr, "  %s\n", known.name);
    std::exit(2);
}

using Random = std::minstd_rand;

std::size_t below(Random& random, std::size_t count) {
    return static_cast<std::size_t>(random()) % count;
}

void mutateBytes(ByteList& bytes, std::size_t maxBytes) {
    const std::size_t size = std::min(bytes.size(), maxBytes);
    bytes.resize(std::max<std::size_t>(maxBytes, 1));
    bytes.resize(LLVMFuzzerMutate(bytes.data(), size, bytes.size()));
}

// A number at which readers fail: near a limit of the integer types or of this file, or what another
// field holds.
std::uint32_t interestingNumber(const ByteList& file, const std::vector<Field>& fields,
                                std::uint32_t now, Random& random) {
    static constexpr std::array<std::uint32_t, 16> kLimits = {
        0,      1,      2,       3,        4,           16,          32,          100,
        0x7FFF, 0x8000, 0xFFFFu, 0x10000u, 0x7FFFFFFFu, 0x80000000u, 0xFFFFFFF0u, 0xFFFFFFFFu};
    switch (below(random, 6)) {
        case 0:
            return kLimits[below(random, kLimits.size())];
        case 1:
            return loadField(file, fields[below(random, fields.size())]);
        case 2:
            return static_cast<std::uint32_t>(file.size() - below(random, 40) + 20);
        case 3:
            return now + static_cast<std::uint32_t>(below(random, 9)) - 4;
        case 4:
            return static_cast<std::uint32_t>(below(random, 64));
        default:
            return now ^ std::uint32_t{1} << below(random, 32);
    }
}

// A file without fields is mutated as bytes are.
void mutateField(ByteList& file, std::size_t maxBytes, Random& random) {
    const std::vector<Field> fields = target->format.fields(file);
    if (fields.empty()) {
        mutateBytes(file, maxBytes);
        return;
    }
    const Field field = fields[below(random, fields.size())];
    storeField(file, field, interestingNumber(file, fields, loadField(file, field), random));
}

// Operations on two files mostly need them to agree: copies a file or its start over another one.
void copyOver(RecipeFile& to, const RecipeFile& from, Random& random) {
    if (below(random, 2) == 0) {
        to = from;
        return;
    }
    const std::size_t count = std::min({from.bytes.size(), to.bytes.size(), below(random, 256)});
    std::copy_n(from.bytes.begin(), count, to.bytes.begin());
}

void mutate(Recipe& recipe, std::size_t maxBytes, Random& random) {
    const std::size_t index = below(random, recipe.files.size());
    const std::size_t other = below(random, recipe.files.size());
    RecipeFile& file = recipe.files[index];
    const std::size_t choice = below(random, 12);
    if (choice == 0)
        LLVMFuzzerMutate(recipe.numbers.data(), recipe.numbers.size(), recipe.numbers.size());
    else if (choice == 1)
        file.filler = static_cast<std::uint16_t>(below(random, 4) * below(random, 2500));
    else if (choice < 6)
        mutateBytes(file.bytes, maxBytes);
    else if (choice < 9 && other != index)
        copyOver(file, recipe.files[other], random);
    else
        mutateField(file.bytes, maxBytes, random);
    if (below(random, 2) == 0) target->format.repair(file.bytes, file.bytes.size() + file.filler);
}

}  // namespace

extern "C" const char* __asan_default_options();
extern "C" int LLVMFuzzerInitialize(int* argc, char*** argv);
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);
extern "C" std::size_t LLVMFuzzerCustomMutator(std::uint8_t* data, std::size_t size,
                                               std::size_t maxSize, unsigned seed);

// Memory is reused soon and keeps what was in it, so that an operation that reads what it did not
// write gives other bytes the second time. An input that breaks a target is looked at in fuzz_replay, whose
// reports tell more of where memory came from.
extern "C" const char* __asan_default_options() {
    return "quarantine_size_mb=1:thread_local_quarantine_size_kb=16:max_malloc_fill_size=0"
           ":malloc_context_size=1";
}

// Takes the target's name out of the arguments and names its dictionary instead. The processes that
// libFuzzer starts find the name in their environment.
extern "C" int LLVMFuzzerInitialize(int* argc, char*** argv) {
    static std::vector<char*> arguments(*argv, *argv + *argc);
    if (arguments.size() > 1 && findTarget(arguments[1]) != nullptr) {
        ::setenv(kTargetVariable, arguments[1], 1);
        arguments.erase(arguments.begin() + 1);
    }
    const char* const name = ::getenv(kTargetVariable);
    target = name == nullptr ? nullptr : findTarget(name);
    if (target == nullptr) explainUsage();

    static std::string dictionary =
        std::string("-dict=" QUILLON_FUZZ_DICTIONARIES "/") + target->format.name + ".dict";
    static std::string longest =
        "-max_len=" + std::to_string(std::max(kLongestInput, kBytesPerFile * target->files));
    // Inputs run in another working folder; one that breaks the target is left in this.
    static std::string broken =
        "-artifact_prefix=" + std::filesystem::current_path().string() + '/';
    arguments.insert(arguments.begin() + 1, {dictionary.data(), longest.data(), broken.data()});
    *argc = static_cast<int>(arguments.size());
    arguments.push_back(nullptr);
    *argv = arguments.data();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    runInput(*target, {data, size});
    return 0;
}

extern "C" std::size_t LLVMFuzzerCustomMutator(std::uint8_t* data, std::size_t size,
                                               std::size_t maxSize, unsigned seed) {
    Random random(seed);
    Recipe recipe = readRecipe({data, size}, target->files);
    const std::size_t maxBytes = maxSize / target->files;
    do
        mutate(recipe, maxBytes, random);
    while (below(random, 3) == 0);
    const ByteList input = writeRecipe(recipe);
    const std::size_t count = std::min(input.size(), maxSize);
    std::copy_n(input.begin(), count, data);
    return count;
}
