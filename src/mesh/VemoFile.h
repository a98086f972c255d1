#pragma once
// VemoFile: a mesh file, its chunks and their elements. The layout is in VemoOps.h.

#include <cstddef>
#include <cstdint>
#include <memory>
#include <new>
#include <optional>

#include "files/Piece.h"

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

// The host's names for values put together from single bytes, little-endian; operations load them
// through Bytes.h instead. `readShort` is signed, `readanInt` 0 to 255.
std::uint32_t readUnInt(char b0, char b1, char b2, char b3);
float readaFloat(char b0, char b1, char b2, char b3);
int readShort(char b0, char b1);
int readanInt(char b);

// What a length of 0 in a chunk's header does to the search: it counts as 16 bytes, so that a
// damaged header is stepped over, or it ends the search.
enum class ZeroLength { kCountsAs16, kEndsSearch };

// A chunk whose elements are all in the file.
struct ChunkElements {
    std::uint64_t offset = 0;  // of the first element, from the start of the file
    std::uint32_t count = 0;
};

// A mesh file as every operation reads it: its bytes, then the last one once more, which the chunk
// search counts as part of the file. It is read in pieces, so that a large mesh passes through memory
// that stays in the processor's cache, or kept in memory as a whole.
class VemoFile {
public:
    explicit VemoFile(const char* path);

    // Open, and read so far without the disk failing.
    bool isGood() const { return file_.isOpen() && piece_.hasMemory() && !failed_; }

    // Takes the whole file into memory, for an operation that needs all of it at once or may write
    // over it. False when it is not open, too large for memory, or cannot be read.
    bool keep();

    // The whole file, once it is kept.
    const std::uint8_t* data() const { return kept_.get(); }

    // The length, the repeated byte included.
    std::size_t size() const { return size_; }

    // A value of a chunk's header; bytes past the end read as 0.
    std::uint32_t le32(std::uint64_t at);

    // The offset of the first chunk with this id at or after the chunk at `start`. Nothing when there
    // is none: the walk goes forward only and ends with the file.
    std::optional<std::uint32_t> findChunk(std::uint32_t id, std::uint32_t start,
                                           ZeroLength zeroLength);

    // The elements of the chunk at an offset. Nothing when its header or they are cut short.
    std::optional<ChunkElements> elementsOf(std::uint64_t chunk, std::size_t elementBytes);

    // Both: the elements of the first chunk with this id.
    std::optional<ChunkElements> findElements(std::uint32_t id, ZeroLength zeroLength,
                                              std::size_t elementBytes);

    // Hands all elements in file order to `use(bytes, count)`, some thousands a call. False when
    // the file could not be read to their end.
    template <typename Use>
    bool forEachElement(const ChunkElements& elements, std::size_t elementBytes, Use use) {
        return forEachElement(elements.offset, elements.count, elementBytes, use);
    }

    // The same for any run of elements, or of bytes, of the file.
    template <typename Use>
    bool forEachElement(std::uint64_t start, std::uint64_t elements, std::size_t elementBytes,
                        Use use) {
        const auto readAndUse = [&](std::uint64_t offset, std::size_t count) {
            const std::uint8_t* const bytes = bytesAt(offset, count * elementBytes);
            if (bytes != nullptr) use(bytes, count);
            return bytes != nullptr;
        };
        return forEachPiece(start, elements, elementBytes, readAndUse);
    }

    // Whether `path` leads to this very file.
    bool isSameAs(const char* path) const { return file_.isSameAs(path); }

private:
    // Of the kept file, or read now; null when they cannot be read.
    const std::uint8_t* bytesAt(std::uint64_t at, std::size_t count);
    bool read(std::uint64_t at, std::size_t count);

    bool failed_ = false;
    File file_;
    std::size_t size_ = 0;
    std::unique_ptr<std::uint8_t[]> kept_;
    Piece piece_{std::nothrow, kPieceBytes};
    std::uint8_t last_ = 0;  // the file's last byte, which is repeated behind it
};

// What an operation returns that did not find a chunk: `notOpened` where the mesh cannot be read,
// else that the chunk is missing.
float whyMissing(const VemoFile& vemo, float notOpened);
