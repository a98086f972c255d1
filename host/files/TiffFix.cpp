#include <tiffio.h>

#include <algorithm>
#include <bit>
#include <functional>
#include <limits>

#include "files/MapFix.h"
#include "files/Samples.h"
#include "files/TiffImage.h"
#include "files/TiffWriter.h"
#include "terminal/Failure.h"

namespace {

using ByteList = std::vector<std::uint8_t>;

// How the samples of an image become those of a map.
struct Plan {
    std::uint16_t readChannels = 1;  // 1, also of a palette, or 3
    SampleKind kind =
        SampleKind::kByte;    // of samples that have been unpacked, a palette's expanded
    unsigned packedBits = 8;  // of a sample in the file, where less than 8
    bool inverts = false;     // 0 is white
    std::vector<std::uint16_t> palette;
    TiffFormat format{};
};

// The palette's colours have 8 bits, which 16 hold as themselves times 257 or 256.
bool isOf8Bits(const std::vector<std::uint16_t>& palette) {
    const auto isMultipleOf = [&](unsigned factor) {
        return std::ranges::all_of(palette, [=](unsigned level) { return level % factor == 0; });
    };
    return isMultipleOf(257) || isMultipleOf(256);
}

[[noreturn]] void refuse(const std::string& path, const std::string& what) {
    throw Failure(path + " has " + what);
}

SampleKind integerKind(const std::string& path, unsigned bits) {
    if (bits <= 8 && std::has_single_bit(bits)) return SampleKind::kByte;
    if (bits == 16) return SampleKind::kShort;
    if (bits == 32) return SampleKind::kLong;
    refuse(path, "integers of " + std::to_string(bits) +
                     " bits, which quillon fix does not read; write it with 8 or 16 bits");
}

SampleKind floatKind(const std::string& path, unsigned bits) {
    if (bits == 16) return SampleKind::kHalf;
    if (bits == 32) return SampleKind::kFloat;
    if (bits == 64) return SampleKind::kDouble;
    refuse(path, "floats of " + std::to_string(bits) +
                     " bits, which quillon fix does not read; write it with 32 bits");
}

SampleKind kindOf(const std::string& path, const TiffImageFacts& facts) {
    if (facts.sampleFormat == SAMPLEFORMAT_UINT || facts.sampleFormat == SAMPLEFORMAT_VOID)
        return integerKind(path, facts.bits);
    if (facts.sampleFormat == SAMPLEFORMAT_IEEEFP) return floatKind(path, facts.bits);
    refuse(path,
           facts.sampleFormat == SAMPLEFORMAT_INT
               ? "signed integers, which the exports take for unsigned ones; write it as floats"
               : "complex numbers; write its parts as maps of their own");
}

// What to do about a colour space that is neither grey nor RGB.
std::string colourSpace(std::uint16_t photometric) {
    constexpr const char* kConvert =
        "; convert it to RGB with a program that knows its colour profile";
    if (photometric == PHOTOMETRIC_SEPARATED)
        return std::string("the colours of inks (CMYK)") + kConvert;
    if (photometric == PHOTOMETRIC_YCBCR) return std::string("YCbCr colours") + kConvert;
    if (photometric == PHOTOMETRIC_CIELAB || photometric == PHOTOMETRIC_ICCLAB ||
        photometric == PHOTOMETRIC_ITULAB)
        return std::string("Lab colours") + kConvert;
    return "the photometric interpretation " + std::to_string(photometric) +
           ", which is neither grey nor RGB; convert it to one of these";
}

bool isYCbCrInJpeg(const TiffImageFacts& facts) {
    return facts.photometric == PHOTOMETRIC_YCBCR && facts.compression == COMPRESSION_JPEG &&
           !facts.isSeparate;
}

void requireGreyOrRgb(const std::string& path, const TiffImageFacts& facts, unsigned colours) {
    const bool isKnown = facts.photometric <= PHOTOMETRIC_PALETTE || isYCbCrInJpeg(facts);
    if (!isKnown) refuse(path, colourSpace(facts.photometric));
    const bool isGrey = facts.photometric <= PHOTOMETRIC_MINISBLACK;
    const bool isPalette = facts.photometric == PHOTOMETRIC_PALETTE;
    if (colours == 3 ? isPalette : colours != 1 || !(isGrey || isPalette))
        refuse(path, counted(colours, "colour channel", "colour channels") +
                         ", which make neither grey nor RGB; write it with 1 or 3");
}

// The bits that are asked for, or those of the samples.
std::uint16_t bitsFor(const std::string& path, SampleKind kind, const FixOptions& options) {
    const bool isInteger = kind <= SampleKind::kLong;
    if (!isInteger && options.bits.value_or(32) != 32)
        refuse(path,
               "floats, which do not become integers here; quillon call convertTIFF16 turns 0 to "
               "1 into 16 bits");
    if (kind == SampleKind::kLong && options.bits.value_or(0) != 32)
        refuse(path,
               "integers of 32 bits, which the exports take for floats; --bits 32 turns them into "
               "floats from 0 to 1, rounded to 24 bits");
    const std::uint16_t own = !isInteger ? 32 : kind == SampleKind::kByte ? 8 : 16;
    return static_cast<std::uint16_t>(options.bits.value_or(own));
}

Plan planOf(const std::string& path, const TiffImage& image, const FixOptions& options) {
    const TiffImageFacts& facts = image.facts();
    const unsigned colours =
        facts.channels - std::min<unsigned>(facts.channels, facts.furtherChannels);
    requireGreyOrRgb(path, facts, colours);
    requireNoLoss(path, facts.furtherChannels, options);
    Plan plan;
    plan.readChannels = static_cast<std::uint16_t>(colours);
    plan.kind = kindOf(path, facts);
    plan.packedBits = facts.bits;
    plan.inverts = facts.photometric == PHOTOMETRIC_MINISWHITE;
    if (plan.inverts && plan.kind > SampleKind::kShort)
        refuse(path, "white as 0; write it with black as 0");
    if (facts.photometric == PHOTOMETRIC_PALETTE) {
        plan.palette = image.palette();
        if (plan.palette.empty())
            refuse(path, "no palette of 8 bits or less, though its pixels say so");
        plan.kind = isOf8Bits(plan.palette) ? SampleKind::kByte : SampleKind::kShort;
    }
    const auto channels = static_cast<std::uint16_t>(plan.palette.empty() ? colours : 3);
    plan.format = {facts.width, facts.height, channels, bitsFor(path, plan.kind, options)};
    return plan;
}

void requireTiffSize(const std::string& path, const TiffFormat& format) {
    const std::uint64_t most = std::numeric_limits<std::uint32_t>::max() - kTiffPixelOffset;
    if (format.pixelsBytes() > most)
        throw Failure(
            path + " would take " + std::to_string(format.pixelsBytes()) +
            " bytes, and the TIFF files that the exports take end at 4 GiB; make it smaller");
}

// The rows of an image as rows of a map.
class MapRows {
public:
    MapRows(TiffImage& image, const Plan& plan) : image_(image), plan_(plan) {}

