#pragma once
// TiffOps: the host's own TIFF maps: one strip, uncompressed, little-endian, one or three samples a
// pixel. Pixels run top row first, channels interleaved.
//
// Tags read, all from the first 1000 bytes (getScaleTiff: the whole file), 12 bytes each after a
// count of two bytes:
//   256 width         257 length         258 bits per sample (its count: channels)
//   259 compression   262 photometric    273 strip offset
//   279 strip bytes   339 sample format
// The byte order mark and the field types are not looked at.

// The host's scripts test these numbers. A refused tag returns its own number negated
// (-259: compressed), except where any depth is accepted: there a bad sample count stays positive.
namespace tiff_status {
inline constexpr float kOk = 0.0f;
inline constexpr float kNoPixels = -1.0f;          // getScaleTiff: a size below 1
inline constexpr float kNotOpened = -10.0f;        // first or only file
inline constexpr float kTargetNotOpened = -20.0f;  // also printed on standard output
inline constexpr float kSizesDiffer = -30.0f;      // also: the target has no directory
inline constexpr float kNotFloat = -32.0f;         // float-only readers
inline constexpr float kSamplesDiffer = -40.0f;    // channels or depth
inline constexpr float kNotReopened =
    -101.0f;  // first or only file, for pixel access; swapChannels
              // and getScaleTiff: also when that fails
inline constexpr float kTargetNotWritten = -201.0f;  // cannot be created, opened or filled, or a
                                                     // map cannot be read to its end
inline constexpr float kBadSampleCount = 258.0f;     // readers of any depth
inline constexpr float kFloatBadSampleCount = -258.0f;
inline constexpr float kCompressed = -259.0f;
inline constexpr float kBadPhotometric = -262.0f;  // a palette or beyond
inline constexpr float kSizeNotPlaced = -257.0f;  // conversion to TIFF: sizes too far into the file
inline constexpr float kSeveralStrips = -273.0f;
inline constexpr float kStripInHeader = -273.0f;  // swapChannels: in the file header, or no strip
inline constexpr float kStripTooFar = -274.0f;    // readers of float maps: from 2 GiB on
inline constexpr float kPixelsMissing = -279.0f;  // the file ends before the last row
inline constexpr float kBadSampleFormatCount = -339.0f;
}

// Folds one tile's map into the map that collects all tiles.
//
// A target pixel equal to the background takes the source's pixel; any other stays, so where both
// have a pixel the target's wins. Background: the source's first pixel, compared as raw bytes, so a
// float -0.0 is not +0.0.
//
//   source   path, only read
//   target   path, rewritten in place and never made longer. It is read and written only near the
//            pixels that the source has painted; without any, its modification time still moves. Its strip is taken to
//            start where the source has it. Rows that one of the files does not have are left alone;
//            pixels already written stay if a later one fails.
//   returns  kOk, also when the depth is not 8, 16 or 32 bits or when the strip does not start
//            below its own length, which leaves the target as it is; kNotOpened;
//            kTargetNotOpened, also printed; a refused tag (source first); kSizesDiffer;
//            kSamplesDiffer; kNotReopened; kTargetNotWritten
float mergeTiff(const char* source, const char* target);

// Exchanges two colour channels of an 8-bit colour map in place. Any other map stays as it is, and so
// does one whose pixels would start within the 8 bytes of the file header: exchanging those would
// damage the file.
//
//   mode     1: green and blue, 2: red and blue, 3: red and green; any other: nothing
//   returns  kOk; kNotOpened, also printed; kNotReopened, also printed unless a read or write
//            failed, which leaves the pixels before it exchanged; a refused tag; kStripInHeader.
//            Rows that the file does not have are left alone, and the file never grows.
float swapChannels(const char* path, int mode);

// Float maps. The next three read 32-bit samples only. They take a pixel to have as many channels
// as the caller says. A map whose strip starts at 2 GiB or beyond, or that ends before its last
// row, is refused before anything is written: kStripTooFar, kPixelsMissing. A map without pixels (a
// width or length below 1, no directory) converts to a header alone. Source and target must be two
// files. An old target is overwritten and in the end truncated to the new length. When a read or
// write fails, the old file is lost and a part of the new one is left.

// Writes the first channel of a three-channel float map as a one-channel float map.
//
//   source   path, only read, yet it must be writable
//   target   path, created or replaced: a header of 222 bytes, then the samples
//   returns  kOk, kNotOpened, a refused tag, kStripTooFar, kPixelsMissing, kNotReopened,
//            kTargetNotWritten
float singleChannelTiff(const char* source, const char* target);

// Turns a float map into a 16-bit map.
//
//   in       path, only read
//   out      path, created or replaced: the header, then the levels of the samples (0 to 1 becomes
//            0 to 65535). A TIFF, little-endian, with a header of 198 (grey) or 234 bytes (colour),
//            or a PSD, big-endian, with one of 40.
//   mode     1: grey to grey, 3: colour to colour, 4: colour to grey, the first channel
//   isPsd    not 0: PSD, except in mode 3, which is always a TIFF. The PSD's height is the map's
//            width and its width the map's length: square maps do not show it, and the files in the
//            field have it so.
//   returns  kOk, kNotOpened, a refused tag, kStripTooFar, kPixelsMissing, kNotReopened,
//            kTargetNotWritten; kSizeNotPlaced when a TIFF is wanted and a size or the byte count of
//            the map's directory has a place that the new header does not have
float convertTiff(const char* in, const char* out, int mode, int isPsd);

// Measures the scale of a displacement map from the number of different 16-bit levels in it: few
// levels give a large scale, up to infinity for a flat map.
//
//   path      only read, yet it must be writable
//   channels  1 or 3; all samples count, whatever the channel
//   returns   the scale, above 0; or kNotOpened, a refused tag, kNoPixels, kStripTooFar,
//             kPixelsMissing, kNotReopened
float getScaleTiff(const char* path, int channels);
