// The first channel of a float map as a map of its own.

#include "harness/Target.h"
#include "tiff/TiffOps.h"

FUZZ_TARGET(tiff_single, kTiff, 1) {
    char* const target = files.byte(0) % 8 == 7 ? files.file(0) : files.output();
    const float status = singleChannelTiff(files.file(0), target);
    Case::expectStatus(status, {0.0f, -201.0f, -1.0f, -258.0f, -32.0f, -259.0f, -262.0f, -273.0f,
                                -274.0f, -279.0f, -339.0f});
    files.expectUnchanged(0);
    files.expectOutputs(status == 0.0f ? 1 : 0);
    return status;
}
