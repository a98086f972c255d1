// fuzz_seeds FOLDER: writes the inputs that fuzzing starts from, a folder for each target.

#include <cstdio>
#include <filesystem>
#include <fstream>

#include "harness/Target.h"
#include "seeds/SeedFiles.h"

namespace {

namespace fs = std::filesystem;

const SeedFiles& seedsOf(const Format& format) {
    static const std::map<const Format*, SeedFiles> seeds = {
        {&kBmp, bmpSeeds()},   {&kExr, exrSeeds()},   {&kPsd, psdSeeds()},
        {&kText, textSeeds()}, {&kTiff, tiffSeeds()}, {&kVemo, vemoSeeds()}};
    return seeds.at(&format);
}

void write(const fs::path& path, const Recipe& recipe) {
    const ByteList input = writeRecipe(recipe);
    std::ofstream out(path, std::ios::binary);
    out.write(reinterpret_cast<const char*>(input.data()),
              static_cast<std::streamsize>(input.size()));
}

// The recipes of a target that is given files: one file with a few small numbers, two in every pair.
void writeSeeds(const Target& target, const fs::path& folder) {
    const auto add = [&](const std::string& name, std::uint8_t number,
                         const std::vector<ByteList>& files) {
        Recipe recipe;
        recipe.numbers[0] = recipe.numbers[4] = number;
        for (const ByteList& bytes : files)
            recipe.files.push_back({bytes, target.seedFiller});
        write(folder / (name + '-' + std::to_string(number)), recipe);
    };
    const SeedFiles& seeds = seedsOf(target.format);
    for (const auto& [name, bytes] : seeds) {
        for (std::uint8_t number = 0; target.files == 1 && number < 5; ++number)
            add(name, number, {bytes});
        if (target.files == 1) continue;
        for (const auto& [otherName, otherBytes] : seeds)
            add(name + '-' + otherName, 4, {bytes, otherBytes});
    }
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 2) {
        std::fprintf(stderr, "fuzz_seeds FOLDER\n");
        return 2;
    }
    for (const Target& target : allTargets()) {
        const fs::path folder = fs::path(argv[1]) / target.name;
        fs::remove_all(folder);
        fs::create_directories(folder);
        if (&target.format == &kAny) {
            for (const auto& [name, recipe] : callSeeds())
                write(folder / name, recipe);
        } else {
            writeSeeds(target, folder);
        }
    }
    return 0;
}
