#include "harness/Recipe.h"

#include <algorithm>

#include "bytes/Bytes.h"

namespace {

// Runs of one value, which merges take for background, between values that all differ.
ByteList fillerPattern() {
    ByteList pattern;
    for (std::size_t i = 0; i < UINT16_MAX; ++i)
        pattern.push_back(i % 64 < 24 ? 9 : static_cast<std::uint8_t>(i * 73 >> 2));
    return pattern;
}

}  // namespace

ByteList RecipeFile::whole() const {
    static const ByteList pattern = fillerPattern();
    ByteList file;
    file.reserve(bytes.size() + filler);
    file.insert(file.end(), bytes.begin(), bytes.end());
    file.insert(file.end(), pattern.begin(), pattern.begin() + filler);
    return file;
}

Recipe readRecipe(std::span<const std::uint8_t> input, std::size_t files) {
    Recipe recipe;
    const auto take = [&](std::size_t count) {
        const auto taken = input.first(std::min(count, input.size()));
        input = input.subspan(taken.size());
        return taken;
    };
    const auto numbers = take(recipe.numbers.size());
    std::copy(numbers.begin(), numbers.end(), recipe.numbers.begin());
    for (std::size_t i = 0; i < files; ++i) {
        const auto head = take(4);
        Bytes reader{head.data(), head.size()};
        const auto bytes = take(reader.le16(0));
        recipe.files.push_back({ByteList(bytes.begin(), bytes.end()), reader.le16(2)});
    }
    return recipe;
}

ByteList writeRecipe(const Recipe& recipe) {
    ByteList input(recipe.numbers.begin(), recipe.numbers.end());
    for (const RecipeFile& file : recipe.files) {
        const std::size_t count = std::min<std::size_t>(file.bytes.size(), UINT16_MAX);
        std::array<std::uint8_t, 4> head{};
        storeLe16(&head[0], static_cast<std::uint16_t>(count));
        storeLe16(&head[2], file.filler);
        input.insert(input.end(), head.begin(), head.end());
        input.insert(input.end(), file.bytes.begin(),
                     file.bytes.begin() + static_cast<std::ptrdiff_t>(count));
    }
    return input;
}
