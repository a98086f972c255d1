#pragma once
// JpegBitmap: the BMP image that becomes a JPEG, a few rows at a time. Its layout stands in
// JpegOps.h.

#include <cstddef>
#include <cstdint>
#include <memory>

#include "encoders/JpegSegments.h"
#include "files/File.h"

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

    // Takes the pixels into memory when `path` leads to this very file, which the caller is about
    // to empty. False when memory does not suffice.
    bool keepFrom(const char* path);

    // Whether the file has a byte for any of the rows `first` to `end` - 1, counted from the
    // picture's top.
    bool hasRows(std::size_t first, std::size_t end) const;

    // Loads these rows at their padded size. Bytes that the file does not have are 0.
    //
    //   stage     memory for these rows as they lie in the file, stagedRowBytes() each
    //   to        the top row first, each pixel blue, green, red, rowBytes() a row
    void loadRows(std::size_t first, std::size_t end, std::uint8_t* stage, std::uint8_t* to) const;

    // A row as it lies in the file.
    std::size_t stagedRowBytes() const { return realRowBytes() + size_.width % 4u; }

private:
    static std::size_t padded(std::size_t side) { return (side + 7) / 8 * 8; }
    std::size_t realRowBytes() const { return std::size_t{3} * size_.width; }
    std::size_t turnedBytes() const { return rowBytes() % 65536; }
    bool isTurnedWhole() const { return turnedBytes() == rowBytes(); }
    std::uint64_t rowsInFile() const;
    void readRows(std::size_t firstInFile, std::size_t count, std::uint8_t* to) const;

    File file_;
    std::uint64_t pixelBytes_ = 0;  // those of them that the file has
    FrameSize size_;
    std::unique_ptr<std::uint8_t[]> kept_;  // pixelBytes_ once they were taken into memory
};
