#pragma once
// The command-line host as a process, and small meshes for it.

#include <bit>
#include <string>
#include <vector>

#include "support/Run.h"
#include "support/TempDir.h"

inline Ended quillon(const std::vector<std::string>& arguments) {
    return run(commandLine(QUILLON_HOST, arguments));
}

// quillon as a shell script runs it, in which "$@" is the command.
inline Ended quillonInShell(const std::string& script, const std::vector<std::string>& arguments) {
    std::vector<std::string> line{"/bin/sh", "-c", script, "sh"};
    const std::vector<std::string> command = commandLine(QUILLON_HOST, arguments);
    line.insert(line.end(), command.begin(), command.end());
    return run(line);
}

// A file put together from little-endian words.
class Words {
public:
    Words& u32(std::initializer_list<std::uint32_t> values) {
        for (const std::uint32_t value : values) {
            for (int shift = 0; shift < 32; shift += 8)
                bytes_.push_back(static_cast<std::uint8_t>(value >> shift));
        }
        return *this;
    }
    Words& floats(std::initializer_list<float> values) {
        for (const float value : values)
            u32({std::bit_cast<std::uint32_t>(value)});
        return *this;
    }
    const ByteList& bytes() const { return bytes_; }

private:
    ByteList bytes_;
};

// Offsets in the file below, of a face's indices and of four corners' u and v.
inline constexpr int kFirstFace = 160;
inline constexpr int kFirstQuadUvs = 208;
inline constexpr int kSecondQuadUvs = 240;

// Two quads. The first fills the middle quarter of tile 1001 and faces +z at y 0 to 2; the second
// fills the middle quarter of tile 1002 and faces +x at y 2 to 4.
inline ByteList twoQuads() {
    constexpr std::uint32_t z = 0;
    return Words()
        .u32({z, z, z, z, z, z, z, z})
        .u32({10001, 112, 8, 0})
        .floats({0, 0, 0, 2, 0, 0, 2, 2, 0, 0, 2, 0})
        .floats({5, 2, 0, 5, 4, 0, 5, 4, 2, 5, 2, 2})
        .u32({20001, 48, 2, 0})
        .u32({0, 1, 2, 3, 4, 5, 6, 7})
        .u32({25001, 80, 2, 0})
        .floats({0.25f, 0.25f, 0.75f, 0.25f, 0.75f, 0.75f, 0.25f, 0.75f})
        .floats({1.25f, 0.25f, 1.75f, 0.25f, 1.75f, 0.75f, 1.25f, 0.75f})
        .u32({z, z, z, z})
        .bytes();
}
