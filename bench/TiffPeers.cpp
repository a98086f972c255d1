#include "TiffPeers.h"

#include <tiffio.h>

#include <algorithm>
#include <bitset>
#include <cmath>
#include <cstring>
#include <memory>
#include <span>
#include <vector>

#include "Files.h"
#include "PlainPixels.h"
#include "terminal/Failure.h"

namespace {

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

struct Size {
    std::uint32_t width;
    std::uint32_t height;
};

Size sizeOf(TIFF* file) {
    Size size{};
    ::TIFFGetField(file, TIFFTAG_IMAGEWIDTH, &size.width);
    ::TIFFGetField(file, TIFFTAG_IMAGELENGTH, &size.height);
    return size;
}

using ByteList = std::vector<std::uint8_t>;

// A map, strip by strip. libtiff presents the one strip of a large map as many small ones, which
// spares a buffer for the whole.
class Strips {
public:
    Strips(const std::string& path, const char* mode)
        : file_(open(path, mode)), count_(::TIFFNumberOfStrips(file_.get())) {}

    Size size() const { return sizeOf(file_.get()); }
    std::uint32_t count() const { return count_; }
    ByteList buffer() const {
        return ByteList(static_cast<std::size_t>(::TIFFStripSize(file_.get())));
    }
    std::size_t pixelBytes() const {
        return static_cast<std::size_t>(::TIFFScanlineSize(file_.get())) /
               sizeOf(file_.get()).width;
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

private:
    Tiff file_;
    std::uint32_t count_;
};

}  // namespace

float mergeByLibtiff(const std::string& source, const std::string& target) {
    Strips tiles(source, "r");
    Strips maps(target, "r+");
    const std::size_t pixelBytes = maps.pixelBytes();
    ByteList tile = tiles.buffer();
    ByteList map = maps.buffer();
    ByteList background;
    for (std::uint32_t strip = 0; strip < maps.count(); ++strip) {
        tiles.read(strip, tile);
        maps.read(strip, map);
        if (strip == 0) background.assign(tile.data(), tile.data() + pixelBytes);
        plainMerge(map.data(), tile.data(), background.data(), map.size() / pixelBytes, pixelBytes);
        maps.write(strip, map);
    }
    return 0.0f;
}

float swapByLibtiff(const std::string& path) {
    Strips maps(path, "r+");
    ByteList map = maps.buffer();
    for (std::uint32_t strip = 0; strip < maps.count(); ++strip) {
        maps.read(strip, map);
        plainSwap(map.data(), map.size() / 3, 0, 2);
        maps.write(strip, map);
    }
    return 0.0f;
}

float convertByLibtiff(const std::string& in, const std::string& out) {
    Strips maps(in, "r");
    const auto [width, height] = maps.size();
    const Tiff file = open(out, "w");
    ::TIFFSetField(file.get(), TIFFTAG_IMAGEWIDTH, width);
    ::TIFFSetField(file.get(), TIFFTAG_IMAGELENGTH, height);
    ::TIFFSetField(file.get(), TIFFTAG_BITSPERSAMPLE, 16);
    ::TIFFSetField(file.get(), TIFFTAG_SAMPLESPERPIXEL, 3);
    ::TIFFSetField(file.get(), TIFFTAG_ROWSPERSTRIP, height);
    ::TIFFSetField(file.get(), TIFFTAG_PLANARCONFIG, PLANARCONFIG_CONTIG);
    ::TIFFSetField(file.get(), TIFFTAG_PHOTOMETRIC, PHOTOMETRIC_RGB);
    ByteList map = maps.buffer();
    ByteList levels;
    for (std::uint32_t strip = 0; strip < maps.count(); ++strip) {
        maps.read(strip, map);
        levels.resize(map.size() / 2);
        plainLevels(levels.data(), map.data(), map.size() / 4);
        const auto count = static_cast<tmsize_t>(levels.size());
        // The output's one strip grows with each call.
        if (::TIFFWriteRawStrip(file.get(), 0, levels.data(), count) != count)
            throw Failure("libtiff cannot write a strip");
    }
    return 0.0f;
}

float scaleByLibtiff(const std::string& path) {
    Strips maps(path, "r");
    ByteList map = maps.buffer();
    ByteList seen(65536);
    for (std::uint32_t strip = 0; strip < maps.count(); ++strip) {
        maps.read(strip, map);
        plainMark(seen.data(), map.data(), map.size() / 4);
    }
    return plainScale(seen);
}

float targaByLibtiff(const std::string& in, const std::string& out) {
    Strips maps(in, "r");
    const auto [width, height] = maps.size();
    const std::size_t rowBytes = std::size_t{3} * width;
    PlainWriter file(out, plainTargaHead(width, height));
    ByteList map = maps.buffer();
    ByteList reversed(rowBytes);
    for (std::uint32_t strip = maps.count(); strip-- > 0;) {
        map.resize(map.capacity());
        maps.read(strip, map);
        for (std::size_t row = map.size(); row > 0; row -= rowBytes) {
            plainReverse(reversed.data(), &map[row - rowBytes], width);
            file.append(reversed);
        }
    }
    return 0.0f;
}

std::uint64_t digestOfPixels(const std::string& path) {
    Strips strips(path, "r");
    ByteList bytes = strips.buffer();
    std::uint64_t digest = strips.pixelBytes();
    for (std::uint32_t strip = 0; strip < strips.count(); ++strip) {
        strips.read(strip, bytes);
        digest = digestOf(bytes, digest);
    }
    return digest;
}
