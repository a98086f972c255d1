#include "files/TiffImage.h"

#include <tiffio.h>

#include <algorithm>
#include <array>
#include <cstdarg>
#include <cstdio>

#include "files/DiskFile.h"
#include "files/MapFix.h"
#include "terminal/Failure.h"

namespace {

// Tags that libtiff counts among the further ones, though they say how samples are compressed.
constexpr std::uint32_t kCompressionTags[] = {
    TIFFTAG_PREDICTOR, TIFFTAG_JPEGTABLES, TIFFTAG_YCBCRCOEFFICIENTS, TIFFTAG_REFERENCEBLACKWHITE};

// The value of a tag, or its default.
template <typename Value>
Value valueOf(TIFF* file, std::uint32_t tag) {
    Value value{};
    TIFFGetFieldDefaulted(file, tag, &value);
    return value;
}

int noteMessage(TiffMessages& messages, const char* format, std::va_list values) {
    std::array<char, 300> text{};
    std::vsnprintf(text.data(), text.size(), format, values);
    if (messages.first.empty()) messages.first = text.data();
    return 1;  // libtiff prints nothing
}

int noteError(TIFF*, void* messages, const char*, const char* format, std::va_list values) {
    return noteMessage(*static_cast<TiffMessages*>(messages), format, values);
}

int noteWarning(TIFF*, void* messages, const char*, const char* format, std::va_list values) {
    auto& notes = *static_cast<TiffMessages*>(messages);
    return notes.withWarnings ? noteMessage(notes, format, values) : 1;
}

}  // namespace

void TiffImage::Close::operator()(tiff* file) const {
    TIFFClose(file);
}

TiffImage::TiffImage(const std::string& path)
    : path_(path), maxPixelBytes_(InputFile(path, "map").size() * kMaxPixelBytesPerByte) {
    planes_.resize(1);
    planes_[0].file = open();
    readFacts();
    readPlace();
    readFurtherTags();
}

// "m": the file is read, not mapped, so that one that becomes shorter meanwhile is an error. "c":
// strips are those of the file.
TiffImage::File TiffImage::open() {
    messages_ = {};
    TIFFOpenOptions* options = TIFFOpenOptionsAlloc();
    if (options == nullptr) throw std::bad_alloc();
    TIFFOpenOptionsSetMaxSingleMemAlloc(options, static_cast<tmsize_t>(maxPixelBytes_));
    TIFFOpenOptionsSetErrorHandlerExtR(options, noteError, &messages_);
    TIFFOpenOptionsSetWarningHandlerExtR(options, noteWarning, &messages_);
    File file(TIFFOpenExt(path_.c_str(), "rmc", options));
    TIFFOpenOptionsFree(options);
    require(file != nullptr);
    if (decodesJpeg_)
        require(TIFFSetField(file.get(), TIFFTAG_JPEGCOLORMODE, JPEGCOLORMODE_RGB) == 1);
    return file;
}

void TiffImage::require(bool succeeded) const {
    if (!succeeded || (messages_.withWarnings && !messages_.first.empty()))
        throw Failure(path_ + " cannot be read as TIFF: " +
                      (messages_.first.empty() ? "it is damaged" : messages_.first));
}

void TiffImage::readFacts() {
    TIFF* const file = planes_[0].file.get();
    facts_.width = valueOf<std::uint32_t>(file, TIFFTAG_IMAGEWIDTH);
    facts_.height = valueOf<std::uint32_t>(file, TIFFTAG_IMAGELENGTH);
    facts_.bits = valueOf<std::uint16_t>(file, TIFFTAG_BITSPERSAMPLE);
    facts_.sampleFormat = valueOf<std::uint16_t>(file, TIFFTAG_SAMPLEFORMAT);
    facts_.channels = valueOf<std::uint16_t>(file, TIFFTAG_SAMPLESPERPIXEL);
    facts_.photometric = facts_.channels < 3 ? PHOTOMETRIC_MINISBLACK : PHOTOMETRIC_RGB;
    TIFFGetField(file, TIFFTAG_PHOTOMETRIC, &facts_.photometric);
    facts_.compression = valueOf<std::uint16_t>(file, TIFFTAG_COMPRESSION);
    facts_.orientation = valueOf<std::uint16_t>(file, TIFFTAG_ORIENTATION);
    facts_.isSeparate = facts_.channels > 1 &&
                        valueOf<std::uint16_t>(file, TIFFTAG_PLANARCONFIG) == PLANARCONFIG_SEPARATE;
    std::uint16_t further = 0;
    const std::uint16_t* kinds = nullptr;
    TIFFGetFieldDefaulted(file, TIFFTAG_EXTRASAMPLES, &further, &kinds);
    const bool isGrey = facts_.photometric <= PHOTOMETRIC_MINISBLACK;
    const bool saysWhich = std::any_of(kinds, kinds + further, [](auto kind) { return kind != 0; });
    // Three grey channels are a colour to the exports. libtiff counts all but the first as further.
    facts_.furtherChannels = isGrey && facts_.channels == 3 && !saysWhich ? 0 : further;
    facts_.isPremultiplied =
        std::find(kinds, kinds + further, EXTRASAMPLE_ASSOCALPHA) != kinds + further;
}

