#include <algorithm>
#include <random>
#include <string_view>

#include "calls/CallModel.h"
#include "seeds/SeedFiles.h"

namespace {

constexpr std::size_t kPrograms = 40;
constexpr std::size_t kCalls = 40;

// The bytes of a call as the target reads them: the places of its names and of its number.
ByteList call(std::string_view name, std::uint8_t text, std::uint8_t buffer, std::uint8_t value) {
    const auto* const found = std::ranges::find(kAllExports, name, &Export::name);
    return {static_cast<std::uint8_t>(found - kAllExports), text, buffer, value};
}

ByteList joined(std::initializer_list<ByteList> calls) {
    ByteList program;
    for (const ByteList& bytes : calls)
        program.insert(program.end(), bytes.begin(), bytes.end());
    return program;
}

// The export of a map as the host makes it, with its own files: filter, tiles, meshes, merges, end.
ByteList mapExport() {
    return joined({call("clearUVtilesOutput", 0, 0, 0), call("setUVtilesOutput", 9, 0, 0),
                   call("getUVTile", 6, 0, 0), call("getUVs", 6, 6, 0),
                   call("getUVString", 0, 0, 1), call("getUVString", 0, 0, 0),
                   call("clearUVString", 0, 0, 0), call("getUVsMask", 6, 7, 0),
                   call("FileCopyTo", 0, 1, 0), call("mergeMapsTIF", 0, 1, 0),
                   call("swapRGBTIF", 1, 0, 2), call("saveAsTarga", 1, 11, 0),
                   call("mergeCrease", 6, 7, 0), call("EmptyFolder", 16, 0, 0)});
}

ByteList listing() {
    return joined(
        {call("OpenFolder", 16, 0, 0), call("GetFile", 0, 0, 0), call("CreateFolder", 13, 0, 0),
         call("GetFile", 0, 0, 0), call("CheckFolder", 13, 0, 0), call("GetFile", 0, 0, 0),
         call("FileRename", 0, 13, 0), call("FileDelete", 13, 0, 0), call("CloseFolder", 0, 0, 0)});
}

ByteList anyCalls(std::minstd_rand& random) {
    ByteList program(4 * kCalls);
    std::ranges::generate(program, [&] { return static_cast<std::uint8_t>(random() >> 8); });
    return program;
}

const ByteList& any(const SeedFiles& files, std::minstd_rand& random) {
    return std::next(files.begin(), static_cast<std::ptrdiff_t>(random() % files.size()))->second;
}

}  // namespace

std::map<std::string, Recipe> callSeeds() {
    const SeedFiles tiffs = tiffSeeds();
    const SeedFiles psds = psdSeeds();
    const SeedFiles bmps = bmpSeeds();
    const SeedFiles meshes = vemoSeeds();
    const SeedFiles texts = textSeeds();
    const SeedFiles exrs = exrSeeds();
    std::minstd_rand random(34);
    std::map<std::string, Recipe> seeds;
    const auto add = [&](const std::string& name, const ByteList& program) {
        Recipe& recipe = seeds[name];
        for (const ByteList& bytes :
             {program, any(tiffs, random), any(tiffs, random), any(psds, random), any(bmps, random),
              any(meshes, random), any(texts, random), any(exrs, random)})
            recipe.files.push_back({bytes, 0});
    };
    add("map-export", mapExport());
    add("listing", listing());
    for (std::size_t i = 0; i < kPrograms; ++i)
        add("any-" + std::to_string(i), anyCalls(random));
    return seeds;
}
