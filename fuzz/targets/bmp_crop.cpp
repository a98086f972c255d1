// A band of columns of an image.

#include "bmp/BmpOps.h"
#include "harness/Target.h"

FUZZ_TARGET(bmp_crop, kBmp, 1) {
    const bool anySize = files.byte(8) % 4 == 0;
    const std::int32_t xOffset = anySize ? files.number(0) : files.number(0) % 100;
    const std::int32_t width = anySize ? files.number(4) : files.number(4) % 40;
    const bool replaces = files.byte(9) % 8 == 7;
    const float status =
        cropBMP(files.file(0), replaces ? files.file(0) : files.output(), xOffset, width);
    Case::expectStatus(status, {0.0f, -7.0f, -9.0f});
    if (!replaces) files.expectUnchanged(0);
    files.expectOutputs(!replaces && status == 0.0f ? 1 : 0);
    return status;
}
