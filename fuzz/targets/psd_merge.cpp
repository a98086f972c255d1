// One tile's map laid over the map of all tiles.

#include "harness/Target.h"
#include "psd/PsdOps.h"

FUZZ_TARGET(psd_merge, kPsd, 2) {
    const float status = mergePSD(files.file(0), files.file(1));
    Case::expectStatus(status, {0.0f, -1.0f, -2.0f, -3.0f, -4.0f, -6.0f, 36.0f});
    files.expectUnchanged(0);
    files.expectSameSize(1);
    return status;
}
