#include "Meanings.h"

#include <algorithm>
#include <charconv>
#include <iterator>
#include <span>

#include "bmp/BmpOps.h"
#include "encoders/ExrLoader.h"
#include "encoders/ExrRange.h"
#include "encoders/JpegOps.h"
#include "encoders/TargaOps.h"
#include "export/Quillon.h"
#include "mesh/VemoOps.h"
#include "psd/PsdOps.h"
#include "tiff/TiffOps.h"

namespace {

struct Row {
    std::string_view name;  // of the export, or of a family below
    float status;
    bool success;
    const char* sentence;
};

// Each stands for all exports of a family, which answer alike where they have no row of their own.
constexpr std::string_view kTiffMaps = "TIFF maps";
constexpr std::string_view kPsdMaps = "PSD maps";
constexpr std::string_view kBmpMaps = "BMP maps";

constexpr const char* kMeshNotOpened = "the mesh file cannot be opened or read";
constexpr const char* kNoFaceUvs = "the mesh file holds no face UVs, or they are cut short";
constexpr const char* kTextMissing = "refused: a text or path is missing";

using namespace quillon_status;

constexpr Row kRows[] = {
    {"Version", kVersion, true, "the version of the interface"},
    {"CreateFolder", kOk, true, "the folder was created"},
    {"CreateFolder", kFailed, false,
     "the folder was not created: it exists, its parent folder does not, or writing is not "
     "allowed"},
    {"GetPublicFolder", kPublicFolderCopied, true, "the folder's path was copied"},
    {"GetPublicFolder", kNoPublicFolder, false, "this machine has no such folder"},
    {"CheckFolder", kOk, true, "the folder can be opened"},
    {"CheckFolder", kFailed, false, "the folder cannot be opened"},
    {"OpenFolder", kOk, true, "the folder is open for GetFile"},
    {"OpenFolder", kFailed, false, "the folder cannot be opened"},
    {"GetFile", kOk, true, "the next entry of the open folder"},
    {"GetFile", kListingExhausted, false, "no entry is left"},
    {"GetFile", kFailed, false, "no folder is open (OpenFolder and GetFile need one process)"},
    {"CloseFolder", kOk, true, "the listing is closed"},
    {"CloseFolder", kFailed, false, "no folder is open"},
    {"EmptyFolder", kOk, true, "the folder's files were deleted, as far as that is allowed"},
    {"EmptyFolder", kFailed, false, "the folder cannot be opened"},
    {"FileDelete", kOk, true, "the file was deleted"},
    {"FileDelete", kFailed, false, "the file was not deleted: there is none, or it is not allowed"},
    {"FileCopyTo", kOk, true, "the file was copied"},
    {"FileCopyTo", kFailed, false,
     "the file was not copied: the source cannot be opened or the target not be written"},
    {"FileRename", kOk, true, "the file was renamed"},
    {"FileRename", kFailed, false, "the file was not renamed"},
    {"GetString", kOk, true, "the text was copied"},
    {"GetString", kFailed, false, kTextMissing},

    {"clearUVtilesOutput", kOk, true, "the tile filter is empty"},
    {"setUVtilesOutput", vemo_status::kOk, true, "the tile filter was read"},
    {"setUVtilesOutput", vemo_status::kFilterNotOpened, false, "the tile filter cannot be opened"},
    {"getUVTile", vemo_status::kMeshNotOpened, false, kMeshNotOpened},
    {"getUVTile", vemo_status::kChunkMissing, false, kNoFaceUvs},
    {"getUVGroups", vemo_status::kMeshNotOpened, false, kMeshNotOpened},
    {"getUVGroups", vemo_status::kChunkMissing, false,
     "the mesh file holds no face groups, or they are cut short"},
    {"getUVString", kOk, true, "the name is copied where the tile exists"},
    {"clearUVString", kOk, true, "the list of tile names is empty"},
    {"getUVs", vemo_status::kUvExportMeshNotOpened, false, kMeshNotOpened},
    {"getUVs", vemo_status::kChunkMissing, false, kNoFaceUvs},
    {"getUVsMask", vemo_status::kUvExportMeshNotOpened, false, kMeshNotOpened},
    {"getUVsMask", vemo_status::kChunkMissing, false,
     "the mesh file holds no vertices or no face UVs, or they are cut short"},
    {"getUVsMask", vemo_status::kFaceChunkMissing, false,
     "the mesh file holds no faces, or one of them names a vertex that does not exist"},
    {"mergeCrease", vemo_status::kOk, true, "the mesh was appended"},
    {"mergeCrease", vemo_status::kMergedNotOpened, false, kMeshNotOpened},
    {"mergeCrease", vemo_status::kMergeTargetNotOpened, false,
     "the mesh file to append to cannot be opened or read"},
    {"mergeCrease", vemo_status::kMergeTargetNotCreated, false, "the target cannot be written"},
    {"mergeCrease", vemo_status::kChunkMissing, false,
     "one of the files is too short to be a mesh file"},

    {"mergeMapsTIF", tiff_status::kOk, true, "the map was folded into the target"},
    {"mergeMapsTIF", tiff_status::kNotOpened, false, "the source cannot be opened"},
    {"mergeMapsTIF", tiff_status::kTargetNotOpened, false, "the target cannot be opened"},
    {"mergeMapsTIF", tiff_status::kSizesDiffer, false,
     "the maps differ in size, or the target is no TIFF"},
    {"mergeMapsTIF", tiff_status::kSamplesDiffer, false, "the maps differ in channels or depth"},
    {"mergeMapsTIF", tiff_status::kNotReopened, false, "the source cannot be opened again"},

    {"swapRGBTIF", tiff_status::kOk, true, "the channels of an 8-bit colour map were exchanged"},
    {"convertTIFF16", tiff_status::kOk, true, "the 16-bit map was written"},
    {"convertTIFF16", tiff_status::kSizeNotPlaced, false,
     "the map's directory does not come first in the file, so its sizes cannot be taken over"},
    {"convertTIFFSingle", tiff_status::kOk, true, "the first channel was written"},
    {"convertTIFFSingle", tiff_status::kNoPixels, false,
     "a text or path is missing, or the map has no pixels"},
    {"saveAsTarga", targa_status::kOk, true, "the Targa file was written"},
    {"saveAsTarga", targa_status::kTargetNotWritten, false, "the target cannot be written"},
    {"saveAsTarga", targa_status::kNoSize, false, "the map names no height or no channels"},
    {"saveAsTarga", targa_status::kPixelsMissing, false,
     "the map claims far more rows than the file holds"},
    {"saveAsJpeg", jpeg_status::kOk, true, "the JPEG file was written"},
    {"saveAsJpeg", jpeg_status::kNotOpened, false, "the image cannot be opened"},
    {"saveAsJpeg", jpeg_status::kTooShort, false, "the image is shorter than its headers"},
    {"saveAsJpeg", jpeg_status::kNot24BitBmp, false, "the image is not a BMP of 24 bits per pixel"},
    {"saveAsJpeg", jpeg_status::kNoMemory, false, "there is too little memory for the image"},
    {"saveAsJpeg", jpeg_status::kTargetNotCreated, false,
     "the target cannot be created, or a path has 512 bytes and more"},

    {"mergeMapsPSD", psd_status::kOk, true, "the map was laid over the target"},
    {"mergeMapsPSD", psd_status::kNotOpened, false,
     "a map cannot be opened, is no PSD, or is cut short"},
    {"mergeMapsPSD", psd_status::kSizesDiffer, false, "the maps differ in size"},
    {"mergeMapsPSD", psd_status::kUnknownKind, false,
     "the source is neither 8-bit RGB nor 16-bit grey"},
    {"mergeMapsPSD", psd_status::kNotWritten, false, "the target cannot be written"},
    {"swapRGBPSD", psd_status::kOk, true, "the colour planes were reordered"},
    {"swapRGBPSD", psd_status::kNotThreeBytes, false,
     "the map does not have three channels of 8 bits"},

    {"mergeMapsBMP", bmp_status::kOk, true, "the map was folded into the target"},
    {"mergeMapsBMP", bmp_status::kNotOpened, false, "the target cannot be opened"},
    {"mergeMapsBMP", bmp_status::kSourceNotOpened, false, "the source cannot be opened"},
    {"mergeMapsBMP", bmp_status::kSizesDiffer, false, "the maps differ in size"},
    {"mergeMapsBMP", bmp_status::kLayoutsDiffer, false,
     "the maps differ in bits per pixel, or in where their pixels start"},
    {"mergeMapsBMP", bmp_status::kNotReopened, false, "the source may not be written to"},
    {"mergeMapsBMP", bmp_status::kTargetNotReopened, false, "the target may not be written to"},
    {"swapRGBBMP", bmp_status::kOk, true, "the colour channels were exchanged"},
    {"CreateThumbnailBMP", bmp_status::kOk, true,
     "the image was shrunk, unless it is that small already or may not be written to"},
    {"CreateThumbnailBMP", bmp_status::kThumbNotOpened, false, "the image cannot be opened"},
    {"CreateThumbnailBMP", bmp_status::kThumbNotABmp, false, "the file is no BMP"},
    {"CreateThumbnailBMP", bmp_status::kSizeRefused, false,
     "the size is below 1, or beyond what a BMP or the memory can hold"},

    {"OpenEXR", static_cast<float>(exr_status::kNotExr), false, "the file is no OpenEXR file"},
    {"OpenEXR", static_cast<float>(exr_status::kBadVersion), false,
     "the file is of a version of OpenEXR that is not known"},
    {"OpenEXR", static_cast<float>(exr_status::kNoPath), false, kTextMissing},
    {"OpenEXR", static_cast<float>(exr_status::kBadData), false,
     "the file is damaged, deep, of several parts, or claims more than it can hold"},
    {"OpenEXR", static_cast<float>(exr_status::kNotOpened), false, "the file cannot be opened"},
    {"OpenEXR", static_cast<float>(exr_status::kUnknownFormat), false,
     "the file's compression is not known"},
    {"OpenEXR", static_cast<float>(exr_status::kBadHeader), false,
     "the file's header lacks what every OpenEXR file has"},
    {"OpenEXR", static_cast<float>(exr_status::kUnknownFeature), false,
     "the file's channels are subsampled"},
    {"OpenEXR", exr_range::kNoPixels, false,
     "the image has no pixels, or no number among its samples"},

    // What every reader of a TIFF map answers alike.
    {kTiffMaps, tiff_status::kNotOpened, false, "the map cannot be opened"},
    {kTiffMaps, tiff_status::kNotReopened, false, "the map may not be written to"},
    {kTiffMaps, tiff_status::kTargetNotWritten, false, "the target cannot be written"},
    {kTiffMaps, tiff_status::kNoPixels, false, "the map has no pixels"},
    {kTiffMaps, tiff_status::kNotFloat, false, "the map's samples are not 32-bit floats"},
    {kTiffMaps, tiff_status::kBadSampleCount, false, "a map has neither 1 nor 3 channels"},
    {kTiffMaps, tiff_status::kFloatBadSampleCount, false, "the map has neither 1 nor 3 channels"},
    {kTiffMaps, tiff_status::kCompressed, false, "a map is compressed"},
    {kTiffMaps, tiff_status::kBadPhotometric, false, "a map is neither grey nor RGB"},
    {kTiffMaps, tiff_status::kSeveralStrips, false, "a map has more than one strip"},
    {kTiffMaps, tiff_status::kPixelsMissing, false, "the map ends before its last row"},
    {kTiffMaps, tiff_status::kBadSampleFormatCount, false,
     "a map names sample formats for neither 1 nor 3 channels"},

    {kPsdMaps, psd_status::kNotOpened, false,
     "the map cannot be opened, is no PSD, or is cut short"},
    {kPsdMaps, psd_status::kBadVersion, false, "a map is a PSD of another version than 1"},
    {kPsdMaps, psd_status::kHasColourTable, false, "a map has a colour table"},
    {kPsdMaps, psd_status::kCompressed, false, "a map is compressed"},
    {kPsdMaps, psd_status::kNotWritten, false, "the map cannot be written"},

    {kBmpMaps, bmp_status::kNotOpened, false, "the map cannot be opened"},
    {kBmpMaps, bmp_status::kNotABmp, false, "a file is no BMP, or shorter than its own headers"},
    {kBmpMaps, bmp_status::kNotReopened, false, "the map may not be written to"},
};

constexpr std::string_view kTiffReaders[] = {"mergeMapsTIF",      "swapRGBTIF", "convertTIFF16",
                                             "convertTIFFSingle", "getScale",   "saveAsTarga"};
constexpr std::string_view kPsdReaders[] = {"mergeMapsPSD", "swapRGBPSD"};
constexpr std::string_view kBmpReaders[] = {"mergeMapsBMP", "swapRGBBMP", "CreateThumbnailBMP"};

struct Family {
    std::string_view name;
    std::span<const std::string_view> exports;
};
constexpr Family kFamilies[] = {
    {kTiffMaps, kTiffReaders}, {kPsdMaps, kPsdReaders}, {kBmpMaps, kBmpReaders}};

// The exports that refuse a number which is not one of theirs.
constexpr std::string_view kValueCheckers[] = {"swapRGBTIF", "swapRGBPSD", "swapRGBBMP",
                                               "convertTIFF16", "getScale"};

// Exports whose status, where it is no failure, is a number of something.
struct Count {
    std::string_view name;
    const char* one;
    const char* several;
};
constexpr Count kCounts[] = {
    {"getUVTile", "UV tile", "UV tiles"},
    {"getUVGroups", "face group", "face groups"},
    {"getUVs", "tile was written", "tiles were written"},
    {"getUVsMask", "tile was written", "tiles were written"},
    {"getScale", "is the scale", "is the scale"},
    {"OpenEXR", "is the range of values", "is the range of values"},
};

const Count* countOf(std::string_view name) {
    for (const Count& count : kCounts) {
        if (count.name == name) return &count;
    }
    return nullptr;
}

const Row* rowOf(std::string_view name, float status) {
    for (const Row& row : kRows) {
        if (row.name == name && row.status == status) return &row;
    }
    for (const Family& family : kFamilies) {
        if (std::ranges::find(family.exports, name) != family.exports.end())
            return rowOf(family.name, status);
    }
    return nullptr;
}

bool writesTiles(std::string_view name) {
    return name == "getUVs" || name == "getUVsMask";
}

Meaning refusal(const Export& entry, const CallArguments& arguments) {
    if (entry.text != nullptr && !arguments.text) return {false, "refused: TEXT is missing"};
    if (entry.buffer == BufferUse::kPath && !arguments.buffer)
        return {false, "refused: --buffer is missing"};
    if (std::ranges::find(kValueCheckers, entry.name) != std::end(kValueCheckers))
        return {false, std::string("refused: --value is to be ") + entry.value};
    if (entry.name == "saveAsJpeg")
        return {false, "refused: a side of the image is 0 or longer than 65528 pixels"};
    return {false, "refused: there is too little memory for the file"};
}

Meaning tileNotWritten(float status) {
    return {false, "the file of the tile at position " +
                       statusText(status - vemo_status::kFirstTileNotWritten) +
                       " cannot be created or filled (a mesh with that many tiles answers alike)"};
}

}  // namespace

Meaning meaningOf(const Export& entry, const CallArguments& arguments, float status) {
    if (const Row* row = rowOf(entry.name, status)) return {row->success, row->sentence};
    if (status == kRefused) return refusal(entry, arguments);
    if (writesTiles(entry.name) && status >= vemo_status::kFirstTileNotWritten)
        return tileNotWritten(status);
    const Count* count = countOf(entry.name);
    if (count != nullptr && status >= 0.0f)
        return {true, statusText(status) + ' ' + (status == 1.0f ? count->one : count->several)};
    return {false, "a status that this program does not know"};
}

std::string statusText(float status) {
    char digits[64];
    const auto end =
        std::to_chars(std::begin(digits), std::end(digits), status, std::chars_format::fixed);
    return std::string(digits, end.ptr);
}
