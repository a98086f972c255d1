#include "export/Quillon.h"
#include "exports/Groups.h"
#include "psd/PsdOps.h"

using namespace psd_status;

namespace {

constexpr StatusMeaning kVersion{kBadVersion, false, "a map is a PSD of another version than 1"};
constexpr StatusMeaning kTable{kHasColourTable, false, "a map has a colour table"};
constexpr StatusMeaning kPacked{kCompressed, false, "a map is compressed"};

constexpr StatusMeaning kMerge[] = {
    {kOk, true, "the map was laid over the target"},
    {kNotOpened, false, "a map cannot be opened, is no PSD, or is cut short"},
    kVersion,
    kTable,
    kPacked,
    {kNotWritten, false, "the target cannot be written"},
    {kSizesDiffer, false, "the maps differ in size"},
    {kUnknownKind, false, "the source is neither 8-bit RGB nor 16-bit grey"}};

constexpr StatusMeaning kSwap[] = {
    {kOk, true, "the colour planes were reordered"},
    {kNotOpened, false, "the map cannot be opened, is no PSD, or is cut short"},
    kVersion,
    kTable,
    kPacked,
    {kNotWritten, false, "the map cannot be written"},
    {kNotThreeBytes, false, "the map does not have three channels of 8 bits"}};

constexpr Export kExports[] = {
    {.name = "mergeMapsPSD",
     .purpose = "Lays one tile's PSD map over the map that collects all tiles.",
     .text = "source",
     .refuses = true,
     .buffer = BufferUse::kPath,
     .bufferIs = "target",
     .writes = "The target anew: each pixel of the source that differs from the target's first "
               "pixel replaces the target's. Alpha stays the target's.",
     .statuses = kMerge,
     .example = "quillon call mergeMapsPSD 1002.psd --buffer all.psd",
     .output = "status   0\n"
               "meaning  success: the map was laid over the target\n",
     .next = "quillon inspect on both files; the target is judged first. Both must have their "
             "image data at one place, 8-bit RGB or 16-bit grey, uncompressed. A full disk is not "
             "reported: compare the target's size."},
    {.name = "swapRGBPSD",
     .purpose = "Changes the order of the colour planes of an 8-bit RGB PSD map.",
     .text = "map",
     .value = "the order of the planes, 1 to 3",
     .valueName = "mode",
     .takes = takesSwap,
     .valueDetails = "1 leaves red, blue, green; 2 blue, red, green; 3 green, blue, red. 2 and 3 "
                     "rotate, so each undoes the other. Between 0 and 1 no plane is written: the "
                     "picture is lost.",
     .refuses = true,
     .writes = "The map anew. Bytes behind the three planes are left out.",
     .statuses = kSwap,
     .example = "quillon call swapRGBPSD all.psd --value 2",
     .output = "status   0\n"
               "meaning  success: the colour planes were reordered\n",
     .next = "quillon inspect tells channels and depth: an alpha channel or 16 bits are -56. A "
             "full disk is not reported: compare the map's size."},
};

}  // namespace

const ExportGroup& psdExports() {
    static constexpr ExportGroup kGroup{
        "PSD maps", "One flat picture, uncompressed, without a colour table.", kExports};
    return kGroup;
}
