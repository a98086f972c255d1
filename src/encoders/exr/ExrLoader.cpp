#include "encoders/exr/ExrLoader.h"

#include <zlib.h>

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
#include "encoders/ExrRange.h"
#include "encoders/exr/ExrArena.h"
#include "encoders/exr/ExrCheck.h"
#include "encoders/exr/Inflater.h"
#include "files/File.h"

namespace {

// Of the running load; null between loads.
ExrArena* arena = nullptr;
const Inflater* inflater = nullptr;

// The loader allocates and frees memory for one chunk after the other. Where the system takes each
// block back and maps fresh pages for the next, that costs as much as the decoding. After one large
// block, never touched, has been freed, glibc keeps blocks of such sizes.
void keepFreedMemory() {
    void* volatile block = std::malloc(std::size_t{16} << 20);  // or the compiler leaves it out
    std::free(block);
}

struct LoaderState {
    explicit LoaderState(ExrArena& memory) {
        keepFreedMemory();
        arena = &memory;
        inflater = &ownInflater;
    }
    LoaderState(const LoaderState&) = delete;
    LoaderState& operator=(const LoaderState&) = delete;
    ~LoaderState() {
        arena = nullptr;
        inflater = nullptr;
    }
    const Inflater ownInflater;
};

// Called by the loader in place of zlib's uncompress.
int inflateWhole(unsigned char* to, unsigned long* toBytes, const unsigned char* from,
                 unsigned long fromBytes) {
    std::size_t written = *toBytes;
    if (!inflater->inflate(to, written, from, fromBytes)) return Z_DATA_ERROR;
    *toBytes = static_cast<unsigned long>(written);
    return Z_OK;
}

}  // namespace

// tinyexr is compiled in here, with its memory allocated by the arena.
#define malloc(bytes) arena->allocate(bytes)
#define calloc(count, size) arena->allocateZeroed(count, size)
#define free(block) arena->release(block)
#define strdup(text) arena->copyOf(text)
#define uncompress(to, toBytes, from, fromBytes) inflateWhole(to, toBytes, from, fromBytes)
#define TINYEXR_IMPLEMENTATION
#include <tinyexr.h>
#undef malloc
#undef calloc
#undef free
#undef strdup
#undef uncompress

using namespace exr_status;

static_assert(kNotExr == TINYEXR_ERROR_INVALID_MAGIC_NUMBER &&
              kBadVersion == TINYEXR_ERROR_INVALID_EXR_VERSION &&
              kNoPath == TINYEXR_ERROR_INVALID_ARGUMENT && kBadData == TINYEXR_ERROR_INVALID_DATA &&
              kNotOpened == TINYEXR_ERROR_CANT_OPEN_FILE &&
              kUnknownFormat == TINYEXR_ERROR_UNSUPPORTED_FORMAT &&
              kBadHeader == TINYEXR_ERROR_INVALID_HEADER &&
              kUnknownFeature == TINYEXR_ERROR_UNSUPPORTED_FEATURE);

namespace {

// Damaged chunks make the loader read past the end of the file: zeros follow it.
constexpr std::size_t kZeroTail = 64 * 1024;

// The first channel's half floats become floats on request. Whole numbers keep their type, and so do
// the other channels, which are not used.
void requestFloats(EXRHeader& header) {
    if (header.pixel_types[0] == TINYEXR_PIXELTYPE_HALF)
        header.requested_pixel_types[0] = TINYEXR_PIXELTYPE_FLOAT;
}

// Passes on samples, four bytes each. Whole numbers become floats in place.
void passOn(void* samples, std::size_t count, const ExrLayout& layout, const ExrReceiver& receive) {
    auto* const floats = static_cast<float*>(samples);
    for (std::size_t i = 0; i < count && layout.firstPixelType == 0; ++i) {
        std::uint32_t number = 0;
        std::memcpy(&number, &floats[i], sizeof number);
        floats[i] = static_cast<float>(number);
    }
    receive({floats, count});
}

// Copies a tile to its place in the plane. In memory its rows are as far apart as the tile is wide,
// also where it reaches beyond the picture, and they are in reverse order, from the tile's lower end
// up, unless the file's row order is increasing.
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
        std::memcpy(&plane[(top + row) * width + left], tile.images[0] + 4 * stored * tileWidth,
                    columns * sizeof(float));
    }
}

