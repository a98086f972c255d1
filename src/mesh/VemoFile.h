#pragma once
// VemoFile: a mesh file in memory, its chunks and their elements. The layout stands in VemoOps.h.

#include <cstddef>
#include <cstdint>
#include <optional>

#include "bytes/Bytes.h"
#include "files/File.h"

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

// The offset of the first chunk with this id at or after the chunk at `start`. Nothing when there
// is none: the walk goes forward only and ends with the file.
std::optional<std::uint32_t> findChunk(const Bytes& bytes, std::uint32_t id, std::uint32_t start,
                                       ZeroLength zeroLength);

// A chunk whose elements all lie within the file.
struct ChunkElements {
    std::uint64_t offset = 0;  // of the first element, from the start of the file
    std::uint32_t count = 0;
};

// Nothing when the header or the elements are cut short.
std::optional<ChunkElements> chunkElements(Bytes bytes, std::uint64_t chunk,
                                           std::size_t elementBytes);

// Both steps: the elements of the first such chunk at or after `start`. Nothing when the chunk is
// missing or cut short.
std::optional<ChunkElements> findElements(const VemoFile& vemo, std::uint32_t id,
                                          std::uint32_t start, ZeroLength zeroLength,
                                          std::size_t elementBytes);
