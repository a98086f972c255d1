// The painted colours of a mesh as text.

#include "mesh/ObjText.h"
#include "mesh/VemoFile.h"
#include "mesh/VemoOps.h"

float ReadVertColorVemo(const char* in_path, char* out_path) {
    const VemoFile vemo = loadVemo(in_path);
    if (!vemo.isOpen()) return vemo_status::kObjMeshNotOpened;
    const auto colours = chunkElements(vemo.loaded(), kFirstChunk, kColourBytes);
    if (!colours) return vemo_status::kChunkMissing;

    ObjText text(out_path);
    if (!text.isOpen()) return vemo_status::kTextNotCreated;
    text.addColourBlock(vemo.file.data.get() + colours->offset, colours->count);
    return vemo_status::kOk;
}