// Smaller resolutions of a tiled picture are objects of their own, which the arena does not track.
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

int loadTiles(const EXRHeader& header, const FileBytes& file, const ExrLayout& layout,
              const ExrReceiver& receive) {
    Levels levels;
    const char* message = nullptr;
    const int status =
        LoadEXRImageFromMemory(&levels.first, &header, file.data.get(), file.size, &message);
    if (status != TINYEXR_SUCCESS) {
        levels.first.next_level = nullptr;  // the loader has deleted them
        return status;
    }
    std::vector<float> plane(static_cast<std::size_t>(layout.width) *
                             static_cast<std::size_t>(layout.height));
    for (int i = 0; i < levels.first.num_tiles; ++i)
        placeTile(plane, levels.first.tiles[i], layout);
    passOn(plane.data(), plane.size(), layout, receive);
    return kOk;
}

// Loads some rows, from row `first` of the picture on, where a chunk starts: for the loader they are
// a picture of their own, and its table of chunks starts at theirs.
int loadRows(const EXRHeader& whole, int first, int rows, const FileBytes& file,
             const ExrLayout& layout, const ExrReceiver& receive) {
    constexpr unsigned kTableEntryBytes = 8;
    EXRHeader header = whole;
    header.data_window.min_y += first;
    header.data_window.max_y = header.data_window.min_y + rows - 1;
    header.header_len += static_cast<unsigned>(first / layout.chunkRows) * kTableEntryBytes;
    header.chunk_count = 0;  // as many as the rows need

    EXRImage image;
    InitEXRImage(&image);
    const char* message = nullptr;
    const int status =
        LoadEXRImageFromMemory(&image, &header, file.data.get(), file.size, &message);
    if (status != TINYEXR_SUCCESS) return status;
    const auto samples = static_cast<std::size_t>(layout.width) * static_cast<std::size_t>(rows);
    passOn(image.images[0], samples, layout, receive);
    FreeEXRImage(&image);
    return kOk;
}

// How many rows are loaded at a time: those of whole chunks, as many as make up a piece.
int rowsAtOnce(const ExrLayout& layout) {
    const std::size_t chunkBytes = sizeof(float) * static_cast<std::size_t>(layout.width) *
                                   static_cast<std::size_t>(layout.chunkRows);
    const int chunks = static_cast<int>(std::max<std::size_t>(kPieceBytes / chunkBytes, 1));
    return std::min(chunks * layout.chunkRows, layout.height);
}

int loadAllRows(const EXRHeader& header, const FileBytes& file, const ExrLayout& layout,
                const ExrReceiver& receive) {
    const int step = rowsAtOnce(layout);
    const int pieces = (layout.height + step - 1) / step;
    for (int i = 0; i < pieces; ++i) {
        const int first = (layout.increasingRows ? i : pieces - 1 - i) * step;
        const int rows = std::min(step, layout.height - first);
        const int status = loadRows(header, first, rows, file, layout, receive);
        if (status != kOk) return status;
    }
    return kOk;
}

int load(FileBytes& file, ExrSize& size, const ExrReceiver& receive) {
    EXRVersion version;
    int status = ParseEXRVersionFromMemory(&version, file.data.get(), file.size);
    if (status != TINYEXR_SUCCESS) return status;
    if (version.multipart || version.non_image) return kBadData;
    ExrLayout layout;
    status = checkExr({file.data.get(), file.size}, layout);
    if (status != kOk) return status;
    size = {layout.width, layout.height};

    ExrArena memory;
    const LoaderState state(memory);
    EXRHeader header;
    InitEXRHeader(&header);
    const char* message = nullptr;
    status = ParseEXRHeaderFromMemory(&header, &version, file.data.get(), file.size, &message);
    if (status != TINYEXR_SUCCESS) return status;
    requestFloats(header);
    return layout.tiled ? loadTiles(header, file, layout, receive)
                        : loadAllRows(header, file, layout, receive);
}

}  // namespace

int LoadMultiChannelEXRFromFile(const char* path, ExrSize& size, const ExrReceiver& receive) {
    if (path == nullptr) return kNoPath;
    FileBytes file = loadFile(path, kZeroTail);
    if (file.data == nullptr) return kNotOpened;
    try {
        return load(file, size, receive);
    } catch (const std::exception&) {
        return kBadData;
    }
}
