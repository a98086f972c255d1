#pragma once
// ExrRange: the spread of values in an OpenEXR file, by which the host scales a displacement map.

namespace exr_range {
inline constexpr float kNoPixels = -131070.0f;
}

// The largest minus the smallest sample of a file's first channel. Both start at seeds, -65535 and
// 65535, so a file beyond one of them is measured from there; NaN counts as neither.
//
//   returns  the range, 0 or more; kNoPixels for a picture without pixels or in which no sample is
//            a number; the loader's code (ExrLoader.h)
float measureExrRange(const char* path);
