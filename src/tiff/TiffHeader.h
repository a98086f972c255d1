#pragma once
// TiffHeader: the one reader of TIFF directories. Which tags it reads stands in TiffOps.h.

#include <cstddef>
#include <cstdint>

#include "bytes/Bytes.h"

// What a file's first directory says. Fields of tags that it does not list are 0; numbers are as
// the file has them, so any may be negative.
struct TiffInfo {
    std::int32_t width = 0;
    std::int32_t length = 0;    // rows
    std::int32_t channels = 0;  // 1 or 3
    std::int32_t bitsPerSample = 0;
    std::int32_t stripOffset = 0;
    std::int32_t stripByteCount = 0;
};

// The bytes of a file that are searched for its directory. A shorter file counts as going on with
// its last byte.
inline constexpr std::size_t kTiffHeadBytes = 1000;

struct TiffHeader {
    float refused;  // tiff_status::kOk or why the file is not one that Quillon works on
    TiffInfo info;
    bool isEmpty;  // the directory lists nothing
};

// Reads the directory of the file at `path`. Samples of any depth are accepted.
//
//   returns  `notOpened` in `refused` when the file cannot be opened
TiffHeader readTiffHeader(const char* path, float notOpened);
