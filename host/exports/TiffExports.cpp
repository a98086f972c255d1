#include "export/Quillon.h"
#include "exports/Groups.h"
#include "tiff/TiffOps.h"

using namespace tiff_status;

namespace {

constexpr StatusMeaning kMapNotOpened{kNotOpened, cause::kSourceNotOpened | cause::kReadFailed,
                                      "the map cannot be opened or read"};
constexpr StatusMeaning kTargetUnwritten{
    kTargetNotWritten,
    cause::kTargetNotWritten | cause::kPathRefused | cause::kDiskFull | cause::kReadFailed,
    "the target cannot be written or is the map itself, the disk is full, or the map cannot be "
    "read to its end"};

// A refused directory. Readers of any depth and those of float maps return a wrong number of
// channels differently.
constexpr StatusMeaning kChannelCount{kBadSampleCount, cause::kFileRefused,
                                      "a map has neither 1 nor 3 channels"};
constexpr StatusMeaning kFloatChannelCount{kFloatBadSampleCount, cause::kFileRefused,
                                           "the map has neither 1 nor 3 channels"};
constexpr StatusMeaning kNoFloats{kNotFloat, cause::kFileRefused,
                                  "the map's samples are not 32-bit floats"};
constexpr StatusMeaning kPacked{kCompressed, cause::kFileRefused, "a map is compressed"};
constexpr StatusMeaning kPalette{kBadPhotometric, cause::kFileRefused,
                                 "a map is neither grey nor RGB"};
constexpr StatusMeaning kStrips{kSeveralStrips, cause::kFileRefused,
                                "a map has more than one strip"};
constexpr StatusMeaning kSampleFormats{kBadSampleFormatCount, cause::kFileRefused,
                                       "a map names sample formats for neither 1 nor 3 channels"};

constexpr StatusMeaning kEmptyMap{kNoPixels, cause::kFileRefused,
                                  "the map has no pixels, or no directory is found in it"};
constexpr StatusMeaning kFarStrip{kStripTooFar, cause::kFileRefused,
                                  "the map's pixels start 2 GiB or more into the file"};
constexpr StatusMeaning kShortMap{
    kPixelsMissing, cause::kFileRefused,
    "the map ends before its last row, or has fewer channels than asked for"};

constexpr StatusMeaning kMerge[] = {
    {kOk, cause::kDone, "the map was folded into the target"},
    {kNotOpened, cause::kSourceNotOpened | cause::kReadFailed,
     "the source cannot be opened or read"},
    {kTargetNotOpened, cause::kTargetNotOpened | cause::kReadFailed,
     "the target cannot be opened or read"},
    {kSizesDiffer, cause::kFileRefused,
     "the maps differ in size, or no directory is found in one of them"},
    {kSamplesDiffer, cause::kFileRefused, "the maps differ in channels or depth"},
    {kNotReopened, cause::kSourceNotOpened, "the source cannot be opened again"},
    {kTargetNotWritten, cause::kTargetNotWritten | cause::kDiskFull | cause::kReadFailed,
     "the target cannot be written, the disk is full, or a map cannot be read to its end"},
    kChannelCount,
    kPacked,
    kPalette,
    kStrips,
    kSampleFormats,
    kMissingArgument};

constexpr StatusMeaning kSwap[] = {
    {kOk, cause::kDone, "the channels of an 8-bit colour map were exchanged"},
    kMapNotOpened,
    {kNotReopened, cause::kSourceNotWritable | cause::kDiskFull | cause::kReadFailed,
     "the map may not be written to, the disk is full, or the map cannot be read to its end"},
    kChannelCount,
    kPacked,
    kPalette,
    {kStripInHeader, cause::kFileRefused,
     "the map has more than one strip, or its pixels would start in the first 8 bytes of the file, "
     "as in a tiled map, which has no tag 273"},
    kSampleFormats,
    kRefusedArgument};

constexpr StatusMeaning kConvert[] = {
    {kOk, cause::kDone, "the 16-bit map was written"},
    kMapNotOpened,
    {kNotReopened, cause::kSourceNotOpened, "the map cannot be opened again"},
    kTargetUnwritten,
    kFarStrip,
    kShortMap,
    kNoFloats,
    kFloatChannelCount,
    kPacked,
    kPalette,
    kStrips,
    kSampleFormats,
    {kSizeNotPlaced, cause::kFileRefused,
     "a size in the map's directory is behind the new header, which ends at byte 198 (grey) or 234 "
     "(colour)"},
    kRefusedArgument};

constexpr StatusMeaning kSingle[] = {
    {kOk, cause::kDone, "the first channel was written"},
    {quillon_status::kFailed, cause::kNullArgument | cause::kNoMemory,
     "there is too little memory"},
    kMapNotOpened,
    {kNotReopened, cause::kSourceNotWritable, "the map may not be written to"},
    kTargetUnwritten,
    kFarStrip,
    {kPixelsMissing, cause::kFileRefused,
     "the map ends before its last row, or has fewer than 3 channels"},
    kNoFloats,
    kFloatChannelCount,
    kPacked,
    kPalette,
    kStrips,
    kSampleFormats};

constexpr StatusMeaning kScale[] = {kMapNotOpened,
                                    {kNotReopened, cause::kSourceNotWritable | cause::kReadFailed,
                                     "the map may not be written to, or cannot be read to its end"},
                                    kEmptyMap,
                                    kFarStrip,
                                    kShortMap,
                                    kNoFloats,
                                    kFloatChannelCount,
                                    kPacked,
                                    kPalette,
                                    kStrips,
                                    kSampleFormats,
                                    kRefusedArgument};

constexpr int kLayouts[] = {1, 3, 4};
constexpr int kChannels[] = {1, 3};

bool takesLayout(double value) {
    return value == 1.0 || value == 3.0 || value == 4.0;
}
bool takesChannels(double value) {
    return value == 1.0 || value == 3.0;
}

constexpr Export kExports[] = {
    {.name = "mergeMapsTIF",
     .purpose = "Folds one tile's TIFF map into the map that collects all tiles.",
     .text = "source",
     .buffer = BufferUse::kPath,
     .bufferIs = "target",
     .writes = "The target, in place: its pixels that equal the source's first pixel take the "
               "source's; any other stays. Rows that a file does not have are left out. Pixels "
               "merged before a disk fails stay merged. The source is only read. `-20` is also "
               "printed.",
     .interrupted = &interruption::kWrittenOver,
     .statuses = kMerge,
     .example = "quillon call mergeMapsTIF 1002.tif --buffer all.tif",
     .next = "quillon inspect on both files: width, height, channels and depth must be equal, "
             "and so must the place of the pixels. 0 with nothing merged: the pixels do not "
             "start below their own length, as in a tiny map; the samples have 64 bits; or both "
             "files are no TIFF."},
    {.name = "swapRGBTIF",
     .purpose = "Exchanges two colour channels of an 8-bit TIFF map.",
     .text = "map",
     .value = "the exchange, 1 to 3",
     .valueName = "mode",
     .takes = takesSwap,
     .valueDetails = "1 exchanges green and blue, 2 red and blue, 3 red and green. A fraction is "
                     "cut off; between 0 and 1 nothing is exchanged.",
     .numbers = kSwaps,
     .writes = "The map, in place. A grey map, one of 16 bits or more, and a file in which no "
               "directory is found stay as they are, with the same status 0; rows that the file "
               "does not have are left out. When the disk fails, the pixels before that point "
               "stay exchanged. `-10` is also printed, and `-101` for a map that may not be "
               "written to.",
     .interrupted = &interruption::kChangedInPlace,
     .statuses = kSwap,
     .example = "quillon call swapRGBTIF all.tif --value 2",
     .next = "quillon inspect shows which tag is refused: the status is its number, negated "
             "except for 258. 0 with nothing exchanged: the directory is behind byte 1000, where "
             "many programs write it, or the file is a big-endian TIFF, a BigTIFF or no TIFF. "
             "The same call again undoes an exchange."},
    {.name = "convertTIFF16",
     .purpose = "Converts a map of 32-bit floats to 16 bits, a TIFF or a PSD.",
     .text = "map",
     .value = "target layout 1, 3 or 4",
     .valueName = "layout",
     .takes = takesLayout,
     .valueDetails = "1 grey to grey, 3 colour to colour, 4 colour to grey, from the first "
                     "channel. With layout 1 a colour map gives its samples in turn, red, green, "
                     "blue, with the status 0.",
     .numbers = Numbers{.choices = kLayouts, .others = "refused"},
     .buffer = BufferUse::kPath,
     .bufferIs = "target",
     .writes = "The target: a PSD if the layout is not 3 and `psd` or `PSD` follows the last dot "
               "of the path, which may be in a folder's name; else a TIFF. An older file is "
               "written over and then cut to the new length; if the disk fails, the older file "
               "is lost and a part of the new one is left. 0 to 1 becomes 0 to 65535. In a PSD "
               "width and height have changed places, which square maps do not show. In a TIFF a "
               "side above 65535 loses all but its low 16 bits. A map without pixels, or in "
               "which no directory is found, gives a header alone.",
     .interrupted = &interruption::kWrittenOver,
     .statuses = kConvert,
     .throws = "`buffer1` has no dot at all: std::out_of_range. It is the one exception that "
               "reaches a host.",
     .example = "quillon call convertTIFF16 height.tif --value 1 --buffer height16.tif",
     .next = "quillon inspect shows depth, channels and where the directory is. A TIFF is valid "
             "only if the map's directory is at byte 8 and starts with the tags 254, 256, 257, "
             "258, 259, 262, 273, 277, 278, 279: each size is written at the byte where it was "
             "found. Any other directory gives a damaged TIFF with the status 0, or -257 where "
             "that byte is behind the new header. Convert such a map to a PSD, or rewrite it "
             "first, as docs/formats.md shows. -279: the layout asks for three channels and the "
             "map has one."},
    {.name = "convertTIFFSingle",
     .purpose = "Writes the first channel of a three-channel float map.",
     .text = "map",
     .buffer = BufferUse::kPath,
     .bufferIs = "target",
     .writes = "The target: a TIFF of one channel of 32-bit floats. An older file is written over "
               "and then cut to the new length; if the disk fails, the older file is lost and a "
               "part of the new one is left. The map is only read, yet it must be writable. "
               "A map without pixels, or in which no directory is found, gives a header alone.",
     .interrupted = &interruption::kWrittenOver,
     .statuses = kSingle,
     .example = "quillon call convertTIFFSingle colour.tif --buffer first.tif",
     .next = "quillon inspect shows depth and channels. A missing argument is -1 here, where other "
             "exports return -9."},
    {.name = "getScale",
     .purpose = "Measures the scale of a displacement map by how many levels it has.",
     .text = "map",
     .value = "channels 1 or 3",
     .valueName = "channels",
     .takes = takesChannels,
     .valueDetails = "As many channels as the map has.",
     .numbers = Numbers{.choices = kChannels, .others = "refused"},
     .writes = "Nothing, yet the map must be writable.",
     .statuses = kScale,
     .countOne = "is the scale",
     .countMany = "is the scale",
     .countIsWhole = false,
     .example = "quillon call getScale height.tif --value 1",
     .prints = {233.48125f},
     .next = "quillon inspect shows depth and channels. A scale that is infinite comes from a "
             "map of 12 levels or fewer, such as a flat one. Here alone the directory may be "
             "anywhere; a big-endian TIFF and a BigTIFF are -1."},
};

}  // namespace

const ExportGroup& tiffExports() {
    static constexpr ExportGroup kGroup{
        "TIFF maps",
        "One strip, uncompressed, little-endian, 1 or 3 channels. For a refused directory the "
        "status is the number of the tag. No directory is found in a big-endian TIFF, in a "
        "BigTIFF, in most other files, and, except by getScale, behind byte 1000, where many "
        "programs write it. [formats.md](formats.md) shows how to rewrite such a map.",
        kExports};
    return kGroup;
}
