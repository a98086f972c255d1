#pragma once
// PsdOps: the one kind of PSD file that the host writes for a texture map: one flat picture,
// uncompressed, without a colour table. All values are big-endian.
//
//   0        4  "8BPS"
//   4        2  version, 1
//   6        6  not looked at
//   12       2  channels: the number of planes
//   14       4  height: rows
//   18       4  width: columns
//   22       2  depth: bits a sample
//   24       2  colour mode: 1 grey, 3 RGB
//   26       4  length of the colour table, 0
//   30       4  length R of the image resources, which follow and are not looked at
//   34+R     4  length L of the layers and masks, which follow and are not looked at
//   38+R+L   2  compression, 0
//   40+R+L      image data: one plane after the other; in RGB red, green, blue, then alpha
//
// A plane holds its rows from the top one down, each from left to right, without padding. A sample
// takes depth/8 bytes. Where planes are said to be taken as 8-bit, depth and number of channels are
// not looked at: red, green and blue are the first three runs of width x height bytes.
//
// Everything before the image data is kept, except for the fields that an operation is documented to
// change.
//
// A file that ends before its image data, or before the end of a plane that the operation works on,
// is refused as kNotOpened before anything is written. Planes that the header announces beyond those
// need not be there.
//
// Every operation may be given the same path twice. Merging, swapping and replacing a colour write over
// the planes on disk, piece by piece; any other file is written as a whole, over the old one. A disk
// that then takes fewer bytes is not reported: the file ends there. One that fails to be read halfway
// is, as kNotOpened: a swap is then undone; what a merge or a replacement has done by then stays, so
// that the same call again completes it.

#include <cstdint>

// The host's scripts test these numbers.
namespace psd_status {
inline constexpr float kOk = 0.0f;
inline constexpr float kNotOpened = -1.0f;   // also: no PSD, or one that is cut short
inline constexpr float kBadVersion = -2.0f;  // the format for large documents, for one
inline constexpr float kHasColourTable = -3.0f;
inline constexpr float kCompressed = -4.0f;
inline constexpr float kNotWritten = -5.0f;   // the output cannot be opened; nothing was written
inline constexpr float kSizesDiffer = -6.0f;  // width or height of two pictures
inline constexpr float kBadSize = -9.0f;      // seams: below 100; thumbnail: side out of range
inline constexpr float kUnknownKind = 36.0f;  // merging: neither 8-bit RGB nor 16-bit grey
inline constexpr float kGrayscaleNotRgb = -3.0f;  // shares its number with the colour table
inline constexpr float kNotThreeBytes = -56.0f;   // swapping: not three channels of 8 bits
}

// Lays one tile's map over the map that collects all tiles: each source pixel that is not
// background replaces the target's, so where both have a pixel the source's wins. Background: the
// first pixel of the target. A pixel that differs from it in one byte counts as painted.
//
// The source's depth x colour mode decides: 24 is 8-bit RGB, 16 is 16-bit grey. Both files are taken
// to have their image data at one place: where the target has it (RGB), where the source has it (grey).
// Planes beyond the third, and bytes beyond the planes, stay the target's.
//
//   source   path, only read
//   target   path, rewritten near the pixels that the source has painted; at least its first pixel is
//            written
//   returns  kOk; kNotOpened, kBadVersion, kHasColourTable, kCompressed (target first);
//            kSizesDiffer; kUnknownKind; kNotWritten
float mergePSD(const char* source, const char* target);

// No export calls mergeSeamlessPSD, GrayscalePSD, convertPSD and createThumb.

