#include "files/Diagnosis.h"

#include <algorithm>
#include <initializer_list>
#include <iterator>
#include <span>
#include <utility>

#include "tiff/TiffHeader.h"
#include "tiff/TiffTags.h"

namespace {

constexpr const char* kFix = "Rewrite it with quillon fix.";
constexpr const char* kMakeAgain = "Make it again.";

// What may be true of a file.
struct Case {
    bool isTrue;
    std::string sentence;
    std::span<const Misreading> misreadings = {};
    std::string remedy = kFix;
};

std::vector<Note> trueOnes(std::initializer_list<Case> cases) {
    std::vector<Note> notes;
    for (const Case& one : cases) {
        if (!one.isTrue) continue;
        const std::string remedy = one.remedy.empty() ? "" : ' ' + one.remedy;
        notes.push_back({one.sentence + remedy, one.misreadings});
    }
    return notes;
}

void append(std::vector<Note>& notes, std::vector<Note> more) {
    std::ranges::move(more, std::back_inserter(notes));
}

struct Name {
    std::int64_t number;
    const char* name;
};

// "5 (LZW)"; the number alone when it is not in the table.
template <std::size_t kCount>
std::string named(const Name (&names)[kCount], std::int64_t number) {
    const Name* const found = std::ranges::find(names, number, &Name::number);
    const std::string digits = std::to_string(number);
    return found == std::end(names) ? digits : digits + " (" + found->name + ')';
}

bool endsBeforeItsPixels(const FileFacts& file) {
    return file.picture->pixels && endOf(*file.picture->pixels) > file.bytes;
}

// TIFF

constexpr Name kTiffCompressions[] = {
    {2, "CCITT"},    {3, "CCITT"},         {4, "CCITT"},        {5, "LZW"},         {6, "JPEG"},
    {7, "JPEG"},     {8, "Deflate"},       {32773, "PackBits"}, {32946, "Deflate"}, {34887, "LERC"},
    {34925, "LZMA"}, {50000, "Zstandard"}, {50001, "WebP"}};
constexpr Name kPhotometrics[] = {{3, "palette"}, {4, "mask"}, {5, "CMYK"},
                                  {6, "YCbCr"},   {8, "Lab"},  {9, "Lab"}};

enum SampleFormat : std::uint32_t { kFloatSamples = 3 };

constexpr Misreading kTiffExports[] = {{"mergeMapsTIF"},      {"swapRGBTIF"},  {"convertTIFF16"},
                                       {"convertTIFFSingle"}, {"saveAsTarga"}, {"getScale"}};
constexpr auto kAllButScale = std::span(kTiffExports).first(5);
constexpr Misreading kConversions[] = {{"convertTIFF16"}, {"convertTIFFSingle"}, {"saveAsTarga"}};
constexpr Misreading kFloatReaders[] = {
    {"convertTIFF16"}, {"convertTIFFSingle"}, {"saveAsTarga"}, {"getScale"}};
constexpr Misreading kToTiff[] = {{"convertTIFF16", "to TIFF"}};
constexpr Misreading kToTiffOrTarga[] = {{"convertTIFF16", "to TIFF"}, {"saveAsTarga"}};
constexpr Misreading kTarga[] = {{"saveAsTarga"}};

// Whether the directory, or the depths of three channels, are where most exports do not look.
bool isBeyondHead(const TiffFacts& tiff) {
    const bool depthsElsewhere = tiff.count(tiff_tag::kBitsPerSample) == 3;
    return tiff.directoryEnd > kTiffHeadBytes ||
           (depthsElsewhere &&
            tiff.tags.at(tiff_tag::kBitsPerSample).valuesAt + 2 > kTiffHeadBytes);
}

std::vector<Note> notesOnStorage(const FileFacts& file, const TiffFacts& tiff) {
    using namespace tiff_tag;
    const std::uint32_t strips = tiff.count(kStripOffsets);
    const std::string method = named(kTiffCompressions, tiff.value(kCompression, 1));
    const std::string directory = std::to_string(tiff.directory);
    return trueOnes({
        {tiff.tags.empty(), "There is no directory at byte " + directory + '.', kTiffExports,
         kMakeAgain},
        {isBeyondHead(tiff),
         "The directory at byte " + directory +
             ", or a part of it, is not in the first 1,000 bytes, where all exports but getScale "
             "look for it.",
         kAllButScale},
        {tiff.has(kTileWidthTag), "The pixels are in tiles; the exports take one strip.",
         kTiffExports},
        {strips > 1,
         "The pixels are in " + std::to_string(strips) + " strips; the exports take one."},
        {tiff.value(kCompression, 1) != 1,
         "The pixels are compressed, method " + method + ", which the exports refuse."},
        {tiff.value(kPlanarConfiguration, 1) == 2 && file.picture->channels > 1,
         "Each channel has a plane of its own; the exports take channels that alternate.",
         kTiffExports},
        {endsBeforeItsPixels(file), "The file ends before its last pixel.", kTiffExports,
         kMakeAgain},
    });
}

std::vector<Note> notesOnSamples(const FileFacts& file, const TiffFacts& tiff) {
    using namespace tiff_tag;
    const std::int64_t channels = file.picture->channels;
    const std::int64_t depth = file.picture->depth;
    const std::uint32_t colours = tiff.value(kPhotometric, 1);
    const bool isFloat = tiff.value(kSampleFormat, 1) == kFloatSamples;
    const bool isMerged = depth == 8 || depth == 16 || depth == 32;
    const std::string bits = std::to_string(depth) + " bits";
    return trueOnes({
        {channels != 1 && channels != 3,
         "The map has " + std::to_string(channels) + " channels; the exports take 1 or 3."},
        {colours > 2, "The colours are of kind " + named(kPhotometrics, colours) +
                          "; the exports take grey and RGB."},
        {colours == 0, "0 is white in this map; the conversions take it for black.", kConversions},
        {!isMerged,
         "The samples have " + bits + ", with which mergeMapsTIF and swapRGBTIF do nothing.",
         kTarga},
        {depth == 16 && isFloat,
         "The samples are 16-bit floats, which convertTIFF16 and getScale refuse."},
        {depth == 32 && !isFloat,
         "The samples are 32-bit whole numbers, which the exports take for floats.", kFloatReaders},
        {depth > 8, "The samples have " + bits + "; saveAsTarga takes them for 8-bit ones.", kTarga,
         ""},
    });
}

// convertTIFF16 writes the new sizes where the map has its own: right only where its own headers have
// them.
bool hasSizesInPlace(const TiffFacts& tiff) {
    using namespace tiff_tag;
    constexpr std::pair<std::uint16_t, std::uint64_t> kPlaces[] = {
        {kImageWidth, 30}, {kImageLength, 42}, {kRowsPerStrip, 114}, {kStripByteCounts, 126}};
    return std::ranges::all_of(kPlaces, [&](const auto& place) {
        return tiff.has(place.first) && tiff.tags.at(place.first).valueOffset == place.second;
    });
}

std::vector<Note> notesOnPlaces(const FileFacts& file, const TiffFacts& tiff) {
    using namespace tiff_tag;
    if (!file.picture->pixels || endsBeforeItsPixels(file)) return {};
    const std::uint32_t strip = tiff.value(kStripOffsets);
    const std::uint32_t bytes = tiff.value(kStripByteCounts);
    const bool isWide = file.picture->width > 65535 || file.picture->height > 65535;
    return trueOnes({
        {strip >= bytes,
         "The pixels start at byte " + std::to_string(strip) + ", not below their length of " +
             std::to_string(bytes) + "; mergeMapsTIF leaves so small a map as it is.",
         {},
         ""},
        {file.picture->depth == 32 && !hasSizesInPlace(tiff),
         "The directory is not at byte 8 with the tags 254, 256 to 259, 262, 273, 277 to 279 in "
         "this "
         "order; convertTIFF16 writes a TIFF with wrong sizes.",
         kToTiff},
        {isWide,
         "A side is longer than 65535 pixels, of which saveAsTarga and convertTIFF16 keep the low "
         "16 "
         "bits.",
         kToTiffOrTarga, ""},
        {endOf(*file.picture->pixels) < file.bytes,
         "The pixels are not the last bytes of the file, which saveAsTarga takes for them.",
         kTarga},
    });
}

// PSD

constexpr Name kPsdModes[] = {{0, "bitmap"}, {1, "grey"},         {2, "palette"}, {3, "RGB"},
                              {4, "CMYK"},   {7, "multichannel"}, {8, "duotone"}, {9, "Lab"}};
constexpr Name kPsdCompressions[] = {{1, "RLE"}, {2, "ZIP"}, {3, "ZIP with prediction"}};
enum PsdMode : std::int64_t { kPsdGrey = 1, kPsdRgb = 3 };

constexpr Misreading kPsdExports[] = {{"mergeMapsPSD"}, {"swapRGBPSD"}};

// BMP

constexpr Name kBmpCompressions[] = {{1, "RLE of 8 bits"}, {2, "RLE of 4 bits"}, {3, "bit fields"},
                                     {4, "JPEG"},          {5, "PNG"},           {6, "bit fields"}};
constexpr std::int64_t kJpegPixelOffset = 54;  // from where saveAsJpeg reads
constexpr std::int64_t kMaxJpegWidth = 21845;  // of which it turns whole rows the right way up

constexpr Misreading kBmpExports[] = {
    {"mergeMapsBMP"}, {"swapRGBBMP"}, {"saveAsJpeg"}, {"CreateThumbnailBMP"}};
constexpr Misreading kJpeg[] = {{"saveAsJpeg"}};
constexpr Misreading kJpegOrThumbnail[] = {{"saveAsJpeg"}, {"CreateThumbnailBMP"}};

// OpenEXR

constexpr Name kExrCompressions[] = {{0, "none"}, {1, "RLE"},   {2, "ZIPS"}, {3, "ZIP"},
                                     {4, "PIZ"},  {5, "PXR24"}, {6, "B44"},  {7, "B44A"},
                                     {8, "DWAA"}, {9, "DWAB"}};
constexpr std::int64_t kLastExrCompression = 4;
constexpr std::int64_t kDeepFlag = 0x800;
constexpr std::int64_t kPartsFlag = 0x1000;

}  // namespace

