#include "encoders/ExrLoader.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <exception>
#include <fstream>
#include <limits>
#include <map>
#include <set>
#include <sstream>
#include <string>

#include "bytes/Bytes.h"
#include "encoders/ExrArena.h"
#include "encoders/ExrCheck.h"
#include "files/File.h"

namespace {

// The arena of the load that runs; null between loads.
ExrArena* arena = nullptr;

struct ArenaInUse {
    explicit ArenaInUse(ExrArena& used) { arena = &used; }
    ArenaInUse(const ArenaInUse&) = delete;
    ArenaInUse& operator=(const ArenaInUse&) = delete;
    ~ArenaInUse() { arena = nullptr; }
};

}  // namespace

// tinyexr is compiled in right here, with its memory taken from the arena.
#define malloc(bytes) arena->take(bytes)
#define calloc(count, size) arena->takeZeroed(count, size)
#define free(block) arena->give(block)
#define strdup(text) arena->takeCopy(text)
#define TINYEXR_IMPLEMENTATION
#include <tinyexr.h>
#undef malloc
#undef calloc
#undef free
#undef strdup

using namespace exr_status;

static_assert(kNotExr == TINYEXR_ERROR_INVALID_MAGIC_NUMBER &&
              kBadVersion == TINYEXR_ERROR_INVALID_EXR_VERSION &&
              kNoPath == TINYEXR_ERROR_INVALID_ARGUMENT && kBadData == TINYEXR_ERROR_INVALID_DATA &&
              kNotOpened == TINYEXR_ERROR_CANT_OPEN_FILE &&
              kUnknownFormat == TINYEXR_ERROR_UNSUPPORTED_FORMAT &&
              kBadHeader == TINYEXR_ERROR_INVALID_HEADER &&
              kUnknownFeature == TINYEXR_ERROR_UNSUPPORTED_FEATURE);

namespace {

// Damaged chunks make the loader read on behind them: there are zeros there.
constexpr std::size_t kZeroTail = 64 * 1024;

// Half floats become floats on request; whole numbers keep their type.
void requestFloats(EXRHeader& header) {
    for (int i = 0; i < header.num_channels; ++i) {
        if (header.pixel_types[i] == TINYEXR_PIXELTYPE_HALF)
            header.requested_pixel_types[i] = TINYEXR_PIXELTYPE_FLOAT;
    }
}

// Copies samples, four bytes each, as floats.
void copySamples(float* to, const unsigned char* from, std::size_t count, bool wholeNumbers) {
    if (!wholeNumbers) {
        std::memcpy(to, from, count * sizeof(float));
        return;
    }
    for (std::size_t i = 0; i < count; ++i)
        to[i] = static_cast<float>(loadLe32(from + 4 * i));
}

// Copies a tile to its place in the plane. In memory its rows are as far apart as the tile is wide,
// also where it reaches beyond the picture, and they are turned upside down, from the tile's lower
// end on, unless the file's row order is increasing.
void placeTile(std::vector<float>& plane, const EXRTile& tile, const ExrLayout& layout) {
    const auto width = static_cast<std::size_t>(layout.width);
    const auto tileWidth = static_cast<std::size_t>(layout.tileWidth);
    const auto tileHeight = static_cast<std::size_t>(layout.tileHeight);
    const std::size_t left = static_cast<std::size_t>(tile.offset_x) * tileWidth;
    const std::size_t top = static_cast<std::size_t>(tile.offset_y) * tileHeight;
    const std::size_t columns = std::min(tileWidth, width - left);
    const std::size_t rows = std::min(tileHeight, static_cast<std::size_t>(layout.height) - top);
    for (std::size_t row = 0; row < rows; ++row) {
        const std::size_t stored = layout.increasingRows ? row : tileHeight - 1 - row;
        copySamples(&plane[(top + row) * width + left], tile.images[0] + 4 * stored * tileWidth,
                    columns, layout.firstPixelType == 0);
    }
}

std::vector<float> firstPlaneOf(const EXRImage& loaded, const ExrLayout& layout) {
    std::vector<float> plane(static_cast<std::size_t>(layout.width) *
                             static_cast<std::size_t>(layout.height));
    if (loaded.images != nullptr)
        copySamples(plane.data(), loaded.images[0], plane.size(), layout.firstPixelType == 0);
    for (int i = 0; i < loaded.num_tiles; ++i)
        placeTile(plane, loaded.tiles[i], layout);
    return plane;
}

// Smaller resolutions of a tiled picture are objects of their own, which the arena does not know.
struct Levels {
    EXRImage first;

    Levels() { InitEXRImage(&first); }
    Levels(const Levels&) = delete;
    Levels& operator=(const Levels&) = delete;
    ~Levels() {
        for (EXRImage* next = first.next_level; next != nullptr;) {
            EXRImage* const after = next->next_level;
            delete next;
            next = after;
        }
    }
};

int load(ExrImage& image, const FileBytes& file) {
    EXRVersion version;
    int status = ParseEXRVersionFromMemory(&version, file.data.get(), file.size);
    if (status != TINYEXR_SUCCESS) return status;
    if (version.multipart || version.non_image) return kBadData;
    ExrLayout layout;
    status = checkExr({file.data.get(), file.size}, layout);
    if (status != kOk) return status;

    ExrArena memory;
    const ArenaInUse inUse(memory);
    EXRHeader header;
    InitEXRHeader(&header);
    Levels levels;
    const char* message = nullptr;
    status = ParseEXRHeaderFromMemory(&header, &version, file.data.get(), file.size, &message);
    if (status != TINYEXR_SUCCESS) return status;
    requestFloats(header);
    status = LoadEXRImageFromMemory(&levels.first, &header, file.data.get(), file.size, &message);
    if (status != TINYEXR_SUCCESS) {
        levels.first.next_level = nullptr;  // the loader has deleted them
        return status;
    }
    image = {layout.width, layout.height, firstPlaneOf(levels.first, layout)};
    return kOk;
}

}  // namespace

int LoadMultiChannelEXRFromFile(ExrImage& image, const char* path) {
    if (path == nullptr) return kNoPath;
    const FileBytes file = loadFile(path, kZeroTail);
    if (file.data == nullptr) return kNotOpened;
    try {
        return load(image, file);
    } catch (const std::exception&) {
        return kBadData;
    }
}
