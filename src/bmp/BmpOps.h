#pragma once
// BmpOps: the one kind of BMP that the host writes for a map: 24 bits a pixel, uncompressed, bottom
// row first. All values are little-endian.
//
//   0   1   "B"
//   1   1   "M"
//   2   4   file size              written, never relied on
//   6   4   -
//   10  4   offset of the pixels   where the bottom row starts
//   14  4   -
//   18  4   width                  signed; 0 or below: no pixels
//   22  4   height                 signed; 0 or below (a top-down image): no rows
//   26  2   -
//   28  2   bits per pixel         only compared between files
//   30  4   -
//   34  4   bytes of all rows      written, never relied on
//   38  16  -
//
// Fields marked "-" are kept and not looked at. A pixel is blue, green and red, a byte each,
// whatever the bits per pixel say. A row is followed by as many bytes of padding as getPadding
// (BmpHeader.h) returns.
//
// A file shorter than 54 bytes is no BMP. One that ends before its last row is worked on as far as
// it has whole pixels.

#include <cstdint>

// The host's scripts test these numbers.
namespace bmp_status {
inline constexpr float kOk = 0.0f;
inline constexpr float kThumbNotOpened = -1.0f;    // thumbnail only
inline constexpr float kThumbNotABmp = -2.0f;      // thumbnail only: no "BM" at the start
inline constexpr float kOutputNotWritten = -5.0f;  // crop: output not opened, or the disk is full
inline constexpr float kNotABmp = -7.0f;           // no "BM", or shorter than its own headers
inline constexpr float kSizeRefused = -9.0f;       // no size at all, or one that no BMP can have
inline constexpr float kThumbTopDown = -9.0f;      // thumbnail only: a negative height
inline constexpr float kSizesDiffer = -30.0f;
inline constexpr float kLayoutsDiffer = -40.0f;       // offset of the pixels or bits per pixel
inline constexpr float kNotReopened = -101.0f;        // first or only file, for reading and writing
inline constexpr float kTargetNotReopened = -201.0f;  // the same for a merge's target
inline constexpr float kNotOpened = -1760.0f;         // only file, or a merge's target
inline constexpr float kSourceNotOpened = -1770.0f;   // a merge's source
}

// Folds one tile's map into the map that collects all tiles.
//
// A target pixel equal to the background takes the source's pixel; any other stays, so where both
// have a pixel the target's wins. Background: the source's first stored pixel, bottom left.
//
//   source   path, only read, though it must be writable
//   target   path, rewritten in place and never made longer. It is read and written only near the
//            pixels that the source has painted; without any, its modification time still moves. Pixels that one of the
//            files does not have are left alone.
//   returns  kOk, also when the disk fails once rows are being rewritten, which ends the merge
//            there; kNotOpened, kNotABmp (target first); kSourceNotOpened; kSizesDiffer;
//            kLayoutsDiffer; kNotReopened (source), also when its background cannot be read;
//            kTargetNotReopened
float mergeBMP(const char* source, const char* target);

// Exchanges two channels of every pixel, in place; the same mode again restores the file.
//
//   path     rewritten in place and never made longer
//   mode     1 blue and green, 2 blue and red, 3 green and red; any other leaves the file as it is
//   returns  kOk, also when the disk fails, which ends the exchange there; kNotOpened; kNotABmp;
//            kNotReopened
float swapChannelsBMP(const char* path, std::int32_t mode);

// Writes a band of columns of an image, without the bottom row and the two top rows. An image of less
// than 4 rows leaves the headers alone, with the height 3 less all the same. No export calls this.
//
//   input     path, whole in memory during the call; only read unless it is the output, too
//   output    path, replaced; all bytes before the pixels as the input has them, but for the sizes
//   xOffset   where the band starts in a row, in bytes: three times the first column. A band that
//             leaves its row goes on in the next one; what the input file does not have is black.
//   newWidth  width of the band in pixels; 0 or below leaves the headers alone
//   returns   kOk; kNotOpened; kNotABmp, also when the file ends before its pixels start;
//             kSizeRefused when the output would not fit into 4 GiB; kOutputNotWritten. The output
//             is touched only with kOk and kOutputNotWritten.
float cropBMP(const char* input, const char* output, std::int32_t xOffset, std::int32_t newWidth);

// Replaces an image by a small copy of it. Pixel (column j, row i) of the copy, from the bottom
// left, is the pixel at column floor(j * step), row floor(i * step), the products summed up as
// floats. The step is the image's longer side divided by `size`. A pixel of which the file has no
// byte beyond it, or that it lacks, is black.
//
//   path     rewritten in place, row by row, and cut off behind the copy
//   size     pixels of the copy's longer side; an image with both sides below it is left as it is.
//            The shorter side keeps the proportions, rounded down.
//   returns  kOk, also when the file cannot be written; kSizeRefused for 0 or below and for a copy
//            that would not fit into 4 GiB; kThumbNotOpened; kThumbNotABmp; kNotABmp when the file
//            is shorter than its headers or ends before its pixels start; kThumbTopDown, unless the
//            width is below `size`. Nothing is changed by a failure, unless the disk cannot be read
//            to the end: then kThumbNotOpened, with some of the pixels written over and without the
//            first two bytes, so that it is no longer a BMP.
float createBMPthumb(const char* path, std::int32_t size);
