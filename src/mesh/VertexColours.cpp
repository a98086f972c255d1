// The painted colours of a mesh as text.

#include "mesh/ObjText.h"
#include "mesh/VemoFile.h"
#include "mesh/VemoOps.h"

float ReadVertColorVemo(const char* in_path, char* out_path) {
    VemoFile vemo(in_path);
    if (!vemo.keep()) return vemo_status::kObjMeshNotOpened;
    const auto colours = vemo.elementsOf(kFirstChunk, kColourBytes);
    if (!colours) return vemo_status::kChunkMissing;

    ObjText text;
    if (!text.create(out_path)) return vemo_status::kTextNotCreated;
    text.addColourBlock(vemo.data() + colours->offset, colours->count);
    return vemo_status::kOk;
}
