// One tile's map folded into the map of all tiles.

#include "bmp/BmpOps.h"
#include "harness/Target.h"

FUZZ_TARGET(bmp_merge, kBmp, 2) {
    const float status = mergeBMP(files.file(0), files.file(1));
    Case::expectStatus(status, {0.0f, -7.0f, -30.0f, -40.0f});
    files.expectUnchanged(0);
    files.expectSameSize(1);
    return status;
}
