#pragma once
// The command-line host as a process, and a small mesh for it.

#include <string>
#include <vector>

#include "support/Run.h"
#include "support/VemoBuilder.h"

using Words = std::vector<std::string>;  // of a command line

// Runs quillon with these words and the options behind them.
inline Ended quillon(Words words, const Words& options = {}) {
    words.insert(words.end(), options.begin(), options.end());
    return run(commandLine(QUILLON_HOST, words));
}

// quillon as a shell script runs it, in which "$@" is the command.
inline Ended quillonInShell(const std::string& script, const Words& words) {
    Words line{"/bin/sh", "-c", script, "sh"};
    const Words command = commandLine(QUILLON_HOST, words);
    line.insert(line.end(), command.begin(), command.end());
    return run(line);
}

// The UVs of a quad: the middle quarter of a tile.
inline constexpr VemoBuilder::FaceUvs kMiddleOf1001 = {0.25f, 0.25f, 0.75f, 0.25f,
                                                       0.75f, 0.75f, 0.25f, 0.75f};
inline constexpr VemoBuilder::FaceUvs kMiddleOf1002 = {1.25f, 0.25f, 1.75f, 0.25f,
                                                       1.75f, 0.75f, 1.25f, 0.75f};

// Two quads. The first faces +z at y 0 to 2; the second faces +x at y 2 to 4.
inline ByteList twoQuads(const VemoBuilder::FaceUvs& first = kMiddleOf1001,
                         const VemoBuilder::FaceUvs& second = kMiddleOf1002) {
    return VemoBuilder()
        .vertices({{0, 0, 0},
                   {2, 0, 0},
                   {2, 2, 0},
                   {0, 2, 0},
                   {5, 2, 0},
                   {5, 4, 0},
                   {5, 4, 2},
                   {5, 2, 2}})
        .faces({{0, 1, 2, 3}, {4, 5, 6, 7}})
        .faceUvs({first, second})
        .closing()
        .bytes();
}
