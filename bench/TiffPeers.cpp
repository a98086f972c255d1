#include <tiffio.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <memory>
#include <vector>

#include "MapPeers.h"
#include "PlainPixels.h"
#include "bytes/Bytes.h"
#include "files/DiskFile.h"
#include "terminal/Failure.h"

namespace {

using ByteList = std::vector<std::uint8_t>;

struct Close {
    void operator()(TIFF* file) const { ::TIFFClose(file); }
};
using Tiff = std::unique_ptr<TIFF, Close>;

Tiff open(const std::string& path, const char* mode) {
    ::TIFFSetWarningHandler(nullptr);  // the converted maps carry an entry that readers skip
    Tiff file(::TIFFOpen(path.c_str(), mode));
    if (file == nullptr) throw Failure("libtiff cannot open " + path);
    return file;
}

// A map, strip by strip. libtiff presents the one strip of a large map as many small ones, which
// saves a buffer for the whole.
class Strips {
public:
    Strips(const std::string& path, const char* mode)
        : file_(open(path, mode)), count_(::TIFFNumberOfStrips(file_.get())) {}

    std::uint32_t count() const { return count_; }
    ByteList buffer() const {
        return ByteList(static_cast<std::size_t>(::TIFFStripSize(file_.get())));
    }

    // Fills `bytes`, which may shrink at the last strip.
    void read(std::uint32_t strip, ByteList& bytes) {
        const tmsize_t count = ::TIFFReadEncodedStrip(file_.get(), strip, bytes.data(),
                                                      static_cast<tmsize_t>(bytes.size()));
        if (count < 0) throw Failure("libtiff cannot read a strip");
        bytes.resize(static_cast<std::size_t>(count));
    }

    void write(std::uint32_t strip, ByteList& bytes) {
        const auto count = static_cast<tmsize_t>(bytes.size());
        if (::TIFFWriteEncodedStrip(file_.get(), strip, bytes.data(), count) != count)
            throw Failure("libtiff cannot write a strip");
    }

    std::size_t pixelBytes() const {
        std::uint32_t width = 0;
        ::TIFFGetField(file_.get(), TIFFTAG_IMAGEWIDTH, &width);
        return static_cast<std::size_t>(::TIFFScanlineSize(file_.get())) / width;
    }

private:
    Tiff file_;
    std::uint32_t count_;
};

// Calls `use` with the bytes of each strip.
template <typename Use>
void forEachStrip(const std::string& path, Use use) {
    Strips strips(path, "r");
    ByteList bytes = strips.buffer();
    for (std::uint32_t strip = 0; strip < strips.count(); ++strip) {
        strips.read(strip, bytes);
        use(bytes);
    }
}

// The 16-bit level of a float sample.
int levelOf(const std::uint8_t* sample) {
    const float q = loadLeFloat(sample) * 65535.0f;
    return static_cast<int>((q >= 0.0f ? std::min(q, 65535.0f) : 0.0f) + 0.5f);
}

void storeLevels(std::uint16_t* to, const std::uint8_t* samples, std::size_t count) {
    for (std::size_t i = 0; i < count; ++i)
        to[i] = static_cast<std::uint16_t>(levelOf(samples + 4 * i));
}

void markLevels(std::uint8_t* seen, const std::uint8_t* samples, std::size_t count) {
    for (std::size_t i = 0; i < count; ++i)
        seen[levelOf(samples + 4 * i)] = 1;
}

}  // namespace

float mergeByLibtiff(const Maps& maps) {
    Strips source(maps.tile, "r");
    Strips target(maps.map, "r+");
    const std::size_t pixelBytes = target.pixelBytes();
    const auto merge = pixelBytes == 3 ? plainMerge<3> : plainMerge<12>;
    ByteList tile = source.buffer();
    ByteList map = target.buffer();
    ByteList background;
    for (std::uint32_t strip = 0; strip < target.count(); ++strip) {
        source.read(strip, tile);
        target.read(strip, map);
        if (strip == 0) background.assign(tile.data(), tile.data() + pixelBytes);
        merge(map.data(), tile.data(), background.data(), map.size() / pixelBytes);
        target.write(strip, map);
    }
    return 0.0f;
}

float swapByLibtiff(const Maps& maps) {
    Strips strips(maps.map, "r+");
    ByteList map = strips.buffer();
    for (std::uint32_t strip = 0; strip < strips.count(); ++strip) {
        strips.read(strip, map);
        plainSwap(map.data(), map.size() / 3);
        strips.write(strip, map);
    }
    return 0.0f;
}

float convertByLibtiff(const Maps& maps) {
    const Tiff file = open(maps.made, "w");
    ::TIFFSetField(file.get(), TIFFTAG_IMAGEWIDTH, maps.side);
    ::TIFFSetField(file.get(), TIFFTAG_IMAGELENGTH, maps.side);
    ::TIFFSetField(file.get(), TIFFTAG_BITSPERSAMPLE, 16);
    ::TIFFSetField(file.get(), TIFFTAG_SAMPLESPERPIXEL, 3);
    ::TIFFSetField(file.get(), TIFFTAG_ROWSPERSTRIP, maps.side);
    ::TIFFSetField(file.get(), TIFFTAG_PLANARCONFIG, PLANARCONFIG_CONTIG);
    ::TIFFSetField(file.get(), TIFFTAG_PHOTOMETRIC, PHOTOMETRIC_RGB);
    std::vector<std::uint16_t> levels;
    forEachStrip(maps.map, [&](const ByteList& samples) {
        levels.resize(samples.size() / 4);
        storeLevels(levels.data(), samples.data(), levels.size());
        const auto count = static_cast<tmsize_t>(2 * levels.size());
        // The output's one strip grows with each call.
        if (::TIFFWriteRawStrip(file.get(), 0, levels.data(), count) != count)
            throw Failure("libtiff cannot write a strip");
    });
    return 0.0f;
}

float scaleByLibtiff(const Maps& maps) {
    ByteList seen(65536);
    forEachStrip(maps.map, [&](const ByteList& samples) {
        markLevels(seen.data(), samples.data(), samples.size() / 4);
    });
    const auto levels = static_cast<float>(std::count(seen.begin(), seen.end(), 1));
    return 18.49f * std::exp(1049.0f / levels + levels * -7.071e-05f);
}

float targaByLibtiff(const Maps& maps) {
    Strips strips(maps.map, "r");
    std::array<std::uint8_t, 18> head{};
    head[2] = 2;  // uncompressed colours
    storeLe16(&head[12], static_cast<std::uint16_t>(maps.side));
    storeLe16(&head[14], static_cast<std::uint16_t>(maps.side));
    head[16] = 24;  // bits per pixel
    OutputFile file(maps.made);
    file.append(head);
    const std::size_t rowBytes = std::size_t{3} * maps.side;
    ByteList map = strips.buffer();
    for (std::uint32_t strip = strips.count(); strip-- > 0;) {
        map.resize(map.capacity());
        strips.read(strip, map);
        plainSwap(map.data(), map.size() / 3);
        for (std::size_t row = map.size(); row > 0; row -= rowBytes)
            file.append({&map[row - rowBytes], rowBytes});
    }
    file.finish();
    return 0.0f;
}

std::uint64_t digestOfPixels(const std::string& path) {
    std::uint64_t digest = 0;
    forEachStrip(path, [&](const ByteList& bytes) { digest = digestOf(bytes, digest); });
    return digest;
}
