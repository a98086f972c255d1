#include "mesh/VemoFile.h"

namespace {

std::uint8_t unsignedByte(char b) {
    return static_cast<std::uint8_t>(b);
}

}  // namespace

std::uint32_t readUnInt(char b0, char b1, char b2, char b3) {
    const std::uint8_t bytes[] = {unsignedByte(b0), unsignedByte(b1), unsignedByte(b2),
                                  unsignedByte(b3)};
    return loadLe32(bytes);
}

float readaFloat(char b0, char b1, char b2, char b3) {
    return std::bit_cast<float>(readUnInt(b0, b1, b2, b3));
}

int readShort(char b0, char b1) {
    const std::uint8_t bytes[] = {unsignedByte(b0), unsignedByte(b1)};
    return static_cast<std::int16_t>(loadLe16(bytes));
}

int readanInt(char b) {
    return unsignedByte(b);
}

VemoFile loadVemo(const char* path) {
    VemoFile vemo{loadFile(path, 1)};
    if (vemo.file.size > 0) vemo.file.data[vemo.file.size] = vemo.file.data[vemo.file.size - 1];
    return vemo;
}

std::optional<std::uint32_t> findChunk(const Bytes& bytes, std::uint32_t id, std::uint32_t start,
                                       ZeroLength zeroLength) {
    Bytes reader = bytes;
    std::uint64_t position = start;
    while (position < reader.size && position <= UINT32_MAX) {
        if (reader.le32(position) == id) return static_cast<std::uint32_t>(position);
        std::uint32_t length = reader.le32(position + 4);
        if (length == 0) {
            if (zeroLength == ZeroLength::kEndsSearch) return {};
            length = kChunkHeaderBytes;
        }
        position += length;
    }
    return {};
}

std::optional<ChunkElements> chunkElements(Bytes bytes, std::uint64_t chunk,
                                           std::size_t elementBytes) {
    const std::uint32_t count = bytes.le32(chunk + 8);
    const std::uint64_t first = chunk + kChunkHeaderBytes;
    if (bytes.overran || !bytes.holds(first, count, elementBytes)) return {};
    return ChunkElements{first, count};
}

std::optional<ChunkElements> findElements(const VemoFile& vemo, std::uint32_t id,
                                          std::uint32_t start, ZeroLength zeroLength,
                                          std::size_t elementBytes) {
    const auto chunk = findChunk(vemo.loaded(), id, start, zeroLength);
    if (!chunk) return {};
    return chunkElements(vemo.loaded(), *chunk, elementBytes);
}
