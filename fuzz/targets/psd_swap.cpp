// The colour planes in another order.

#include "harness/Target.h"
#include "psd/PsdOps.h"

FUZZ_TARGET(psd_swap, kPsd, 1) {
    const float status = swapChannelsPSD(files.file(0), files.byte(0) % 5);
    Case::expectStatus(status, {0.0f, -1.0f, -2.0f, -3.0f, -4.0f, -56.0f});
    return status;
}
