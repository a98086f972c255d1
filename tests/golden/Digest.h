#pragma once
// The results of a case as text for the case's line of the transcript.

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

// A hash of 64 bits (FNV-1a).
class Digest {
public:
    void add(std::string_view bytes);
    std::uint64_t value() const { return value_; }

private:
    std::uint64_t value_ = 0xCBF29CE484222325u;
};

std::string hexadecimal(std::uint64_t value, int digits = 16);

// Returns all bytes in hexadecimal, or "LENGTH:DIGEST" for more than 24.
std::string shown(std::string_view bytes);

// Returns "COUNT:DIGEST" of all that is in a folder: names, and the bytes of files. The folder's own path
// does not count.
std::string shownFolder(const std::string& folder);
