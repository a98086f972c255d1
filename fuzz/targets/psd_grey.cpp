// An RGB map as a grey one, with a black point.

#include "harness/Target.h"
#include "psd/PsdOps.h"

FUZZ_TARGET(psd_grey, kPsd, 1) {
    const bool replaces = files.byte(4) % 8 == 7;
    const float status =
        GrayscalePSD(files.file(0), replaces ? files.file(0) : files.output(), files.number(0));
    Case::expectStatus(status, {0.0f, -1.0f, -2.0f, -3.0f, -4.0f});
    if (!replaces) files.expectUnchanged(0);
    files.expectOutputs(!replaces && status == 0.0f ? 1 : 0);
    return status;
}
