#pragma once
// ExrRange: the spread of values in an OpenEXR file, by which the host scales a displacement map.

// The loader's codes, which the host gets unchanged; all negative.
namespace exr_status {
inline constexpr int kOk = 0;
inline constexpr int kNotExr = -1;      // the first four bytes are not those of an OpenEXR file
inline constexpr int kBadVersion = -2;  // not version 2
inline constexpr int kNoPath = -3;
inline constexpr int kBadData = -4;  // damaged, multipart, deep, without pixels, or larger than
                                     // its file allows
inline constexpr int kNotOpened = -7;
inline constexpr int kUnknownFormat = -8;    // a compression that the loader does not know
inline constexpr int kBadHeader = -9;        // an attribute is missing
inline constexpr int kUnknownFeature = -10;  // subsampled channels
}

namespace exr_range {
inline constexpr float kNoPixels = -131070.0f;
}

// The maximum minus the minimum sample of a file's first channel. They start at -65535 and 65535, so
// a file beyond one of these is measured from there; NaN changes neither. The export of the same name
// passes its path on to it.
//
//   returns  the range, 0 or more; kNoPixels when no sample is a number; one of exr_status
float OpenEXR(const char* path);
