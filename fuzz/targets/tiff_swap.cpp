// Two channels of a TIFF map exchanged.

#include "harness/Target.h"
#include "tiff/TiffOps.h"

FUZZ_TARGET(tiff_swap, kTiff, 1) {
    const int mode = files.byte(0) % 5;
    const float status = swapChannels(files.file(0), mode);
    Case::expectStatus(status, {0.0f, 258.0f, -259.0f, -262.0f, -273.0f, -339.0f});
    files.expectSameBytes(0);
    return status;
}
