// The range of values in an EXR file.

#include "encoders/ExrRange.h"
#include "harness/Target.h"

FUZZ_TARGET(exr, kExr, 1) {
    const float status = OpenEXR(files.file(0));
    if (!(status >= 0.0f))
        Case::expectStatus(status, {-1.0f, -2.0f, -4.0f, -8.0f, -9.0f, -10.0f, -131070.0f});
    files.expectUnchanged(0);
    files.expectOutputs(0);
    return status;
}
