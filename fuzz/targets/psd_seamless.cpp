// The borders of a map repaired from a displaced rendering; sides start at 100 pixels.

#include "harness/Target.h"
#include "psd/PsdOps.h"

FUZZ_TARGET(psd_seamless, kPsd, 2, 37000) {
    const float status = mergeSeamlessPSD(files.file(0), files.file(1), files.byte(0) % 2 == 1);
    Case::expectStatus(status, {0.0f, -1.0f, -2.0f, -3.0f, -4.0f, -6.0f, -9.0f});
    files.expectUnchanged(1);
    return status;
}
