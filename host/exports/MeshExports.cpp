#include "mesh/VemoOps.h"

#include "export/Quillon.h"
#include "exports/Groups.h"

using namespace vemo_status;

namespace {

constexpr const char* kNamingMode = "naming mode 0 to 3";
constexpr const char* kNamingModes =
    "The first tile is named `_u0_v0` in mode 0, `_u1_v1` in mode 1, `1001` in mode 2 and `u0v0` "
    "in mode 3. Only mode 2 heeds the tile filter. A number below 0 counts as 0, one above 3 as "
    "3, a fraction is cut off.";
constexpr const char* kNoMesh = "the mesh file cannot be opened or read";
constexpr const char* kNoFaceUvs = "the mesh file holds no face UVs, or they are cut short";
constexpr const char* kCheckMesh =
    "quillon inspect tells which chunks the mesh has and where they end.";

constexpr StatusMeaning kClearUVtilesOutput[] = {{kOk, true, "the tile filter is empty"}};

constexpr StatusMeaning kSetUVtilesOutput[] = {
    {kOk, true, "the tile filter was read"},
    {kFilterNotOpened, false, "the tile filter cannot be opened"}};

constexpr StatusMeaning kGetUVTile[] = {{kMeshNotOpened, false, kNoMesh},
                                        {kChunkMissing, false, kNoFaceUvs}};

constexpr StatusMeaning kGetUVGroups[] = {
    {kMeshNotOpened, false, kNoMesh},
    {kChunkMissing, false, "the mesh file holds no face groups, or they are cut short"}};

constexpr StatusMeaning kGetUVString[] = {{kOk, true, "the name is copied where the tile exists"}};

constexpr StatusMeaning kClearUVString[] = {{kOk, true, "the list of tile names is empty"}};

constexpr StatusMeaning kGetUVs[] = {{kUvExportMeshNotOpened, false, kNoMesh},
                                     {kChunkMissing, false, kNoFaceUvs}};

constexpr StatusMeaning kGetUVsMask[] = {
    {kUvExportMeshNotOpened, false, kNoMesh},
    {kChunkMissing, false,
     "the mesh file holds no vertices or no face UVs, they are cut short, or faces and face UVs "
     "differ in number"},
    {kFaceChunkMissing, false,
     "the mesh file holds no faces, or one of them names a vertex that does not exist"}};

constexpr StatusMeaning kMergeCrease[] = {
    {kOk, true, "the mesh was appended"},
    {kMergedNotOpened, false, kNoMesh},
    {kMergeTargetNotOpened, false, "the mesh file to append to cannot be opened or read"},
    {kMergeTargetNotCreated, false, "the target cannot be written"},
    {kChunkMissing, false, "one of the files is too short to be a mesh file"}};

// Of the exports that write a mesh per tile, what all have in common.
constexpr Export tileExport(Export entry) {
    entry.text = "mesh";
    entry.value = kNamingMode;
    entry.valueName = "naming";
    entry.valueDetails = kNamingModes;
    entry.refuses = true;
    entry.writesTiles = true;
    entry.buffer = BufferUse::kPath;
    entry.bufferIs = "output path";
    entry.countOne = "tile was written";
    entry.countMany = "tiles were written";
    return entry;
}

constexpr Export kExports[] = {
    {.name = "clearUVtilesOutput",
     .purpose = "Forgets the tile filter, so that every tile counts again.",
     .writes = "Nothing.",
     .statuses = kClearUVtilesOutput,
     .example = "printf 'setUVtilesOutput filter.txt\\nclearUVtilesOutput\\n"
                "getUVTile model.Vemo 2\\n' | quillon script -",
     .output = "setUVtilesOutput        0  filter.txt\n"
               "clearUVtilesOutput      0\n"
               "getUVTile               2  model.Vemo, naming 2 gives 1002\n",
     .next = "It cannot fail."},
    {.name = "setUVtilesOutput",
     .purpose = "Reads from a text file which tiles are wanted.",
     .text = "tile filter",
     .refuses = true,
     .writes = "Nothing. The filter holds for naming mode 2 until clearUVtilesOutput or the next "
               "setUVtilesOutput. The file has tile names and ranges, separated by commas or "
               "lines: `1001-1003, 1011`.",
     .statuses = kSetUVtilesOutput,
     .example = "printf 'setUVtilesOutput filter.txt\\ngetUVTile model.Vemo 2\\n' | "
                "quillon script -",
     .output = "setUVtilesOutput        0  filter.txt\n"
               "getUVTile               1  model.Vemo, naming 2 gives 1002\n",
     .next = "See whether the file is there. After -1 the filter is empty, which lets every tile "
             "pass."},
    {.name = "getUVTile",
     .purpose = "Counts the UV tiles that a mesh uses.",
     .text = "mesh",
     .value = kNamingMode,
     .valueName = "naming",
     .valueDetails = kNamingModes,
     .refuses = true,
     .buffer = BufferUse::kOutput,
     .bufferIs = "the last face's tile",
     .writes = "The name of the last face's tile goes to `buffer1`, whether the filter lets it "
               "pass or not.",
     .statuses = kGetUVTile,
     .countOne = "UV tile",
     .countMany = "UV tiles",
     .example = "quillon call getUVTile model.Vemo --value 2",
     .output = "status   2\n"
               "meaning  success: 2 UV tiles\n"
               "text     1002\n",
     .next = kCheckMesh},
    {.name = "getUVGroups",
     .purpose = "Counts the face groups of a mesh.",
     .text = "mesh",
     .refuses = true,
     .writes = "Nothing.",
     .statuses = kGetUVGroups,
     .countOne = "face group",
     .countMany = "face groups",
     .example = "quillon call getUVGroups model.Vemo",
     .output = "status   2\n"
               "meaning  success: 2 face groups\n",
     .next = kCheckMesh},
    {.name = "getUVString",
     .purpose = "Tells the name of a tile that getUVs or getUVsMask wrote last.",
     .value = "tile position from 0",
     .valueName = "position",
     .buffer = BufferUse::kOutput,
     .bufferIs = "the tile's name",
     .writes = "The name goes to `buffer1`, which stays as it is where there is no such tile.",
     .statuses = kGetUVString,
     .example = "printf 'getUVs model.Vemo 2 maps/model.Vemo\\ngetUVString --value 1\\n' | "
                "quillon script -",
     .output = "getUVs                  2  model.Vemo to maps/model.Vemo, naming 2\n"
               "getUVString             0  position 1 gives 1002\n",
     .next = "0 also when there is no such tile: clear the block before the call, and count on no "
             "more positions than getUVs answered."},
    {.name = "clearUVString",
     .purpose = "Forgets the names of the tiles that were written.",
     .writes = "Nothing.",
     .statuses = kClearUVString,
     .example = "quillon call clearUVString",
     .output = "status   0\n"
               "meaning  success: the list of tile names is empty\n",
     .next = "It cannot fail."},
    tileExport(
        {.name = "getUVs",
         .purpose = "Writes a mesh once per tile, with that tile's UVs brought to 0 to 1.",
         .writes = "A mesh file per tile, named after `buffer1`: without its extension, then the "
                   "tile's name, then `.Vemo`. Corners outside the tile have the UV -1, -1. Chunks "
                   "behind the face UVs are left out. The names are kept for getUVString.",
         .statuses = kGetUVs,
         .example = "quillon call getUVs model.Vemo --value 2 --buffer maps/model.Vemo",
         .output = "status   2\n"
                   "meaning  success: 2 tiles were written\n",
         .next =
             "From 1501 on see whether the folder of `buffer1` is there and may be written to, and "
             "whether the disk is full; files of tiles before that one are whole. Below 0: quillon "
             "inspect tells which chunks the mesh has."}),
    tileExport(
        {.name = "getUVsMask",
         .purpose = "Writes a mesh once per tile, with a mask of that tile's vertices.",
         .writes = "A mesh file per tile, named as by getUVs: the mesh as it is, then a byte per "
                   "vertex, 0 in the tile and 255 outside. The names are kept for getUVString.",
         .statuses = kGetUVsMask,
         .example = "quillon call getUVsMask model.Vemo --value 2 --buffer maps/mask.Vemo",
         .output = "status   2\n"
                   "meaning  success: 2 tiles were written\n",
         .next = "As for getUVs. -19 also for a face that names a vertex which does not exist."}),
    {.name = "mergeCrease",
     .purpose = "Appends a mesh file to another.",
     .text = "mesh to append",
     .refuses = true,
     .buffer = BufferUse::kPath,
     .bufferIs = "mesh to append to",
     .writes = "The file `buffer1` anew: its own bytes, then those of `text`, each without its "
               "last 14.",
     .statuses = kMergeCrease,
     .example = "quillon call mergeCrease crease.Vemo --buffer model.Vemo",
     .output = "status   0\n"
               "meaning  success: the mesh was appended\n",
     .next = "-1760 is about `text`, -2760 and -3760 are about `buffer1`. A full disk is not "
             "reported: the result is as long as both files less 28 bytes."},
};

}  // namespace

const ExportGroup& meshExports() {
    static constexpr ExportGroup kGroup{
        "Meshes",
        "The tile filter and the names of the tiles live in the process: calls that need each "
        "other belong in one quillon script.",
        kExports};
    return kGroup;
}
