#pragma once
// JpegOps: baseline JPEG files from the 24-bit BMP images that the host writes.
//
// The BMP, little-endian; the bytes between these fields are ignored:
//   0   2  "BM"
//   18  4  width   } the low 16 bits of each count, so a top-down image, whose height is
//   22  4  height  } negative, is a very tall one whose rows end it, upside down
//   28  2  24: bits per pixel
//   54     rows from the bottom one up: blue, green, red; each row padded to a multiple of four
//          bytes. They are read from here whatever the header's pixel offset.
//
// The JPEG, big-endian:
//   SOI, APP0 (JFIF 1.01), COM, one DQT with both tables, SOF0 (three components, none of them
//   subsampled), one DHT with all four tables, SOS, the coded blocks of 8 x 8 pixels, EOI.
//
// A picture whose sides are not multiples of 8 is coded with its last column and its bottom row
// repeated; the frame header has its real size. The same BMP gives the same bytes on every
// machine.

// The host's scripts test these numbers.
namespace jpeg_status {
inline constexpr float kOk = 0.0f;
inline constexpr float kNotOpened = 3.0f;    // input
inline constexpr float kTooShort = 4.0f;     // input of less than 54 bytes
inline constexpr float kNot24BitBmp = 5.0f;  // no "BM", or other than 24 bits per pixel
inline constexpr float kNoMemory = 6.0f;     // for the pixels
inline constexpr float kTargetNotCreated = -1.0f;
inline constexpr float kTargetNotWritten = -1.0f;  // the disk is full
inline constexpr float kPathTooLong = -1.0f;
inline constexpr float kSizeRefused = -9.0f;  // a side of 0 or of more than 65528 pixels
}

// Writes a BMP image as JPEG.
//
//   in_path       only read, unless it is also the output
//   out_path      created or emptied once the input has been accepted. Neither path has 512
//                 bytes or more.
//   scale_factor  percentage of the standard quantisation tables: 100 takes them unchanged, less
//                 gives a finer picture and a larger file, 0 the finest. Only its low 8 bits count.
//   returns       kOk; kPathTooLong; kNotOpened; kTooShort; kNot24BitBmp; kSizeRefused; kNoMemory;
//                 kTargetNotCreated; kTargetNotWritten, which leaves what was written. With any
//                 other status except kOk no output is created.
//
// Rows that the BMP does not have are black. They take no memory and hardly any time: whatever size
// a header claims, only a band of rows is in memory, 4 MiB at most, and the whole file where it
// is also the output.
float convertToJPEG(const char* in_path, const char* out_path, int scale_factor);
