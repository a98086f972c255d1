#pragma once
// BmpWriter: a new image made from the one in bmpV: its headers with other sizes, then new rows.

#include <cstddef>
#include <cstdint>

#include "files/PieceWriter.h"

// The sizes of an image that is to be written. A width or height of 0 or below has no pixels.
struct NewImage {
    std::int32_t width = 0;
    std::int64_t height = 0;  // the header takes its low 32 bits
    std::uint64_t rows = 0;
    std::uint64_t pixelsPerRow = 0;
    std::uint64_t padding = 0;     // bytes after each row
    std::uint64_t pixelBytes = 0;  // of all rows, padding included
};

NewImage newImage(std::int32_t width, std::int64_t height);

// Whether the file's size fits into its 32-bit field.
bool canBeWritten(const NewImage& image);

// Writes a file's rows, then what is before them: until then an interrupted output is no BMP. Black
// beyond the end of the file as it was is skipped rather than written: a file's unwritten bytes are
// zero, so a damaged file that promises rows of black costs neither time nor disk.
class BmpWriter {
public:
    // Empties the file at `path` and starts where bmpV has its pixels. Returns whether it is open.
    bool create(const char* path);

    // Starts there, too, but writes over an open image, which can be read on behind what has been
    // appended. What is left of it is cut off by finish. False when nothing can be written to it.
    bool writeOver(File image);

    void append(const std::uint8_t* bytes, std::size_t count) { rows_.append(bytes, count); }
    void appendBlack(std::uint64_t bytes);

    // Gives bmpV's headers the sizes of `image` and writes all that bmpV has before its pixels;
    // nothing is left behind them. False when the disk did not take every byte.
    bool finish(const NewImage& image);

private:
    PieceWriter rows_;
    std::uint64_t oldBytes_ = 0;  // of the file as it was
};
