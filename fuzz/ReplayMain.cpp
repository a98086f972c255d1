// fuzz_replay TARGET FILE...: runs a target on inputs, or all inputs in a folder, without fuzzer.
// Needs only a compiler, so every test run repeats the seeds and every finding.

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>

#include "harness/Target.h"

namespace fs = std::filesystem;

namespace {

std::vector<fs::path> inputsAt(const fs::path& path) {
    if (!fs::is_directory(path)) return {path};
    return {fs::directory_iterator(path), fs::directory_iterator()};
}

void replay(const Target& target, const fs::path& path) {
    std::ifstream in(path, std::ios::binary);
    const ByteList input(std::istreambuf_iterator<char>(in), {});
    std::fprintf(stderr, "%s\n", path.c_str());  // the last one named is the one that failed
    runInput(target, input);
}

}  // namespace

int main(int argc, char** argv) {
    const Target* const target = argc > 2 ? findTarget(argv[1]) : nullptr;
    if (target == nullptr) {
        std::fprintf(stderr, "fuzz_replay TARGET FILE...\n");
        return 2;
    }
    int inputs = 0;
    for (int i = 2; i < argc; ++i) {
        for (const fs::path& path : inputsAt(argv[i])) {
            replay(*target, path);
            ++inputs;
        }
    }
    std::printf("%s: %d inputs\n", target->name, inputs);
    return inputs > 0 ? 0 : 1;
}
