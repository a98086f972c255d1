// A painted mesh as OBJ text; the first file is the base mesh whose faces are counted.

#include "harness/Target.h"
#include "mesh/VemoOps.h"

FUZZ_TARGET(vemo_obj, kVemo, 2) {
    const float bases = GetFaceIDsVemo(files.file(0), files.byte(0) - 3.0);
    Case::expect(bases >= 0.0f || bases == -18.0f, "the status is a count or a known one");
    const float status = writeOBJfromVemo(files.file(1), files.output());
    Case::expect(status >= 0.0f || status == -18.0f, "the status is a chunk id or a known one");
    files.expectUnchanged(0);
    files.expectUnchanged(1);
    const bool startsWithVertices = loadField(files.given(1), {32, 4}) == 10001;
    files.expectOutputs(startsWithVertices && status != -18.0f ? 1 : 0);
    return status;
}
