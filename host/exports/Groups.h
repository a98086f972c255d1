#pragma once
// The groups of the table of exports, a file each. Exports.h documents their fields.

#include "export/Quillon.h"
#include "exports/Exports.h"
#include "mesh/VemoOps.h"

const ExportGroup& folderExports();
const ExportGroup& meshExports();
const ExportGroup& tiffExports();
const ExportGroup& psdExports();
const ExportGroup& bmpExports();
const ExportGroup& imageExports();

// The numbers that the exports take which reorder channels.
inline bool takesSwap(double value) {
    return value > 0.0 && value < 4.0;
}

inline constexpr Numbers kSwaps{.least = 1, .most = 3, .others = "refused"};

namespace interruption {
inline constexpr Interruption kOneStep{
    .sentence = "The call is done or not. Where it is done, a second call fails.",
    .isOneStep = true};
inline constexpr Interruption kWrittenOver{
    .sentence =
        "The target has the old length, the new one or one between them; at each place it "
        "has the byte from before, the one from after or, behind its old end, 0. A second "
        "call completes it."};
inline constexpr Interruption kWrittenAnew{
    .sentence =
        "An older file is gone, and the new one, or its end, may be missing. A second call "
        "completes it.",
    .emptiesFirst = true};
inline constexpr Interruption kChangedInPlace{
    .sentence =
        "A part of the file is changed. A second call would change that part once more: "
        "keep a copy.",
    .canBeRepeated = false};
}  // namespace interruption

// Rows of exports that refuse a null argument, or also a number. Most of them return the same when
// memory runs out.
inline constexpr StatusMeaning kMissingArgument{quillon_status::kRefused,
                                                cause::kNullArgument | cause::kNoMemory,
                                                "there is too little memory"};
inline constexpr StatusMeaning kOnlyMissingArgument{quillon_status::kRefused, cause::kNullArgument,
                                                    ""};
inline constexpr StatusMeaning kRefusedArgument{
    quillon_status::kRefused, cause::kNullArgument | cause::kValueRefused | cause::kNoMemory,
    "there is too little memory"};

// The row of the first tile; that of tile k has k more.
inline constexpr StatusMeaning kTileNotWritten{
    vemo_status::kFirstTileNotWritten, cause::kTargetNotWritten | cause::kDiskFull,
    "the file of the tile at position *k*, from 0 in the order of the names, cannot be created, or "
    "the disk is full"};
