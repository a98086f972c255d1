// One mesh file appended to another.

#include "harness/Target.h"
#include "mesh/VemoOps.h"

FUZZ_TARGET(vemo_merge, kVemo, 2) {
    const float status = mergeFiles(files.file(0), files.file(1));
    Case::expectStatus(status, {0.0f, -18.0f});
    files.expectUnchanged(0);
    if (status == 0.0f)
        Case::expect(files.sizeNow(1) + 28 == files.given(0).size() + files.given(1).size(),
                     "each mesh loses its last 14 bytes");
    return status;
}
