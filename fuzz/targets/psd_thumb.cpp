// A map shrunk to a square thumbnail. Larger sides than here only take longer.

#include "harness/Target.h"
#include "psd/PsdOps.h"

FUZZ_TARGET(psd_thumb, kPsd, 1) {
    const float status = createThumb(files.file(0), files.number(0) % 200);
    Case::expectStatus(status, {0.0f, -1.0f, -2.0f, -3.0f, -4.0f, -9.0f});
    return status;
}
