#pragma once
// VemoFile: a mesh file in memory, its chunks and their elements. The layout stands in VemoOps.h.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>

#include "bytes/Bytes.h"
#include "files/File.h"
#include "files/PieceBuffer.h"

inline constexpr std::uint32_t kVertexChunk = 10001;
inline constexpr std::uint32_t kFaceChunk = 20001;
inline constexpr std::uint32_t kFaceUvChunk = 25001;
inline constexpr std::uint32_t kMaskChunk = 30001;
inline constexpr std::uint32_t kVertexColourChunk = 35001;
inline constexpr std::uint32_t kFaceGroupChunk = 40001;

inline constexpr std::size_t kFirstChunk = 32;
inline constexpr std::size_t kChunkHeaderBytes = 16;
inline constexpr std::size_t kVertexBytes = 12;
inline constexpr std::size_t kFaceBytes = 16;
inline constexpr std::size_t kFaceUvBytes = 32;
inline constexpr std::size_t kColourBytes = 4;
inline constexpr std::size_t kFaceGroupBytes = 2;

// Values from single bytes, little-endian. `readShort` is signed, `readanInt` 0 to 255.
std::uint32_t readUnInt(char b0, char b1, char b2, char b3);
float readaFloat(char b0, char b1, char b2, char b3);
int readShort(char b0, char b1);
int readanInt(char b);

// A mesh file as it was loaded: its bytes, then the last one once more. The chunk search counts the
// repeated byte as part of the file.
struct VemoFile {
    FileBytes file;

    bool isOpen() const { return file.data != nullptr; }
    Bytes loaded() const { return {file.data.get(), file.size + 1}; }
};

VemoFile loadVemo(const char* path);

// What a length of 0 in a chunk's header does to the search: it counts as 16 bytes, so that a
// damaged header is stepped over, or it ends the search.
enum class ZeroLength { kCountsAs16, kEndsSearch };

// A chunk whose elements all lie within the file.
struct ChunkElements {
    std::uint64_t offset = 0;  // of the first element, from the start of the file
    std::uint32_t count = 0;
};

// The offset of the first chunk with this id at or after the chunk at `start`. Nothing when there
// is none: the walk goes forward only and ends with the file. `mesh` is a loaded file's Bytes or
// VemoPieces.
template <typename Mesh>
std::optional<std::uint32_t> findChunk(Mesh&& mesh, std::uint32_t id, std::uint32_t start,
                                       ZeroLength zeroLength) {
    std::uint64_t position = start;
    while (position < mesh.size && position <= UINT32_MAX) {
        if (mesh.le32(position) == id) return static_cast<std::uint32_t>(position);
        std::uint32_t length = mesh.le32(position + 4);
        if (length == 0) {
            if (zeroLength == ZeroLength::kEndsSearch) return {};
            length = kChunkHeaderBytes;
        }
        position += length;
    }
    return {};
}

// Nothing when the header or the elements are cut short.
template <typename Mesh>
std::optional<ChunkElements> chunkElements(Mesh&& mesh, std::uint64_t chunk,
                                           std::size_t elementBytes) {
    constexpr std::uint64_t kCount = 8;  // where the header has it
    if (chunk + kCount + 4 > mesh.size) return {};
    const std::uint32_t count = mesh.le32(chunk + kCount);
    const std::uint64_t first = chunk + kChunkHeaderBytes;
    if (!mesh.holds(first, count, elementBytes)) return {};
    return ChunkElements{first, count};
}

// Both steps: the elements of the first such chunk. Nothing when the chunk is missing or cut short.
template <typename Mesh>
std::optional<ChunkElements> findElements(Mesh&& mesh, std::uint32_t id, ZeroLength zeroLength,
                                          std::size_t elementBytes) {
    const auto chunk = findChunk(mesh, id, kFirstChunk, zeroLength);
    if (!chunk) return {};
    return chunkElements(mesh, *chunk, elementBytes);
}

// A mesh file read in pieces, for operations that go through it in order: however large the mesh, its
// bytes pass through a block that stays in the processor's cache. Reads as a loaded file does, the
// repeated byte included.
class VemoPieces {
public:
    explicit VemoPieces(const char* path);

    // Open, and read so far without the disk failing.
    bool isGood() const { return file_.isOpen() && buffer_.hasMemory() && !failed_; }

    // A value of the chunk headers; bytes past the end read as 0.
    std::uint32_t le32(std::uint64_t at);

    bool holds(std::uint64_t at, std::uint64_t count, std::uint64_t elementBytes) const {
        return Bytes{nullptr, size}.holds(at, count, elementBytes);
    }

    // From now on reads from memory, for an operation that may write over the file. False when there
    // is no memory for all of it, or the disk fails.
    bool keep();

    // Hands all elements in file order to `use(bytes, count)`, some thousands a call. False when
    // the file could not be read to their end.
    template <typename Use>
    bool forEachPiece(const ChunkElements& elements, std::size_t elementBytes, Use use) {
        return forEachPiece(elements.offset, elements.count, elementBytes, use);
    }

    // The same for any run of elements, or of bytes, that lies within the file.
    template <typename Use>
    bool forEachPiece(std::uint64_t offset, std::uint64_t elements, std::size_t elementBytes,
                      Use use) {
        const std::size_t most = kPieceBytes / elementBytes;
        for (std::uint64_t done = 0; done < elements;) {
            const auto count =
                static_cast<std::size_t>(std::min<std::uint64_t>(most, elements - done));
            if (!read(offset + done * elementBytes, count * elementBytes)) return false;
            use(piece_, count);
            done += count;
        }
        return true;
    }

    // Whether `path` leads to this very file.
    bool isSameAs(const char* path) const { return file_.isSameAs(path); }

    std::size_t size = 0;  // the repeated byte included

private:
    bool read(std::uint64_t at, std::size_t count);
    std::size_t readAt(std::uint64_t at, std::size_t count);

    bool failed_ = false;
    File file_;
    std::unique_ptr<std::uint8_t[]> kept_;  // the whole file, once it is kept
    PieceBuffer buffer_ = PieceBuffer::ifThereIsMemory();
    std::uint8_t* piece_ = nullptr;  // in the buffer
    std::uint64_t pieceStart_ = 0;
    std::size_t pieceBytes_ = 0;  // of the file, from pieceStart_ on
    std::uint8_t last_ = 0;       // the file's last byte, which is repeated behind it
};
