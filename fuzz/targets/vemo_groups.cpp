// The different group ids of a mesh's faces.

#include "harness/Target.h"
#include "mesh/VemoOps.h"

FUZZ_TARGET(vemo_groups, kVemo, 1) {
    const float status = GetUVGroup(files.file(0));
    Case::expect((status >= 0.0f && status <= 65536.0f) || status == -18.0f,
                 "the status is a count or a known one");
    files.expectUnchanged(0);
    files.expectOutputs(0);
    return status;
}
