#include "export/Quillon.h"
#include "exports/Groups.h"
#include "psd/PsdOps.h"

using namespace psd_status;

namespace {

constexpr StatusMeaning kVersion{kBadVersion, cause::kFileRefused,
                                 "a map is a PSD of another version than 1"};
constexpr StatusMeaning kTable{kHasColourTable, cause::kFileRefused, "a map has a colour table"};
constexpr StatusMeaning kPacked{kCompressed, cause::kFileRefused, "a map is compressed"};

constexpr StatusMeaning kMerge[] = {
    {kOk, cause::kDone | cause::kDiskFull, "the map was laid over the target"},
    {kNotOpened,
     cause::kSourceNotOpened | cause::kTargetNotOpened | cause::kReadFailed | cause::kFileRefused,
     "a map cannot be opened or read, is no PSD, or is cut short"},
    kVersion,
    kTable,
    kPacked,
    {kNotWritten, cause::kTargetNotWritten, "the target cannot be written"},
    {kSizesDiffer, cause::kFileRefused, "the maps differ in size"},
    {kUnknownKind, cause::kFileRefused, "the source is neither 8-bit RGB nor 16-bit grey"},
    kMissingArgument};

constexpr StatusMeaning kSwap[] = {
    {kOk, cause::kDone | cause::kDiskFull, "the colour planes were reordered"},
    {kNotOpened, cause::kSourceNotOpened | cause::kReadFailed | cause::kFileRefused,
     "the map cannot be opened or read, is no PSD, or is cut short"},
    kVersion,
    kTable,
    kPacked,
    {kNotWritten, cause::kSourceNotWritable, "the map cannot be written"},
    {kNotThreeBytes, cause::kFileRefused, "the map does not have three channels of 8 bits"},
    kRefusedArgument};

constexpr Interruption kLaidOver{
    .sentence =
        "At each place the target has the byte from before or the one from after. A second "
        "call completes it, unless the source paints the first pixel and that has been "
        "written, which comes last: then the map has another background."};

constexpr Export kExports[] = {
    {.name = "mergeMapsPSD",
     .purpose = "Lays one tile's PSD map over the map that collects all tiles.",
     .text = "source",
     .buffer = BufferUse::kPath,
     .bufferIs = "target",
     .writes = "The target's planes, in place: each pixel of the source that differs from the "
               "target's first pixel replaces the target's. Alpha stays the target's. If the disk "
               "is full the target ends where it could not be written, with the status 0. Pixels "
               "merged before a map cannot be read any further stay merged.",
     .interrupted = &kLaidOver,
     .statuses = kMerge,
     .example = "quillon call mergeMapsPSD 1002.psd --buffer all.psd",
     .next = "quillon inspect on both files; the target is judged first. Both must have their "
             "image data at one place, 8-bit RGB or 16-bit grey, uncompressed. Only the source's "
             "kind is checked: a target of another kind, or with its image data elsewhere, is "
             "damaged with the status 0. After 0 compare the target's size with that before."},
    {.name = "swapRGBPSD",
     .purpose = "Changes the order of the colour planes of an 8-bit RGB PSD map.",
     .text = "map",
     .value = "the order of the planes, 1 to 3",
     .valueName = "mode",
     .takes = takesSwap,
     .valueDetails = "1 leaves red, blue, green; 2 blue, red, green; 3 green, blue, red. 2 and 3 "
                     "rotate, so each undoes the other. Between 0 and 1 no plane is written: the "
                     "picture is lost.",
     .numbers = kSwaps,
     .writes = "The map's planes, in place. The colour mode is not checked: Lab and multichannel "
               "maps are taken, too. Of a map with layers only the merged image is changed. "
               "Bytes behind the planes are cut off. If the disk is full the map ends where it "
               "could not be written, with the status 0.",
     .interrupted = &interruption::kChangedInPlace,
     .statuses = kSwap,
     .example = "quillon call swapRGBPSD all.psd --value 2",
     .next = "quillon inspect shows channels and depth: an alpha channel or 16 bits are -56. After "
             "0 compare the map's size with that before."},
};

}  // namespace

const ExportGroup& psdExports() {
    static constexpr ExportGroup kGroup{
        "PSD maps", "One flat picture, uncompressed, without a colour table.", kExports};
    return kGroup;
}