void TiffImage::readPlace() {
    TIFF* const file = planes_[0].file.get();
    facts_.isTiled = TIFFIsTiled(file) != 0;
    if (facts_.isTiled) {
        TIFFGetField(file, TIFFTAG_TILEWIDTH, &facts_.tileWidth);
        TIFFGetField(file, TIFFTAG_TILELENGTH, &facts_.tileLength);
    } else {
        facts_.strips = TIFFNumberOfStrips(file);
    }
    facts_.isBigEndian = TIFFIsBigEndian(file) != 0;
    facts_.isBigTiff = TIFFIsBigTIFF(file) != 0;
    facts_.directory = TIFFCurrentDirOffset(file);
    facts_.hasMorePages = TIFFLastDirectory(file) == 0;
}

void TiffImage::readFurtherTags() {
    TIFF* const file = planes_[0].file.get();
    for (int i = 0; i < TIFFGetTagListCount(file); ++i) {
        const std::uint32_t tag = TIFFGetTagListEntry(file, i);
        if (std::ranges::count(kCompressionTags, tag) == 0) facts_.furtherTags.push_back(tag);
    }
}

std::vector<std::uint16_t> TiffImage::palette() const {
    const std::uint16_t* red = nullptr;
    const std::uint16_t* green = nullptr;
    const std::uint16_t* blue = nullptr;
    std::vector<std::uint16_t> colours;
    if (facts_.bits > 8 ||
        TIFFGetField(planes_[0].file.get(), TIFFTAG_COLORMAP, &red, &green, &blue) != 1)
        return colours;
    for (std::size_t i = 0; i < std::size_t{1} << facts_.bits; ++i)
        colours.insert(colours.end(), {red[i], green[i], blue[i]});
    return colours;
}

void TiffImage::decodeJpegAsRgb() {
    decodesJpeg_ = true;
    planes_[0].file = open();
}

void TiffImage::requirePlausible() const {
    TIFF* const file = planes_[0].file.get();
    const std::uint64_t rowBytes = TIFFScanlineSize64(file);
    require(rowBytes > 0);
    std::uint64_t tileRows = 0;  // all tiles that one row of the image goes through
    if (facts_.isTiled) {
        const std::uint64_t tileBytes = TIFFTileSize64(file);
        require(tileBytes > 0 && tileBytes <= maxPixelBytes_);
        require(facts_.bits >= 8 || facts_.tileWidth % 8 == 0);  // else rows start within a byte
        tileRows = (facts_.width / facts_.tileWidth + 1) * tileBytes;
    }
    if (rowBytes > maxPixelBytes_ / facts_.height || tileRows > maxPixelBytes_)
        throw Failure(path_ + " is too short for the " + std::to_string(facts_.width) + " x " +
                      std::to_string(facts_.height) + " pixels that it claims to hold");
}

TiffImage::Plane& TiffImage::planeOf(std::uint16_t number) {
    if (number >= planes_.size()) planes_.resize(number + 1u);
    Plane& plane = planes_[number];
    if (plane.file == nullptr) plane.file = open();
    return plane;
}

std::span<const std::uint8_t> TiffImage::row(std::uint32_t y, std::uint16_t number) {
    Plane& plane = planeOf(number);
    messages_ = {{}, true};  // a warning means damaged samples
    if (facts_.isTiled) {
        if (y % facts_.tileLength == 0) readTiles(plane, y, number);
        return std::span(plane.rows)
            .subspan(y % facts_.tileLength * plane.rowBytes, plane.rowBytes);
    }
    plane.rows.resize(static_cast<std::size_t>(TIFFScanlineSize64(plane.file.get())));
    require(TIFFReadScanline(plane.file.get(), plane.rows.data(), y, number) == 1);
    return plane.rows;
}

// Reads the tiles that row `y` and those below it go through, side by side.
void TiffImage::readTiles(Plane& plane, std::uint32_t y, std::uint16_t number) {
    TIFF* const file = plane.file.get();
    const auto tileRowBytes = static_cast<std::size_t>(TIFFTileRowSize64(file));
    std::vector<std::uint8_t> tile(static_cast<std::size_t>(TIFFTileSize64(file)));
    const std::size_t across = (facts_.width + facts_.tileWidth - 1) / facts_.tileWidth;
    const std::uint32_t rows = std::min(facts_.tileLength, facts_.height - y);
    plane.rowBytes = across * tileRowBytes;
    plane.rows.resize(plane.rowBytes * rows);
    for (std::size_t column = 0; column < across; ++column) {
        const auto x = static_cast<std::uint32_t>(column * facts_.tileWidth);
        require(TIFFReadTile(file, tile.data(), x, y, 0, number) >= 0);
        for (std::size_t i = 0; i < rows; ++i)
            std::copy_n(&tile[i * tileRowBytes], tileRowBytes,
                        &plane.rows[i * plane.rowBytes + column * tileRowBytes]);
    }
}
