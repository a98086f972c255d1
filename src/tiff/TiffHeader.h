#pragma once
// TiffHeader: the one reader of TIFF directories. TiffOps.h lists the tags that it reads.

#include <cstddef>
#include <cstdint>
#include <vector>

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

// One directory entry as it is in the file.
struct TiffEntry {
    std::uint16_t tag = 0;
    std::uint32_t count = 0;
    std::uint32_t value = 0;  // or the offset of the values, where they take more than 4 bytes
    std::uint64_t valueOffset = 0;  // of the value field, from the start of the file
};

struct TiffHeader {
    float refused = 0.0f;  // tiff_status::kOk or why the file is not one that Quillon works on
    TiffInfo info;
    std::vector<TiffEntry> entries;  // up to the refused one; none for a file without a directory
};

// What a reader asks of a file.
struct TiffRules {
    // 32-bit samples only. A bad sample count is then refused with kFloatBadSampleCount.
    bool floatOnly = false;
    // The directory may be anywhere, and bytes past the end of the file read as 0; else it is
    // looked for in the first kTiffHeadBytes only.
    bool directoryAnywhere = false;
};

// A shorter file counts as repeating its last byte up to here.
inline constexpr std::size_t kTiffHeadBytes = 1000;

// Reads the directory of the file at `path`.
//
//   notOpened  the value of `refused` when the file cannot be opened or read
TiffHeader readTiffHeader(const char* path, float notOpened, const TiffRules& rules = {});
