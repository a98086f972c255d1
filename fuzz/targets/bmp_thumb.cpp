// An image replaced by a small copy.

#include "bmp/BmpOps.h"
#include "harness/Target.h"

FUZZ_TARGET(bmp_thumb, kBmp, 1) {
    const float status = createBMPthumb(files.file(0), files.number(0));
    Case::expectStatus(status, {0.0f, -2.0f, -7.0f, -9.0f});
    return status;
}
