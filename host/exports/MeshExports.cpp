#include "mesh/VemoOps.h"

#include "export/Quillon.h"
#include "exports/Groups.h"

using namespace vemo_status;

namespace {

constexpr const char* kNamingMode = "naming mode 0 to 3";
constexpr const char* kNamingModes =
    "The first tile is named `_u0_v0` in mode 0, `_u1_v1` in mode 1, `1001` in mode 2 and `u0v0` "
    "in mode 3. In mode 2 the tile right of 1010 has the name of the one above 1001, 1011. Only "
    "mode 2 applies the tile filter. A number below 0 counts as 0, one above 3 as 3, a fraction "
    "is cut off.";
constexpr Numbers kModes{.most = 3, .others = "clamped"};
constexpr const char* kNoMesh =
    "the mesh file cannot be opened or read, or there is too little memory";
constexpr Causes kNoMeshCauses = cause::kSourceNotOpened | cause::kReadFailed | cause::kNoMemory;
constexpr const char* kNoFaceUvs = "the mesh file has no face UVs, or they are cut short";
constexpr const char* kCheckUvs =
    "quillon inspect shows which chunks the mesh has and where they end. A chunk of length 0 ends "
    "the search for face UVs. A missing last byte counts as a repetition of the byte before it.";
constexpr const char* kCheckGroups =
    "quillon inspect shows which chunks the mesh has and where they end. A missing last byte "
    "counts "
    "as a repetition of the byte before it.";

constexpr StatusMeaning kClearUVtilesOutput[] = {{kOk, cause::kDone, "the tile filter is empty"}};

constexpr StatusMeaning kSetUVtilesOutput[] = {
    {kOk, cause::kDone, "the tile filter was read"},
    {kFilterNotOpened, cause::kSourceNotOpened | cause::kReadFailed | cause::kNoMemory,
     "the tile filter cannot be opened or read, or there is too little memory"},
    kMissingArgument};

constexpr StatusMeaning kGetUVTile[] = {{kMeshNotOpened, kNoMeshCauses, kNoMesh},
                                        {kChunkMissing, cause::kFileRefused, kNoFaceUvs},
                                        kMissingArgument};

constexpr StatusMeaning kGetUVGroups[] = {
    {kMeshNotOpened, kNoMeshCauses, kNoMesh},
    {kChunkMissing, cause::kFileRefused, "the mesh file has no face groups, or they are cut short"},
    kOnlyMissingArgument};

constexpr StatusMeaning kGetUVString[] = {
    {kOk, cause::kDone, "the name is copied where the tile exists"}};

constexpr StatusMeaning kClearUVString[] = {{kOk, cause::kDone, "the list of tile names is empty"}};

constexpr StatusMeaning kGetUVs[] = {{kUvExportMeshNotOpened, kNoMeshCauses, kNoMesh},
                                     {kChunkMissing, cause::kFileRefused, kNoFaceUvs},
                                     kMissingArgument};

constexpr StatusMeaning kGetUVsMask[] = {
    {kUvExportMeshNotOpened, kNoMeshCauses, kNoMesh},
    {kChunkMissing, cause::kFileRefused,
     "the mesh file has no vertices or no face UVs, they are cut short, or faces and face UVs "
     "differ in number"},
    {kFaceChunkMissing, cause::kFileRefused,
     "the mesh file has no faces, or one of them names a vertex that does not exist"},
    kMissingArgument};

constexpr StatusMeaning kMergeCrease[] = {
    {kOk, cause::kDone | cause::kDiskFull, "the mesh was appended"},
    {kMergedNotOpened, kNoMeshCauses, kNoMesh},
    {kMergeTargetNotOpened, cause::kTargetNotOpened | cause::kReadFailed | cause::kNoMemory,
     "the mesh file to append to cannot be opened or read, or there is too little memory"},
    {kMergeTargetNotCreated, cause::kTargetNotWritten, "the target cannot be written"},
    {kChunkMissing, cause::kFileRefused, "one of the files has less than 14 bytes"},
    kOnlyMissingArgument};

// What the exports that write a mesh per tile have in common.
constexpr Export tileExport(Export entry) {
    entry.text = "mesh";
    entry.value = kNamingMode;
    entry.valueName = "naming";
    entry.valueDetails = kNamingModes;
    entry.numbers = kModes;
    entry.writesTiles = true;
    entry.buffer = BufferUse::kPath;
    entry.bufferIs = "output path";
    entry.countOne = "tile was written";
    entry.countMany = "tiles were written";
    return entry;
}

constexpr Interruption kAppended{
    .sentence =
        "The end of the file may be missing, bytes of its own among it, and a second call "
        "appends the mesh once more: keep a copy.",
    .emptiesFirst = true,
    .canBeRepeated = false};

constexpr Export kExports[] = {
    {.name = "clearUVtilesOutput",
     .purpose = "Clears the tile filter, so that every tile passes again.",
     .writes = "Nothing.",
     .statuses = kClearUVtilesOutput,
     .example = "printf 'setUVtilesOutput filter.txt\\nclearUVtilesOutput\\n"
                "getUVTile model.Vemo 2\\n' | quillon script -",
     .output = "setUVtilesOutput        0  filter.txt\n"
               "clearUVtilesOutput      0\n"
               "getUVTile               2  model.Vemo, naming 2 gives 1002\n",
     .next = "It cannot fail."},
    {.name = "setUVtilesOutput",
     .purpose = "Reads the tile filter, a text file that lists the tiles to write.",
     .text = "tile filter",
     .writes = "Nothing. The filter applies to naming mode 2 until clearUVtilesOutput or the "
               "next setUVtilesOutput. The file has tile names and ranges, separated by commas "
               "or lines: `1001-1003, 1011`. Only blanks are left out: a tab, or the carriage "
               "return of a Windows line end, is a part of the name, which then is no tile's. A "
               "range whose end is below its start is left out; a filter in which nothing is "
               "left lets every tile pass.",
     .statuses = kSetUVtilesOutput,
     .example = "printf 'setUVtilesOutput filter.txt\\ngetUVTile model.Vemo 2\\n' | "
                "quillon script -",
     .output = "setUVtilesOutput        0  filter.txt\n"
               "getUVTile               1  model.Vemo, naming 2 gives 1002\n",
     .next = "See whether the file is there. After -1, and after -9 for lack of memory, the filter "
             "is empty, which lets every tile pass; after -9 for a missing text it is as it was."},
    {.name = "getUVTile",
     .purpose = "Counts the UV tiles that a mesh uses.",
     .text = "mesh",
     .value = kNamingMode,
     .valueName = "naming",
     .valueDetails = kNamingModes,
     .numbers = kModes,
     .buffer = BufferUse::kOutput,
     .bufferIs = "the last face's tile",
     .writes = "The name of the last face's tile goes to `buffer1`, whether the filter lets it "
               "pass or not.",
     .statuses = kGetUVTile,
     .countOne = "UV tile",
     .countMany = "UV tiles",
     .example = "quillon call getUVTile model.Vemo --value 2",
     .prints = {2.0f, "1002"},
     .next = kCheckUvs},
    {.name = "getUVGroups",
     .purpose = "Counts the face groups of a mesh.",
     .text = "mesh",
     .writes = "Nothing.",
     .statuses = kGetUVGroups,
     .countOne = "face group",
     .countMany = "face groups",
     .example = "quillon call getUVGroups model.Vemo",
     .prints = {2.0f},
     .next = kCheckGroups},
    {.name = "getUVString",
     .purpose = "Copies the name of a tile that getUVs or getUVsMask wrote last.",
     .value = "tile position from 0",
     .valueName = "position",
     .numbers = Numbers{.others = "ignored"},
     .buffer = BufferUse::kOutput,
     .bufferIs = "the tile's name",
     .writes = "The name goes to `buffer1`, which stays as it is where there is no such tile. Each "
               "getUVs and getUVsMask clears the names of the call before, even if it fails.",
     .statuses = kGetUVString,
     .example = "printf 'getUVs model.Vemo 2 maps/model.Vemo\\ngetUVString --value 1\\n' | "
                "quillon script -",
     .output = "getUVs                  2  model.Vemo to maps/model.Vemo, naming 2\n"
               "getUVString             0  position 1 gives 1002\n",
     .next = "0 also when there is no such tile: clear the block before the call, and count on no "
             "more positions than getUVs returned."},
    {.name = "clearUVString",
     .purpose = "Clears the names of the tiles that were written.",
     .writes = "Nothing.",
     .statuses = kClearUVString,
     .example = "quillon call clearUVString",
     .next = "It cannot fail."},
    tileExport(
        {.name = "getUVs",
         .purpose = "Writes a mesh once per tile, with that tile's UVs moved to 0 to 1.",
         .writes = "A mesh file per tile, named after `buffer1`: the path up to its last dot, "
                   "which may be in a folder's name, then the tile's name, then `.Vemo`. Corners "
                   "outside the tile have the UV -1, -1. Chunks "
                   "behind the face UVs are left out. The names are kept for getUVString.",
         .interrupted = &interruption::kWrittenAnew,
         .statuses = kGetUVs,
         .example = "quillon call getUVs model.Vemo --value 2 --buffer maps/model.Vemo",
         .prints = {2.0f},
         .next =
             "From 1501 on, where tiles count in the order of their names, see whether the "
             "folder of `buffer1` is there and may be written to, and whether the disk is full; "
             "files of tiles before that one are whole. Below 0: as for getUVTile."}),
    tileExport(
        {.name = "getUVsMask",
         .purpose = "Writes a mesh once per tile, with a mask of that tile's vertices.",
         .writes = "A mesh file per tile, named as by getUVs: the mesh without its last 16 "
                   "bytes, which are taken for the empty chunk that ends a mesh, then a byte per "
                   "vertex, 0 in the tile and 255 outside. The names are kept for getUVString.",
         .interrupted = &interruption::kWrittenAnew,
         .statuses = kGetUVsMask,
         .example = "quillon call getUVsMask model.Vemo --value 2 --buffer maps/mask.Vemo",
         .prints = {2.0f},
         .next = "As for getUVs, except that a chunk of length 0 is stepped over. Vertices, "
                 "faces and face UVs are searched for in this order, each behind the one before."}),
    {.name = "mergeCrease",
     .purpose = "Appends a mesh file to another.",
     .text = "mesh to append",
     .buffer = BufferUse::kPath,
     .bufferIs = "mesh to append to",
     .writes = "The file `buffer1` anew: its own bytes, then those of `text`, each without its "
               "last 14. What closes a mesh is shortened to two zero bytes, behind which exports "
               "find no chunk of the part appended. Whether the files are meshes is not checked. "
               "If the disk is full the file ends there, with the status 0.",
     .interrupted = &kAppended,
     .statuses = kMergeCrease,
     .example = "quillon call mergeCrease crease.Vemo --buffer model.Vemo",
     .next = "-1760 is about `text`, -2760 and -3760 are about `buffer1`. After 0 compare the "
             "size: it is that of both files less 28 bytes."},
};

}  // namespace

const ExportGroup& meshExports() {
    static constexpr ExportGroup kGroup{
        "Meshes",
        "The tile filter and the names of the tiles last as long as the process: calls that depend "
        "on each other belong in one quillon script.",
        kExports};
    return kGroup;
}
