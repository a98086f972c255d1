// EXR files, written by OpenEXR's own library.

#include <ImfChannelList.h>
#include <ImfFrameBuffer.h>
#include <ImfHeader.h>
#include <ImfOutputFile.h>
#include <ImfTiledOutputFile.h>

#include "seeds/SeedFiles.h"

namespace {

constexpr int kWidth = 7;
constexpr int kHeight = 5;

constexpr Imf::Compression kCompressions[] = {Imf::NO_COMPRESSION, Imf::RLE_COMPRESSION,
                                              Imf::ZIPS_COMPRESSION, Imf::ZIP_COMPRESSION,
                                              Imf::PIZ_COMPRESSION};

Imf::Header headerOf(Imf::Compression compression, Imf::PixelType type) {
    Imf::Header header(kWidth, kHeight);
    header.compression() = compression;
    header.channels().insert("A", Imf::Channel(type));
    header.channels().insert("B", Imf::Channel(Imf::FLOAT));
    return header;
}

// Samples that compress, so that a compressed chunk is not stored as it is.
template <typename File>
void setSamples(File& file, Imf::PixelType type) {
    static const std::vector<std::uint32_t> samples(kWidth * kHeight, 0x3C003C00u);
    auto* const base = reinterpret_cast<char*>(const_cast<std::uint32_t*>(samples.data()));
    Imf::FrameBuffer frame;
    frame.insert("A", Imf::Slice(type, base, 4, 4 * kWidth));
    frame.insert("B", Imf::Slice(Imf::FLOAT, base, 4, 4 * kWidth));
    file.setFrameBuffer(frame);
}

void writeRows(const std::string& path, Imf::Compression compression, Imf::PixelType type) {
    Imf::OutputFile file(path.c_str(), headerOf(compression, type));
    setSamples(file, type);
    file.writePixels(kHeight);
}

void writeTiles(const std::string& path, Imf::Compression compression, Imf::LevelMode mode) {
    Imf::Header header = headerOf(compression, Imf::HALF);
    header.setTileDescription(Imf::TileDescription(4, 4, mode));
    Imf::TiledOutputFile file(path.c_str(), header);
    setSamples(file, Imf::HALF);
    for (int y = 0; y < file.numYLevels(); ++y) {
        for (int x = 0; x < file.numXLevels(); ++x) {
            if (file.isValidLevel(x, y))
                file.writeTiles(0, file.numXTiles(x) - 1, 0, file.numYTiles(y) - 1, x, y);
        }
    }
}

}  // namespace

SeedFiles exrSeeds() {
    SeedFiles seeds;
    const TempDir dir;
    const std::string path = dir.path("seed.exr");
    for (const Imf::Compression compression : kCompressions) {
        const std::string number = std::to_string(compression);
        for (const Imf::PixelType type : {Imf::UINT, Imf::HALF, Imf::FLOAT}) {
            writeRows(path, compression, type);
            seeds.emplace("rows-" + number + '-' + std::to_string(type), readBytes(path));
        }
        for (const Imf::LevelMode mode : {Imf::ONE_LEVEL, Imf::MIPMAP_LEVELS, Imf::RIPMAP_LEVELS}) {
            writeTiles(path, compression, mode);
            seeds.emplace("tiles-" + number + '-' + std::to_string(mode), readBytes(path));
        }
    }
    return seeds;
}
