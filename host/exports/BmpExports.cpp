#include "bmp/BmpOps.h"
#include "export/Quillon.h"
#include "exports/Groups.h"

using namespace bmp_status;

namespace {

constexpr StatusMeaning kMerge[] = {
    {kOk, true, "the map was folded into the target"},
    {kNotOpened, false, "the target cannot be opened"},
    {kSourceNotOpened, false, "the source cannot be opened"},
    {kNotABmp, false, "a file is no BMP, or shorter than its own headers"},
    {kSizesDiffer, false, "the maps differ in size"},
    {kLayoutsDiffer, false, "the maps differ in bits per pixel, or in where their pixels start"},
    {kNotReopened, false, "the source may not be written to"},
    {kTargetNotReopened, false, "the target may not be written to"}};

constexpr StatusMeaning kSwap[] = {
    {kOk, true, "the colour channels were exchanged"},
    {kNotOpened, false, "the map cannot be opened"},
    {kNotABmp, false, "the file is no BMP, or shorter than its own headers"},
    {kNotReopened, false, "the map may not be written to"}};

constexpr StatusMeaning kThumbnail[] = {
    {kOk, true, "the image was shrunk, unless it is that small already or may not be written to"},
    {kThumbNotOpened, false, "the image cannot be opened"},
    {kThumbNotABmp, false, "the file is no BMP"},
    {kNotABmp, false, "the file is shorter than its own headers, or ends before its pixels start"},
    {kSizeRefused, false, "the size is below 1, or beyond what a BMP or the memory can hold"}};

constexpr Export kExports[] = {
    {.name = "mergeMapsBMP",
     .purpose = "Folds one tile's BMP map into the map that collects all tiles.",
     .text = "source",
     .refuses = true,
     .buffer = BufferUse::kPath,
     .bufferIs = "target",
     .writes = "The target, in place: its pixels that equal the source's pixel at the bottom left "
               "take the source's; any other stays. The source is only read, yet it must be "
               "writable.",
     .statuses = kMerge,
     .example = "quillon call mergeMapsBMP 1002.bmp --buffer all.bmp",
     .output = "status   0\n"
               "meaning  success: the map was folded into the target\n",
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
     .refuses = true,
     .writes = "The map, in place. Pixels are taken to have 24 bits whatever the file says.",
     .statuses = kSwap,
     .example = "quillon call swapRGBBMP all.bmp --value 2",
     .output = "status   0\n"
               "meaning  success: the colour channels were exchanged\n",
     .next = "quillon inspect tells whether it is a BMP of 24 bits with its bottom row first. The "
             "same call again undoes an exchange."},
    {.name = "CreateThumbnailBMP",
     .purpose = "Replaces a BMP image by a small copy of it.",
     .text = "image",
     .value = "pixels of the longer side",
     .valueName = "size",
     .valueDetails = "The shorter side keeps the proportions, rounded down.",
     .writes = "The image anew, unless both its sides are below that size already: then it stays.",
     .statuses = kThumbnail,
     .example = "quillon call CreateThumbnailBMP all.bmp --value 32",
     .output = "status   0\n"
               "meaning  success: the image was shrunk, unless it is that small already or may "
               "not be written to\n",
     .next = "0 also when the file may not be written to: quillon inspect tells the size that it "
             "has now. Nothing is checked by the export itself; a missing path is -1."},
};

}  // namespace

const ExportGroup& bmpExports() {
    static constexpr ExportGroup kGroup{
        "BMP maps", "24 bits a pixel, uncompressed, bottom row first.", kExports};
    return kGroup;
}