// Repairs the borders of a map that wraps around, where filtering breaks at the texture's edge. The
// map is rendered twice, the second time displaced by 50 pixels with wrap-around, so that the texel
// of a border column c lies at (c + 50) mod width there.
//
// With `horizontal` the two leftmost and the two rightmost columns are replaced, from row 2 to the
// last but one; without it the ten uppermost and the ten lowermost rows. Planes are taken as 8-bit
// and to lie in both files where `plain` has them.
//
// Of `plain` only the size must be right. Other faults of its header do not matter: planes are
// taken to start where the reading of its header stopped (at 0 for a colour table, after the layers
// for a compressed file). A header that is refused before its size is read, for its signature or
// its version, counts as having the size of `shifted`.
//
//   shifted  path of the displaced map; rewritten with the repaired picture, header of `plain`. Of
//            its planes only the bytes that are copied must be there.
//   plain    path of the map with the broken borders, only read
//   returns  kOk; kNotOpened; kBadVersion, kHasColourTable, kCompressed (`shifted`); kBadSize when
//            `shifted` is lower or narrower than 100 pixels; kSizesDiffer; kNotWritten
float mergeSeamlessPSD(const char* shifted, const char* plain, bool horizontal);

// Changes the order of the colour planes, as normal maps want it whose axes differ between
// applications. Modes 2 and 3 rotate, they do not exchange.
//
//   mode     1      red, blue, green
//            2      blue, red, green
//            3      green, blue, red
//            other  writes no planes: the file ends before its image data
//   path     rewritten. Bytes beyond the three planes are left out.
//   returns  kOk, kNotOpened, kBadVersion, kHasColourTable, kCompressed, kNotThreeBytes when depth
//            x channels is not 24, kNotWritten
float swapChannelsPSD(const char* path, int mode);

// Writes an RGB map as a grey one: channels and colour mode become 1, one plane follows. Planes are
// taken as 8-bit, the depth field stays.
//
// Grey is 0.333 red + 0.333 green + 0.333 blue, rounded half up; the weights are the same for all
// three because a map is data, not a picture to look at. Then `level` is the black point: grey up
// to it becomes 0, 255 stays, and grey in between is lowered by (255 - grey) (level - 1) /
// (255 - level), in 32-bit integers that wrap, cut at 0.
//
//   input    path, only read
//   output   path, created, or written over and then cut to the new length. Ends where `input` could
//            not be read on; `input` itself then stays as it was.
//   returns  kOk, kNotOpened, kBadVersion, kHasColourTable, kCompressed, kGrayscaleNotRgb,
//            kNotWritten
float GrayscalePSD(const char* input, const char* output, std::int32_t level);

// Replaces one colour, or with `invert` all others, by another. Planes are taken as 8-bit; any
// beyond the third stay.
//
//   path        rewritten near the pixels that are replaced; its modification time is set even where
//               there are none
//   fromColour  red x 65536 + green x 256 + blue, each 0 to 255. Of a number beyond the range each
//               part keeps its low eight bits; NaN is black.
//   toColour    the same
//   returns     kOk, kNotOpened, kBadVersion, kHasColourTable, kCompressed, kNotWritten
float convertPSD(const char* path, float fromColour, float toColour, bool invert);

// Shrinks a map to a square thumbnail, a picture with black around it. Planes are taken as 8-bit.
// Height and width become `size`, three planes follow; the number of channels stays as it is, so
// that only a file of three makes a consistent thumbnail.
//
// The picture shows every step-th column and row: step is the longer side divided by `size`,
// rounded down, at least 1. A picture higher than wide starts (size - width / step) / 2 columns
// from the left, any other (size - height / step) / 2 rows from the top, not before the border; a
// picture smaller than the thumbnail, too, so it also has black on one side. Right below that
// margin comes the picture's row 0, right beside it column 0. What the step leaves over, r = width
// - step x size, is spread: column j of the picture shows column step x j + j / (size / r), in
// whole numbers, the same in each row, and rows go alike. Places past the picture's last column or
// row are black.
//
//   path     rewritten
//   size     side in pixels, 1 to 30000, the longest that the format has
//   returns  kOk; kBadSize before the file is looked at; kNotOpened; kBadVersion; kHasColourTable;
//            kCompressed; kNotWritten
float createThumb(const char* path, int size);
