// Two channels of an image exchanged.

#include "bmp/BmpOps.h"
#include "harness/Target.h"

FUZZ_TARGET(bmp_swap, kBmp, 1) {
    const int mode = files.byte(0) % 5;
    const float status = swapChannelsBMP(files.file(0), mode);
    Case::expectStatus(status, {0.0f, -7.0f});
    files.expectSameBytes(0);
    return status;
}
