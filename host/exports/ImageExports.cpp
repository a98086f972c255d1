#include "encoders/ExrRange.h"
#include "encoders/JpegOps.h"
#include "encoders/TargaOps.h"
#include "export/Quillon.h"
#include "exports/Groups.h"
#include "tiff/TiffOps.h"

namespace {

constexpr StatusMeaning kTarga[] = {
    {targa_status::kOk, cause::kDone, "the Targa file was written"},
    {targa_status::kNotOpened, cause::kSourceNotOpened | cause::kReadFailed,
     "the map cannot be opened or read"},
    {targa_status::kNotReopened, cause::kSourceNotWritable | cause::kReadFailed,
     "the map may not be written to, or cannot be read to its end; the target is not whole"},
    {targa_status::kTargetNotWritten,
     cause::kTargetNotWritten | cause::kPathRefused | cause::kDiskFull,
     "the target cannot be written or is the map itself, or the disk is full"},
    {targa_status::kNoSize, cause::kFileRefused,
     "the map names no height or no channels, or no directory is found in it"},
    {targa_status::kPixelsMissing, cause::kFileRefused,
     "the map claims far more rows than the file holds"},
    {tiff_status::kBadSampleCount, cause::kFileRefused, "the map has neither 1 nor 3 channels"},
    {tiff_status::kCompressed, cause::kFileRefused, "the map is compressed"},
    {tiff_status::kBadPhotometric, cause::kFileRefused, "the map is neither grey nor RGB"},
    {tiff_status::kSeveralStrips, cause::kFileRefused, "the map has more than one strip"},
    {tiff_status::kBadSampleFormatCount, cause::kFileRefused,
     "the map names sample formats for neither 1 nor 3 channels"},
    kMissingArgument};

constexpr StatusMeaning kJpeg[] = {
    {jpeg_status::kOk, cause::kDone | cause::kReadFailed, "the JPEG file was written"},
    {jpeg_status::kNotOpened, cause::kSourceNotOpened, "the image cannot be opened"},
    {jpeg_status::kTooShort, cause::kFileRefused | cause::kReadFailed,
     "the image is shorter than its headers, or they cannot be read"},
    {jpeg_status::kNot24BitBmp, cause::kFileRefused, "the image is not a BMP of 24 bits per pixel"},
    {jpeg_status::kNoMemory, cause::kNoMemory, "there is too little memory for the image"},
    {jpeg_status::kTargetNotCreated,
     cause::kTargetNotWritten | cause::kPathRefused | cause::kDiskFull,
     "the target cannot be created, the disk is full, or a path has 512 bytes and more"},
    {jpeg_status::kSizeRefused, cause::kNullArgument | cause::kFileRefused | cause::kNoMemory,
     "a side of the image is 0 or longer than 65528 pixels (its low 16 bits count), or there is "
     "too little memory"}};

constexpr StatusMeaning kExr[] = {
    {static_cast<float>(exr_status::kNotExr), cause::kFileRefused, "the file is no OpenEXR file"},
    {static_cast<float>(exr_status::kBadVersion), cause::kFileRefused,
     "the file is of a version of OpenEXR that is not known"},
    {static_cast<float>(exr_status::kNoPath), cause::kNullArgument, ""},
    {static_cast<float>(exr_status::kBadData), cause::kFileRefused | cause::kNoMemory,
     "the file is damaged, deep, of several parts, has less than 8 bytes or claims more than it "
     "can hold, or there is too little memory"},
    {static_cast<float>(exr_status::kNotOpened),
     cause::kSourceNotOpened | cause::kReadFailed | cause::kNoMemory,
     "the file cannot be opened or read, or there is too little memory"},
    {static_cast<float>(exr_status::kUnknownFormat), cause::kFileRefused,
     "the file's compression is not known"},
    {static_cast<float>(exr_status::kBadHeader), cause::kFileRefused,
     "the file's header lacks what every OpenEXR file has"},
    {static_cast<float>(exr_status::kUnknownFeature), cause::kFileRefused,
     "the file's channels are subsampled"},
    {exr_range::kNoPixels, cause::kFileRefused, "none of the image's samples is a number"}};

constexpr Export kExports[] = {
    {.name = "saveAsTarga",
     .purpose = "Writes an 8-bit TIFF map as an uncompressed Targa file.",
     .text = "map",
     .buffer = BufferUse::kPath,
     .bufferIs = "target",
     .writes = "The target: 24 bits a pixel, bottom row first; grey becomes grey pixels. The "
               "header has the low 16 bits of a side. An older file is written over and then cut "
               "to the new length; if a disk fails, the older file is lost and a part of the new "
               "one is left. The map is only read, yet it must be writable.",
     .interrupted = &interruption::kWrittenOver,
     .statuses = kTarga,
     .example = "quillon call saveAsTarga all.tif --buffer all.tga",
     .next = "quillon inspect shows depth and channels. Depth and place of the pixels are not "
             "checked: the last bytes of the file are taken as 8-bit samples. A map of 16, 32 or "
             "64 bits, one with anything behind its pixels, such as a second page, and one that "
             "is cut short give 0 and a wrong image; a width or height of 0 gives 0 and a header "
             "alone."},
    {.name = "saveAsJpeg",
     .purpose = "Writes a BMP image as a JPEG file.",
     .text = "image",
     .value = "0 (best) to 100, else 50",
     .valueName = "quality",
     .valueDetails =
         "How much detail is left out: 0 gives the best image and the largest file, 100 "
         "the smallest file. A fraction is cut off.",
     .numbers = Numbers{.most = 100, .others = "replaced", .replacement = 50},
     .buffer = BufferUse::kPath,
     .bufferIs = "target",
     .writes = "The target, created anew. The image is only read; rows that it does not have or "
               "that cannot be read are black, with the same status 0. Of a side only the low 16 "
               "bits count: 65544 pixels become 8, and a top-down image (of negative height) "
               "becomes a very tall one. Above 21845 pixels wide only the left end of the rows "
               "is the right way up. If the disk is full a part of the target is left.",
     .interrupted = &interruption::kWrittenAnew,
     .statuses = kJpeg,
     .example = "quillon call saveAsJpeg all.bmp --value 20 --buffer all.jpg",
     .next = "quillon inspect shows whether it is a BMP of 24 bits whose pixels start at byte "
             "54: they are read from there whatever its header says, so an image with longer "
             "headers gets wrong colours with the status 0. 3 to 6 are failures although they "
             "are above 0."},
    {.name = "OpenEXR",
     .purpose = "Measures the range of values in an OpenEXR file's first channel.",
     .text = "image",
     .writes = "Nothing.",
     .statuses = kExr,
     .countOne = "is the range of values",
     .countMany = "is the range of values",
     .countIsWhole = false,
     .example = "quillon call OpenEXR range.exr",
     .prints = {3.5f},
     .next = "quillon inspect shows the attributes, among them compression and channels. The "
             "largest sample counts as -65535 at least, the smallest as 65535 at most: 70000 to "
             "70010 gives 4475. Samples of 32-bit whole numbers are measured, too. Save the "
             "image as one part of scan lines or tiles, its channels not subsampled."},
};

}  // namespace

const ExportGroup& imageExports() {
    static constexpr ExportGroup kGroup{"Targa, JPEG and OpenEXR",
                                        "Files for other programs, and files from them.", kExports};
    return kGroup;
}
