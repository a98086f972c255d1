#pragma once
// TiffOps: the host's own TIFF maps: one strip, uncompressed, little-endian, one or three samples a
// pixel. Pixels run top row first, channels interleaved.
//
// Tags read, all from the first 1000 bytes of the file, 12 bytes each after a count of two bytes:
//   256 width         257 length         258 bits per sample (its count: channels)
//   259 compression   262 photometric    273 strip offset
//   279 strip bytes   339 sample format
// The byte order mark and the field types are not looked at.

// The host's scripts test these numbers. A refused tag answers with its own number negated
// (-259: compressed), save where any depth is accepted: there a bad sample count stays positive.
namespace tiff_status {
inline constexpr float kOk = 0.0f;
inline constexpr float kNotOpened = -10.0f;           // first or only file
inline constexpr float kTargetNotOpened = -20.0f;     // also printed on standard output
inline constexpr float kSizesDiffer = -30.0f;         // also: the target has no directory
inline constexpr float kNotFloat = -32.0f;            // float-only readers
inline constexpr float kSamplesDiffer = -40.0f;       // channels or depth
inline constexpr float kNotReopened = -101.0f;        // first or only file, for pixel access
inline constexpr float kTargetNotReopened = -201.0f;  // or not written
inline constexpr float kBadSampleCount = 258.0f;      // readers of any depth
inline constexpr float kFloatBadSampleCount = -258.0f;
inline constexpr float kCompressed = -259.0f;
inline constexpr float kBadPhotometric = -262.0f;  // a palette or beyond
inline constexpr float kSeveralStrips = -273.0f;
inline constexpr float kBadSampleFormatCount = -339.0f;
}

// Folds one tile's map into the map that collects all tiles.
//
// A target pixel equal to the background takes the source's pixel; any other stays, so where both
// have a pixel the target's wins. Background: the source's first pixel, compared as raw bytes, so a
// float -0.0 is not +0.0.
//
//   source   path, only read
//   target   path, rewritten in place and never made longer. Its strip is taken to lie where the
//            source has it. Rows that one of the files does not have are left alone; rows already
//            written stay if a later one fails.
//   returns  kOk, also when the depth is not 8, 16 or 32 bits or when the strip does not start
//   below
//            its own length, which leaves the target as it is; kNotOpened; kTargetNotOpened, also
//            printed; a refused tag (source first); kSizesDiffer; kSamplesDiffer; kNotReopened;
//            kTargetNotReopened
float mergeTiff(const char* source, const char* target);
