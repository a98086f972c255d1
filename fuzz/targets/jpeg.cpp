// A BMP image as JPEG.

#include "encoders/JpegOps.h"
#include "harness/Format.h"
#include "harness/Target.h"

FUZZ_TARGET(jpeg, kBmp, 1) {
    if (isLongToCode(files.given(0))) return 0.0f;
    const bool replaces = files.byte(4) % 8 == 7;
    const float status =
        convertToJPEG(files.file(0), replaces ? files.file(0) : files.output(), files.number(0));
    Case::expectStatus(status, {0.0f, 4.0f, 5.0f, -9.0f});
    if (!replaces) files.expectUnchanged(0);
    files.expectOutputs(!replaces && status == 0.0f ? 1 : 0);
    return status;
}
