#pragma once
// Recipe: the contents of one fuzz input: a few numbers and the files that an operation is given.
//
//   0  12 numbers, such as a mode or a size; each target says which it reads
//   12    the files, each:
//           0  2  how many of its bytes follow, little-endian
//           2  2  how many more it has, which repeat a fixed pattern: room for pixels, which need
//                 not be in the input
//           4     bytes
//
// Any input is a recipe: what it lacks is 0 or empty.

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

using ByteList = std::vector<std::uint8_t>;

struct RecipeFile {
    ByteList bytes;
    std::uint16_t filler = 0;

    ByteList whole() const;
};

struct Recipe {
    std::array<std::uint8_t, 12> numbers{};
    std::vector<RecipeFile> files;
};

Recipe readRecipe(std::span<const std::uint8_t> input, std::size_t files);

ByteList writeRecipe(const Recipe& recipe);
