#pragma once
// What a byte of a file belongs to: a field of a header, an element of a mesh, a sample of an image.

#include <cstdint>
#include <string>
#include <vector>

#include "files/FileFacts.h"

// A step of the way from the file to the value: a number, which prints with its key, or a word, which
// prints alone.
struct Step {
    const char* key;  // such as "part", "face" or "channel"
    std::uint64_t number = 0;
    std::string word = {};  // empty: it is the number
};

struct Place {
    std::uint8_t byte;       // the file's byte there
    std::uint64_t offset;    // of the value to which it belongs
    std::uint64_t bytes;     // of that value
    std::vector<Step> path;  // such as the part "face UV chunk", face 3, corner 2, component "v"
    std::string value;       // empty where there is none, as in padding
};

// Returns the place of the byte at `offset`. All numbers count from 0, rows from the top. Throws
// Failure beyond the end of the file.
Place placeOf(const std::string& path, const FileFacts& facts, std::uint64_t offset);

// "face UV chunk, face 3, corner 2, v = 0.25".
std::string textOf(const Place& place);
