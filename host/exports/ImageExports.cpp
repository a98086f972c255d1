#include "encoders/ExrLoader.h"
#include "encoders/ExrRange.h"
#include "encoders/JpegOps.h"
#include "encoders/TargaOps.h"
#include "export/Quillon.h"
#include "exports/Groups.h"
#include "tiff/TiffOps.h"

namespace {

constexpr StatusMeaning kTarga[] = {
    {targa_status::kOk, true, "the Targa file was written"},
    {targa_status::kNotOpened, false, "the map cannot be opened"},
    {targa_status::kNotReopened, false,
     "the map may not be written to, or its disk fails; the target is not whole"},
    {targa_status::kTargetNotWritten, false, "the target cannot be written, or is the map itself"},
    {targa_status::kNoSize, false, "the map names no height or no channels"},
    {targa_status::kPixelsMissing, false, "the map claims far more rows than the file holds"},
    {tiff_status::kBadSampleCount, false, "the map has neither 1 nor 3 channels"},
    {tiff_status::kCompressed, false, "the map is compressed"},
    {tiff_status::kBadPhotometric, false, "the map is neither grey nor RGB"},
    {tiff_status::kSeveralStrips, false, "the map has more than one strip"},
    {tiff_status::kBadSampleFormatCount, false,
     "the map names sample formats for neither 1 nor 3 channels"}};

constexpr StatusMeaning kJpeg[] = {
    {jpeg_status::kOk, true, "the JPEG file was written"},
    {jpeg_status::kNotOpened, false, "the image cannot be opened"},
    {jpeg_status::kTooShort, false, "the image is shorter than its headers"},
    {jpeg_status::kNot24BitBmp, false, "the image is not a BMP of 24 bits per pixel"},
    {jpeg_status::kNoMemory, false, "there is too little memory for the image"},
    {jpeg_status::kTargetNotCreated, false,
     "the target cannot be created, or a path has 512 bytes and more"},
    {jpeg_status::kSizeRefused, false, "a side of the image is 0 or longer than 65528 pixels"}};

constexpr StatusMeaning kExr[] = {
    {static_cast<float>(exr_status::kNotExr), false, "the file is no OpenEXR file"},
    {static_cast<float>(exr_status::kBadVersion), false,
     "the file is of a version of OpenEXR that is not known"},
    {static_cast<float>(exr_status::kNoPath), false, "refused: the path is missing"},
    {static_cast<float>(exr_status::kBadData), false,
     "the file is damaged, deep, of several parts, or claims more than it can hold"},
    {static_cast<float>(exr_status::kNotOpened), false, "the file cannot be opened"},
    {static_cast<float>(exr_status::kUnknownFormat), false, "the file's compression is not known"},
    {static_cast<float>(exr_status::kBadHeader), false,
     "the file's header lacks what every OpenEXR file has"},
    {static_cast<float>(exr_status::kUnknownFeature), false, "the file's channels are subsampled"},
    {exr_range::kNoPixels, false, "the image has no pixels, or no number among its samples"}};

constexpr Export kExports[] = {
    {.name = "saveAsTarga",
     .purpose = "Writes an 8-bit TIFF map as an uncompressed Targa file.",
     .text = "map",
     .refuses = true,
     .buffer = BufferUse::kPath,
     .bufferIs = "target",
     .writes = "The target, created anew: 24 bits a pixel, bottom row first; grey becomes grey "
               "pixels. The map is only read, yet it must be writable.",
     .statuses = kTarga,
     .example = "quillon call saveAsTarga all.tif --buffer all.tga",
     .output = "status   0\n"
               "meaning  success: the Targa file was written\n",
     .next = "quillon inspect tells depth and channels. The depth is not looked at: a map of 16 or "
             "32 bits gives 0 and a picture without sense. The pixels must be the last bytes of "
             "the map."},
    {.name = "saveAsJpeg",
     .purpose = "Writes a BMP image as a JPEG file.",
     .text = "image",
     .value = "0 (finest) to 100, else 50",
     .valueName = "quality",
     .valueDetails = "How much is left out: 0 gives the finest picture and the largest file, 100 "
                     "the smallest file. A fraction is cut off.",
     .refuses = true,
     .buffer = BufferUse::kPath,
     .bufferIs = "target",
     .writes = "The target, created anew. The image is only read.",
     .statuses = kJpeg,
     .example = "quillon call saveAsJpeg all.bmp --value 20 --buffer all.jpg",
     .output = "status   0\n"
               "meaning  success: the JPEG file was written\n",
     .next = "quillon inspect tells whether it is a BMP of 24 bits whose pixels start at byte 54. "
             "3 to 6 are failures although they are above 0. A full disk is not reported."},
    {.name = "OpenEXR",
     .purpose = "Measures the range of values in an OpenEXR file's first channel.",
     .text = "image",
     .refuses = true,
     .writes = "Nothing.",
     .statuses = kExr,
     .countOne = "is the range of values",
     .countMany = "is the range of values",
     .example = "quillon call OpenEXR range.exr",
     .output = "status   3.5\n"
               "meaning  success: 3.5 is the range of values\n",
     .next = "quillon inspect tells the attributes, among them compression and channels. Save the "
             "image as one part of scan lines or tiles, its channels not subsampled."},
};

}  // namespace

const ExportGroup& imageExports() {
    static constexpr ExportGroup kGroup{"Targa, JPEG and OpenEXR",
                                        "Files for other programs, and files of theirs.", kExports};
    return kGroup;
}