    // Valid until the next call.
    std::span<const std::uint8_t> at(std::uint32_t y) {
        gather(y);
        if (!plan_.palette.empty()) lookUp();
        if (plan_.inverts) std::ranges::transform(samples_, samples_.begin(), std::bit_not());
        return convertSamples(samples_, plan_.kind, plan_.format.bits, converted_);
    }

private:
    // Fills samples_ with the row's colours, interleaved.
    void gather(std::uint32_t y) {
        const TiffImageFacts& facts = image_.facts();
        const std::uint16_t planes = facts.isSeparate ? plan_.readChannels : 1;
        samples_.resize(std::size_t{facts.width} * plan_.readChannels * sampleBytes());
        for (std::uint16_t plane = 0; plane < planes; ++plane) {
            const std::size_t rowChannels = facts.isSeparate ? 1 : facts.channels;
            const auto row = unpacked(image_.row(y, plane), facts.width * rowChannels);
            for (std::size_t i = 0; i < std::size_t{plan_.readChannels} / planes; ++i)
                copyChannel(row, i, rowChannels, plane + i);
        }
    }

    std::size_t sampleBytes() const { return std::max(plan_.packedBits, 8u) / 8; }

    // Copies one channel of a row's pixels to a channel of samples_.
    void copyChannel(std::span<const std::uint8_t> row, std::size_t from, std::size_t rowChannels,
                     std::size_t to) {
        const std::size_t bytes = sampleBytes();
        for (std::size_t x = 0; x < image_.facts().width; ++x)
            std::copy_n(&row[(x * rowChannels + from) * bytes], bytes,
                        &samples_[(x * plan_.readChannels + to) * bytes]);
    }

    // Samples of less than 8 bits as bytes: of a palette as they are, else from 0 to 255.
    std::span<const std::uint8_t> unpacked(std::span<const std::uint8_t> row, std::size_t count) {
        if (plan_.packedBits >= 8) return row;
        unpacked_.resize(count);
        unpackBits(row, plan_.packedBits, unpacked_);
        if (!plan_.palette.empty()) return unpacked_;
        const std::uint32_t max = (1u << plan_.packedBits) - 1;
        for (std::uint8_t& sample : unpacked_)
            sample = byteOfLevel(sample, max);
        return unpacked_;
    }

    // Turns a palette's numbers into colours.
    void lookUp() {
        const ByteList numbers = std::move(samples_);
        samples_.clear();
        for (const std::size_t number : numbers) {
            for (std::size_t channel = 0; channel < 3; ++channel) {
                const std::uint16_t level = plan_.palette[3 * number + channel];
                if (plan_.kind == SampleKind::kShort)
                    samples_.push_back(static_cast<std::uint8_t>(level));
                samples_.push_back(static_cast<std::uint8_t>(level >> 8));
            }
        }
    }

