// The vertex colours of a mesh as text.

#include "harness/Target.h"
#include "mesh/VemoOps.h"

FUZZ_TARGET(vemo_colours, kVemo, 1) {
    const float status = ReadVertColorVemo(files.file(0), files.output());
    Case::expectStatus(status, {0.0f, -18.0f});
    files.expectUnchanged(0);
    files.expectOutputs(status == 0.0f ? 1 : 0);
    return status;
}