std::vector<Note> notesOn(const FileFacts& file, const TiffFacts& tiff) {
    std::vector<Note> notes = trueOnes({
        {tiff.bigTiff, "The file is a BigTIFF, which no export reads.", kTiffExports},
        {tiff.bigEndian && !tiff.bigTiff,
         "The file is big-endian; the exports find no directory in it.", kTiffExports},
    });
    if (!notes.empty()) return notes;  // the exports do not get as far as the rest
    notes = notesOnStorage(file, tiff);
    if (tiff.tags.empty()) return notes;
    append(notes, notesOnSamples(file, tiff));
    append(notes, notesOnPlaces(file, tiff));
    return notes;
}

std::vector<Note> notesOn(const FileFacts& file, const PsdFacts& psd) {
    const std::int64_t depth = file.picture->depth;
    const std::int64_t channels = file.picture->channels;
    const bool isGrey = psd.colourMode == kPsdGrey;
    const bool isRgb = psd.colourMode == kPsdRgb;
    const bool isMerged = (isRgb && depth == 8) || (isGrey && depth == 16);
    return trueOnes({
        {psd.version == 2, "The file is a large document (PSB), which the exports refuse."},
        {psd.compression != 0, "The image data is compressed, method " +
                                   named(kPsdCompressions, psd.compression) +
                                   ", which the exports refuse."},
        {!isGrey && !isRgb,
         "The colour mode is " + named(kPsdModes, psd.colourMode) +
             "; the exports are made for grey and RGB.",
         kPsdExports},
        {(isGrey || isRgb) && !isMerged,
         "The samples have " + std::to_string(depth) +
             " bits; mergeMapsPSD takes RGB of 8 bits and grey of 16."},
        {isRgb && channels > 3, "Of " + std::to_string(channels) +
                                    " channels mergeMapsPSD merges the first 3; swapRGBPSD refuses "
                                    "the file."},
        {psd.layerBytes > 0,
         "The file has layers, which the exports leave as they are; programs that show layers do "
         "not "
         "show what was changed."},
        {endsBeforeItsPixels(file), "The file ends before its last pixel.", {}, kMakeAgain},
    });
}

