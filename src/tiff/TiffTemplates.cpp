#include "tiff/TiffTemplates.h"

#include <initializer_list>
#include <limits>

#include "bytes/Bytes.h"
#include "tiff/TiffTags.h"

namespace {

using Header = std::vector<std::uint8_t>;

struct Entry {
    std::uint16_t tag;
    std::uint16_t type;
    std::uint32_t count;
    std::uint32_t value;  // or the offset of the values
};

constexpr std::uint16_t kShort = tiff_type::kShort;
constexpr std::uint16_t kLong = tiff_type::kLong;
constexpr std::uint16_t kRational = tiff_type::kRational;

constexpr std::uint32_t kDirectory = 8;

void append16(Header& header, std::uint16_t value) {
    header.resize(header.size() + 2);
    storeLe16(&header[header.size() - 2], value);
}

void append32(Header& header, std::uint32_t value) {
    header.resize(header.size() + 4);
    storeLe32(&header[header.size() - 4], value);
}

// A file header, one directory and, behind it, the two resolutions of 72 pixels per unit.
Header withDirectory(std::initializer_list<Entry> entries) {
    Header header = {'I', 'I', 42, 0};
    append32(header, kDirectory);
    append16(header, static_cast<std::uint16_t>(entries.size()));
    for (const Entry& entry : entries) {
        append16(header, entry.tag);
        append16(header, entry.type);
        append32(header, entry.count);
        append32(header, entry.value);
    }
    append32(header, 0);  // no further directory
    for (int axis = 0; axis < 2; ++axis) {
        append32(header, 720000);
        append32(header, 10000);
    }
    return header;
}

// A size takes a 16-bit field as long as it fits in one.
Entry size(std::uint16_t tag, std::uint32_t value) {
    const bool fits = value <= std::numeric_limits<std::uint16_t>::max();
    const std::uint16_t type = fits ? kShort : kLong;
    return {tag, type, 1, value};
}

}  // namespace

std::vector<std::uint8_t> greyTiffHeader16() {
    using namespace tiff_tag;
    return withDirectory({
        {kNewSubfileType, kLong, 1, 0},
        {kImageWidth, kShort, 1, 256},
        {kImageLength, kShort, 1, 256},
        {kBitsPerSample, kShort, 1, 16},
        {kCompression, kShort, 1, 1},
        {kPhotometric, kShort, 1, 1},  // 0 is black
        {kStripOffsets, kLong, 1, 198},
        {kSamplesPerPixel, kShort, 1, 1},
        {kRowsPerStrip, kShort, 1, 256},
        {kStripByteCounts, kLong, 1, 131072},
        {kXResolution, kRational, 1, 182},
        {kYResolution, kRational, 1, 190},
        {kPlanarConfiguration, kShort, 1, 1},
        {kResolutionUnit, kShort, 1, 2},
    });
}

std::vector<std::uint8_t> rgbTiffHeader16() {
    using namespace tiff_tag;
    Header header = withDirectory({
        {kNewSubfileType, kLong, 1, 0},
        {kImageWidth, kShort, 1, 1024},
        {kImageLength, kShort, 1, 1024},
        {kBitsPerSample, kShort, 3, 222},
        {kCompression, kShort, 1, 1},
        {kPhotometric, kShort, 1, 2},
        {kStripOffsets, kLong, 1, 234},
        {kSamplesPerPixel, kShort, 1, 3},
        {kRowsPerStrip, kShort, 1, 1024},
        {kStripByteCounts, kLong, 1, 6291456},
        {kXResolution, kRational, 1, 206},
        {kYResolution, kRational, 1, 214},
        {kPlanarConfiguration, kShort, 1, 1},
        {kResolutionUnit, kShort, 1, 1},
        {kSampleFormat, kShort, 3, 228},
        {18, tiff_type::kFloat, 1, 1},  // the files in the field carry this entry; readers skip it
    });
    for (int channel = 0; channel < 3; ++channel)
        append16(header, 16);  // bits per sample
    for (int channel = 0; channel < 3; ++channel)
        append16(header, 1);  // unsigned whole numbers
    return header;
}

std::vector<std::uint8_t> greyPsdHeader16() {
    return {
        '8', 'B', 'P', 'S', 0, 1,  // signature, version
        0,   0,   0,   0,   0, 0,  //
        0,   1,                    // channels
        0,   0,   0,   128,        // height
        0,   0,   0,   128,        // width
        0,   16,  0,   1,          // depth, grey
        0,   0,   0,   0,          // no colour-mode data
        0,   0,   0,   0,          // no image resources
        0,   0,   0,   0,          // no layers
        0,   0,                    // raw
    };
}

std::vector<std::uint8_t> greyTiffHeaderFloat(std::uint32_t width, std::uint32_t length,
                                              std::uint32_t pixelBytes) {
    using namespace tiff_tag;
    Header header = withDirectory({
        {kNewSubfileType, kLong, 1, 0},
        size(kImageWidth, width),
        size(kImageLength, length),
        {kBitsPerSample, kShort, 1, 32},
        {kCompression, kShort, 1, 1},
        {kPhotometric, kShort, 1, 1},
        {kStripOffsets, kLong, 1, 222},
        {kSamplesPerPixel, kShort, 1, 1},
        size(kRowsPerStrip, length),
        {kStripByteCounts, kLong, 1, pixelBytes},
        {kXResolution, kRational, 1, 194},
        {kYResolution, kRational, 1, 202},
        {kPlanarConfiguration, kShort, 1, 1},
        {kResolutionUnit, kShort, 1, 1},
        {kSampleFormat, kShort, 1, 3},
    });
    for (int i = 0; i < 3; ++i)
        append32(header, std::bit_cast<std::uint32_t>(0.5f));  // carried along, read by none
    return header;
}
