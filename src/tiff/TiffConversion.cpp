// Maps made from float maps: 16-bit maps and single channels.

#include <optional>
#include <vector>

#include "bytes/Bytes.h"
#include "files/FileWriter.h"
#include "files/Piece.h"
#include "pixels/Samples.h"
#include "tiff/FloatMap.h"
#include "tiff/TiffOps.h"
#include "tiff/TiffTags.h"
#include "tiff/TiffTemplates.h"

namespace {

constexpr int kColourMode = 3;  // three channels in, three out

constexpr std::size_t kPsdHeight = 14;
constexpr std::size_t kPsdWidth = 18;

using Header = std::vector<std::uint8_t>;

// Creates the target and fills it with `header` and, piece by piece, what `convert(out, in,
// pixels)` makes of the map's pixels.
template <typename Convert>
float writeConverted(const FloatMap& map, const char* target, const Header& header,
                     std::size_t outPixelBytes, Convert convert) {
    if (map.file.isSameAs(target)) return tiff_status::kTargetNotWritten;
    // The memory is there before the old target is written over.
    Piece samples;
    Piece converted;
    FileWriter out(File::createOver(target));
    if (!out.isOpen() || !out.append(header.data(), header.size()))
        return tiff_status::kTargetNotWritten;

    const bool done = forEachPiece(map.strip, [&](std::uint64_t offset, std::size_t pixels) {
        const float* const from = readSamples(map, samples, offset, pixels);
        if (from == nullptr) return false;
        convert(converted.moveTo(out.length(), pixels * outPixelBytes), from, pixels);
        return out.append(converted.data(), converted.size());
    });
    return done && out.finish() ? tiff_status::kOk : tiff_status::kTargetNotWritten;
}

// The PSD's height takes the map's width and its width the length: the files in the field are so,
// and for square maps it makes no difference.
Header psdHeaderFor(const TiffHeader& map) {
    Header header = greyPsdHeader16();
    for (const TiffEntry& entry : map.entries) {
        if (entry.tag == tiff_tag::kImageWidth) storeBe32(&header[kPsdHeight], entry.value);
        if (entry.tag == tiff_tag::kImageLength) storeBe32(&header[kPsdWidth], entry.value);
    }
    return header;
}

// The map's sizes take the places in the new header that they have in the map's own: its directory
// is taken to start at byte 8 and to list the new header's tags in the same order. The new byte count
// takes the place of the map's last one. Empty when a place lies outside the new header.
Header tiffHeaderFor(const TiffHeader& map, Header header, std::uint32_t byteCount) {
    const auto holds = [&](std::uint64_t place, std::size_t bytes) {
        return place + bytes <= header.size();
    };
    std::optional<std::uint64_t> byteCountPlace;
    for (const TiffEntry& entry : map.entries) {
        const bool isSize = entry.tag == tiff_tag::kImageWidth ||
                            entry.tag == tiff_tag::kImageLength ||
                            entry.tag == tiff_tag::kRowsPerStrip;
        if (isSize && !holds(entry.valueOffset, 2)) return {};
        if (isSize)
            storeLe16(&header[static_cast<std::size_t>(entry.valueOffset)],
                      static_cast<std::uint16_t>(entry.value));
        if (entry.tag == tiff_tag::kStripByteCounts) byteCountPlace = entry.valueOffset;
    }
    if (!byteCountPlace) return header;
    if (!holds(*byteCountPlace, 4)) return {};
    storeLe32(&header[static_cast<std::size_t>(*byteCountPlace)], byteCount);
    return header;
}

// How many bytes a map's pixels take when each takes `pixelBytes`, as a TIFF's 32-bit field has it.
std::uint32_t byteCountOf(const FloatMap& map, std::size_t pixelBytes) {
    return static_cast<std::uint32_t>(map.strip.pixels * pixelBytes);
}

}  // namespace

float singleChannelTiff(const char* source, const char* target) {
    const FloatMap map = openFloatMap(source, 3, {.floatOnly = true}, File::openForRewriting);
    if (map.refused != tiff_status::kOk) return map.refused;
    const Header header = greyTiffHeaderFloat(static_cast<std::uint32_t>(map.header.info.width),
                                              static_cast<std::uint32_t>(map.header.info.length),
                                              byteCountOf(map, sizeof(float)));
    return writeConverted(map, target, header, sizeof(float), takeFirstSamples);
}

float convertTiff(const char* in, const char* out, int mode, int isPsd) {
    const bool colour = mode == kColourMode;
    const bool psd = isPsd != 0 && !colour;
    const std::size_t channelsIn = mode == 1 ? 1 : 3;
    const std::size_t channelsOut = colour ? 3 : 1;
    const FloatMap map = openFloatMap(in, channelsIn, {.floatOnly = true}, File::openForReading);
    if (map.refused != tiff_status::kOk) return map.refused;

    const std::size_t outPixelBytes = 2 * channelsOut;
    const Header header =
        psd ? psdHeaderFor(map.header)
            : tiffHeaderFor(map.header, colour ? rgbTiffHeader16() : greyTiffHeader16(),
                            byteCountOf(map, outPixelBytes));
    if (header.empty()) return tiff_status::kSizeNotPlaced;
    return writeConverted(map, out, header, outPixelBytes,
                          [&](std::uint8_t* to, const float* samples, std::size_t pixels) {
                              const auto order = psd ? ByteOrder::kBig : ByteOrder::kLittle;
                              if (channelsIn == channelsOut)
                                  quantise16(to, samples, pixels * channelsIn, order);
                              else
                                  quantiseFirst16(to, samples, pixels, order);
                          });
}
