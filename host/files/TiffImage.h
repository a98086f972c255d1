#pragma once
// A TIFF image of any layout and compression, which libtiff reads.

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <vector>

struct tiff;  // libtiff's own

// What the first directory of a file says; tags by libtiff's numbers.
struct TiffImageFacts {
    std::uint32_t width = 0;
    std::uint32_t height = 0;
    std::uint16_t bits = 0;             // of a sample
    std::uint16_t sampleFormat = 0;     // SAMPLEFORMAT_...
    std::uint16_t channels = 0;         // all of them
    std::uint16_t furtherChannels = 0;  // of these, beyond the colours
    bool isPremultiplied = false;       // the colours are multiplied by alpha
    std::uint16_t photometric = 0;      // PHOTOMETRIC_...
    std::uint16_t compression = 0;      // COMPRESSION_...
    std::uint16_t orientation = 0;      // ORIENTATION_...
    bool isSeparate = false;            // a plane per channel
    bool isTiled = false;
    std::uint32_t tileWidth = 0;
    std::uint32_t tileLength = 0;
    std::uint32_t strips = 0;
    bool isBigEndian = false;
    bool isBigTiff = false;
    bool hasMorePages = false;
    std::uint64_t directory = 0;             // its offset
    std::vector<std::uint32_t> furtherTags;  // that say nothing about the samples or their place
};

// What libtiff says about a file: its first message.
struct TiffMessages {
    std::string first;
    bool withWarnings = false;
};

class TiffImage {
public:
    // Throws Failure for what is no TIFF, or one whose directory libtiff refuses.
    explicit TiffImage(const std::string& path);
    TiffImage(const TiffImage&) = delete;
    TiffImage& operator=(const TiffImage&) = delete;

    const TiffImageFacts& facts() const { return facts_; }

    // Returns red, green and blue, 0 to 65535, of each number of a palette; nothing without a
    // palette.
    std::vector<std::uint16_t> palette() const;

    // Makes row() return RGB for an image of YCbCr in JPEG.
    void decodeJpegAsRgb();

    // Throws Failure if the directory claims more samples than the file can hold. Call it before
    // row().
    void requirePlausible() const;

    // Returns a row, whose samples are in the processor's byte order: those of all channels, or
    // where planes are separate, those of one plane. Rows are asked for from the top one on. The
    // row is valid until the next one of its plane. Throws Failure when the file is damaged there.
    std::span<const std::uint8_t> row(std::uint32_t y, std::uint16_t plane);

private:
    struct Close {
        void operator()(tiff* file) const;
    };
    using File = std::unique_ptr<tiff, Close>;

    struct Plane {
        File file;  // one each, since libtiff decodes one strip at a time
        std::vector<std::uint8_t> rows;
        std::size_t rowBytes = 0;
    };

    File open();
    void readFacts();
    void readPlace();
    void readFurtherTags();
    Plane& planeOf(std::uint16_t number);
    void readTiles(Plane& plane, std::uint32_t y, std::uint16_t number);
    void require(bool succeeded) const;

    std::string path_;
    std::uint64_t maxPixelBytes_;  // that a file of this length can stand for
    TiffMessages messages_;
    bool decodesJpeg_ = false;
    TiffImageFacts facts_;
    std::vector<Plane> planes_;
};