std::vector<Note> notesOn(const FileFacts& file, const BmpFacts& bmp) {
    const bool isPlain = bmp.bitsPerPixel == 24 && bmp.compression == 0;
    const std::string bits = std::to_string(bmp.bitsPerPixel) + " bits a pixel";
    const std::string palette = bmp.bitsPerPixel <= 8 ? " and a palette" : "";
    return trueOnes({
        {bmp.headerBytes == kOldBmpHeaderBytes,
         "The header has 12 bytes; the exports look for the sizes where longer ones have them.",
         kBmpExports},
        {bmp.compression != 0,
         "The pixels are stored by method " + named(kBmpCompressions, bmp.compression) +
             "; the exports take them for plain ones.",
         kBmpExports},
        {bmp.bitsPerPixel != 24,
         "The image has " + bits + palette +
             "; saveAsJpeg refuses it, the other exports take it for one of 24 bits.",
         kBmpExports},
        {bmp.height < 0,
         "The top row comes first; mergeMapsBMP and swapRGBBMP do nothing, and saveAsJpeg turns "
         "the "
         "image upside down.",
         kJpegOrThumbnail},
        {isPlain && bmp.pixelOffset != kJpegPixelOffset,
         "The pixels start at byte " + std::to_string(bmp.pixelOffset) +
             "; saveAsJpeg reads them from byte 54.",
         kJpeg},
        {isPlain && file.picture->width > kMaxJpegWidth,
         "The rows are longer than 21845 pixels; saveAsJpeg turns only their left end the right "
         "way "
         "up.",
         kJpeg, ""},
        {endsBeforeItsPixels(file), "The file ends before its last pixel.", kBmpExports,
         kMakeAgain},
    });
}

std::string exrCompression(std::int64_t number) {
    return named(kExrCompressions, number);
}

std::vector<Note> notesOn(const FileFacts& file, const ExrFacts& exr) {
    const auto& names = file.picture->channelNames;
    const std::string first = names.empty() ? "" : names.front();
    return trueOnes({
        {names.size() > 1,
         "The export OpenEXR measures the first channel only, " + first +
             (first == "A" ? ", which is alpha." : "."),
         {},
         "To measure another one, save it in a file of its own."},
        {(exr.flags & kPartsFlag) != 0,
         "The file has several parts, which the export OpenEXR refuses.",
         {},
         "Save it as one part."},
        {(exr.flags & kDeepFlag) != 0,
         "The samples are deep, which the export OpenEXR refuses.",
         {},
         "Save a flat image."},
        {exr.isSubsampled,
         "A channel has fewer samples than the image has pixels, which the export OpenEXR refuses.",
         {},
         "Save all channels at full size."},
        {exr.compression > kLastExrCompression,
         "The compression is " + exrCompression(exr.compression) +
             ", which the export OpenEXR does not read.",
         {},
         "Save it with ZIP compression."},
    });
}
