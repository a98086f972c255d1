#include "bmp/BmpOps.h"
#include "export/Quillon.h"
#include "exports/Groups.h"

using namespace bmp_status;

namespace {

constexpr StatusMeaning kMerge[] = {
    {kOk, cause::kDone | cause::kDiskFull | cause::kReadFailed,
     "the map was folded into the target"},
    {kNotOpened, cause::kTargetNotOpened | cause::kReadFailed,
     "the target cannot be opened or read"},
    {kSourceNotOpened, cause::kSourceNotOpened | cause::kReadFailed,
     "the source cannot be opened or read"},
    {kNotABmp, cause::kFileRefused, "a file is no BMP, or shorter than its own headers"},
    {kSizesDiffer, cause::kFileRefused, "the maps differ in size"},
    {kLayoutsDiffer, cause::kFileRefused,
     "the maps differ in bits per pixel, or in where their pixels start"},
    {kNotReopened, cause::kSourceNotWritable | cause::kReadFailed,
     "the source may not be written to, or its first pixel cannot be read"},
    {kTargetNotReopened, cause::kTargetNotWritten, "the target may not be written to"},
    kMissingArgument};

constexpr StatusMeaning kSwap[] = {
    {kOk, cause::kDone | cause::kDiskFull | cause::kReadFailed,
     "the colour channels were exchanged"},
    {kNotOpened, cause::kSourceNotOpened | cause::kReadFailed, "the map cannot be opened or read"},
    {kNotABmp, cause::kFileRefused, "the file is no BMP, or shorter than its own headers"},
    {kNotReopened, cause::kSourceNotWritable, "the map may not be written to"},
    kRefusedArgument};

constexpr StatusMeaning kThumbnail[] = {
    {kOk, cause::kDone | cause::kSourceNotWritable | cause::kDiskFull,
     "the image was shrunk, unless it is that small already or may not be written to"},
    {kThumbNotOpened, cause::kNullArgument | cause::kSourceNotOpened | cause::kReadFailed,
     "the image cannot be opened or read"},
    {kThumbNotABmp, cause::kFileRefused, "the file is no BMP"},
    {kNotABmp, cause::kFileRefused | cause::kReadFailed,
     "the file is shorter than its own headers, ends before its pixels start, or cannot be read up "
     "to there"},
    {kSizeRefused, cause::kValueRefused | cause::kFileRefused | cause::kNoMemory,
     "the image is top-down (of negative height), the copy would be larger than a BMP can be, or "
     "there is too little memory"}};

bool takesSize(double value) {
    return value >= 1.0;
}

constexpr Export kExports[] = {
    {.name = "mergeMapsBMP",
     .purpose = "Folds one tile's BMP map into the map that collects all tiles.",
     .text = "source",
     .buffer = BufferUse::kPath,
     .bufferIs = "target",
     .writes = "The target, in place: its pixels that equal the source's pixel at the bottom "
               "left take the source's; any other stays. A top-down image (of negative height) "
               "stays as it is, with the same status 0, and so do pixels that one of the files "
               "does not have. If the disk is full or a map cannot be read to its end, the merge "
               "ends there, with the same status 0. The source is only read, yet it must be "
               "writable.",
     .interrupted = &interruption::kWrittenOver,
     .statuses = kMerge,
     .example = "quillon call mergeMapsBMP 1002.bmp --buffer all.bmp",
     .next = "quillon inspect on both files; the target is judged first. Width, height, bits per "
             "pixel and the offset of the pixels must be equal. -101 and -201: see who may write "
             "to the source and the target."},
    {.name = "swapRGBBMP",
     .purpose = "Exchanges two colour channels of a BMP map.",
     .text = "map",
     .value = "the exchange, 1 to 3",
     .valueName = "mode",
     .takes = takesSwap,
     .valueDetails = "1 exchanges blue and green, 2 blue and red, 3 green and red. A fraction is "
                     "cut off; between 0 and 1 nothing is exchanged.",
     .numbers = kSwaps,
     .writes =
         "The map, in place. Pixels are taken to have 24 bits and the header to have 40 bytes or "
         "more, so an image of 8 or 32 bits, or with the 12 bytes of an older header, is damaged "
         "with the same status 0. A top-down image (of negative height) stays as it is, with the "
         "same status 0, and pixels that the file does not have are left out. If the disk is "
         "full or the map cannot be read to its end, the exchange ends there, with the same "
         "status 0.",
     .interrupted = &interruption::kChangedInPlace,
     .statuses = kSwap,
     .example = "quillon call swapRGBBMP all.bmp --value 2",
     .next = "quillon inspect shows whether it is a BMP of 24 bits with its bottom row first. The "
             "same call again undoes an exchange."},
    {.name = "CreateThumbnailBMP",
     .purpose = "Replaces a BMP image by a small copy of it.",
     .text = "image",
     .value = "the longer side in pixels, at least 1",
     .valueName = "size",
     .takes = takesSize,
     .valueDetails = "The shorter side keeps the proportions, rounded down; where that is 0, "
                     "only the headers are left.",
     .numbers = Numbers{.least = 1, .others = "refused"},
     .writes =
         "The image, in place, cut off behind the copy, unless both its sides are below that "
         "size already: then it stays, and so does a top-down image whose width is below it. An "
         "image whose longer side has that size already is written again. Pixels are taken to "
         "have 24 bits. Those that the file does not have are black, and so is one that ends the "
         "file. If the disk is full the image ends there, with the status 0. If it cannot be "
         "read to its end, some of its pixels have been written over and its first two bytes are "
         "0.",
     .interrupted = &interruption::kChangedInPlace,
     .statuses = kThumbnail,
     .example = "quillon call CreateThumbnailBMP all.bmp --value 32",
     .next =
         "0 also when the file may not be written to or the disk is full: quillon inspect shows "
         "the size that it has now. A missing path is -1 here, where other exports return -9."},
};

}  // namespace

const ExportGroup& bmpExports() {
    static constexpr ExportGroup kGroup{
        "BMP maps", "24 bits a pixel, uncompressed, bottom row first.", kExports};
    return kGroup;
}
