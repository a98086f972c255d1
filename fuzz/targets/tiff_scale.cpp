// The scale of a displacement map, whose directory may be anywhere.

#include "harness/Target.h"
#include "tiff/TiffOps.h"

FUZZ_TARGET(tiff_scale, kTiff, 1) {
    const float status = getScaleTiff(files.file(0), files.byte(0) % 2 == 0 ? 1 : 3);
    if (!(status > 0.0f))
        Case::expectStatus(
            status, {-1.0f, -258.0f, -32.0f, -259.0f, -262.0f, -273.0f, -274.0f, -279.0f, -339.0f});
    files.expectUnchanged(0);
    files.expectOutputs(0);
    return status;
}