    TiffImage& image_;
    const Plan& plan_;
    ByteList unpacked_, samples_, converted_;
};

// The tags up to the one of the strip's bytes, at whose places a conversion to 16 bits writes
// sizes.
bool hasHostsTags(const std::string& path) {
    constexpr std::uint16_t kTags[] = {254, 256, 257, 258, 259, 262, 273, 277, 278, 279};
    InputFile file(path, "map");
    Bytes entries = file.part(10, std::size(kTags) * 12);
    for (std::size_t i = 0; i < std::size(kTags); ++i) {
        if (entries.le16(12 * i) != kTags[i]) return false;
    }
    return true;
}

void addPlaceChanges(const std::string& path, const TiffImageFacts& facts,
                     std::vector<std::string>& changes) {
    if (facts.isBigEndian) changes.emplace_back("big-endian -> little-endian");
    if (facts.isBigTiff) changes.emplace_back("BigTIFF -> TIFF");
    if (facts.directory != 8)
        changes.push_back("directory at byte " + std::to_string(facts.directory) + " -> byte 8");
    else if (!facts.isBigEndian && !hasHostsTags(path))
        changes.emplace_back("tags of another order or number -> the host's");
    if (facts.compression != COMPRESSION_NONE) {
        const TIFFCodec* codec = TIFFFindCODEC(facts.compression);
        changes.push_back((codec ? codec->name : "compressed") + std::string(" -> not compressed"));
    }
    if (facts.isTiled)
        changes.push_back("tiles of " + std::to_string(facts.tileWidth) + " x " +
                          std::to_string(facts.tileLength) + " -> one strip");
    else if (facts.strips > 1)
        changes.push_back(std::to_string(facts.strips) + " strips -> one strip");
    if (facts.isSeparate) changes.emplace_back("a plane per channel -> channels interleaved");
}

std::string bitsText(const TiffImageFacts& facts) {
    const bool isFloat = facts.sampleFormat == SAMPLEFORMAT_IEEEFP;
    return std::to_string(facts.bits) + (isFloat ? "-bit floats" : "-bit integers");
}

void addSampleChanges(const TiffImageFacts& facts, const Plan& plan,
                      std::vector<std::string>& changes) {
    const unsigned bits = plan.format.bits;
    const bool staysFloat = facts.sampleFormat == SAMPLEFORMAT_IEEEFP || bits != 32;
    if (facts.photometric == PHOTOMETRIC_YCBCR) changes.emplace_back("YCbCr -> RGB");
    if (plan.inverts) changes.emplace_back("0 as white -> 0 as black");
    if (!plan.palette.empty())
        changes.push_back("palette -> RGB of " + std::to_string(bits) + " bits");
    else if (facts.bits != bits || !staysFloat)
        changes.push_back(bitsText(facts) + " -> " + std::to_string(bits) + "-bit " +
                          (bits == 32 ? "floats" : "integers") +
                          (staysFloat ? "" : " from 0 to 1") +
                          (facts.bits > bits || plan.kind == SampleKind::kLong ? ", rounded" : ""));
    if (plan.readChannels == 3 && facts.photometric <= PHOTOMETRIC_MINISBLACK)
        changes.emplace_back("3 grey channels -> RGB");
}

void addLosses(const TiffImageFacts& facts, std::vector<std::string>& changes) {
    if (facts.furtherChannels > 0)
        changes.push_back(counted(facts.furtherChannels, "further channel", "further channels") +
                          " left out" +
                          (facts.isPremultiplied ? "; colours stay multiplied by alpha" : ""));
    if (facts.hasMorePages) changes.emplace_back("several pages -> the first one");
    if (facts.orientation != ORIENTATION_TOPLEFT)
        changes.push_back("orientation " + std::to_string(facts.orientation) +
                          " left out; rows and columns stay where they are");
    if (facts.furtherTags.empty()) return;
    std::string tags;
    for (const std::uint32_t tag : facts.furtherTags)
        tags += (tags.empty() ? "" : ", ") + std::to_string(tag);
    changes.push_back("further tags left out: " + tags);
}

}  // namespace

FixedMap fixTiff(const std::string& in, const std::string& out, const FixOptions& options) {
    TiffImage image(in);
    if (isYCbCrInJpeg(image.facts())) image.decodeJpegAsRgb();
    const TiffImageFacts& facts = image.facts();
    requireSides(in, facts.width, facts.height);
    const Plan plan = planOf(in, image, options);
    image.requirePlausible();
    requireTiffSize(in, plan.format);
    FixedMap map{facts.width, facts.height, plan.format.channels, plan.format.bits, {}};
    addPlaceChanges(in, facts, map.changes);
    addSampleChanges(facts, plan, map.changes);
    addLosses(facts, map.changes);
    MapRows rows(image, plan);
    TiffWriter writer(out, plan.format);
    for (std::uint32_t y = 0; y < facts.height; ++y)
        writer.append(rows.at(y));
    writer.finish();
    return map;
}
