#pragma once
// JpegBitmap: the BMP image that becomes a JPEG, a few rows at a time. Its layout is in
// JpegOps.h.

#include <cstddef>
#include <cstdint>
#include <memory>

#include "encoders/jpeg/JpegSegments.h"
#include "files/File.h"

// Rows of a picture in memory, each pixel blue, green, red.
struct BitmapRows {
    const std::uint8_t* top;
    std::ptrdiff_t step;  // from a row to the one below; negative where the lowest comes first
};

class JpegBitmap {
public:
    // Opens a file and reads its headers.
    //
    //   returns  kOk, kNotOpened, kTooShort, kNot24BitBmp, kSizeRefused (jpeg_status)
    float load_bitmap(const char* path);

    FrameSize realSize() const { return size_; }

    // With both sides brought up to a multiple of 8.
    std::size_t width() const { return padded(size_.width); }
    std::size_t height() const { return padded(size_.height); }
    std::size_t rowBytes() const { return 3 * width(); }

    // Loads the pixels into memory if `path` refers to this file, which the caller is about to empty.
    // False if there is not enough memory.
    bool loadIfSameAs(const char* path);

    // Whether the file has a byte for any of the rows `first` to `end` - 1, counted from the
    // picture's top.
    bool hasRows(std::size_t first, std::size_t end) const;

    // Loads these rows at their padded size. Bytes that the file does not have are 0. Rows that
    // need no padding are left as they are in the file.
    //
    //   stage     memory for these rows as they are in the file, stagedRowBytes() each
    //   padded    memory for the same rows at rowBytes() each
    BitmapRows loadRows(std::size_t first, std::size_t end, std::uint8_t* stage,
                        std::uint8_t* padded) const;

    // A row as it is in the file.
    std::size_t stagedRowBytes() const { return realRowBytes() + size_.width % 4u; }

private:
    static std::size_t padded(std::size_t side) { return (side + 7) / 8 * 8; }
    std::size_t realRowBytes() const { return std::size_t{3} * size_.width; }
    std::size_t flippedBytes() const { return rowBytes() % 65536; }
    bool isFlippedWhole() const { return flippedBytes() == rowBytes(); }
    bool needsPadding(std::size_t end) const { return width() > size_.width || end > size_.height; }
    std::uint64_t rowsInFile() const;
    void readRows(std::size_t firstInFile, std::size_t count, std::uint8_t* to) const;
    void padRows(std::size_t count, std::size_t paddedCount, std::uint8_t* rows) const;

    File file_;
    std::uint64_t pixelBytes_ = 0;  // that the file has
    FrameSize size_;
    std::unique_ptr<std::uint8_t[]> kept_;  // pixelBytes_, once loaded into memory
};
