#pragma once
// PsdImage: the file that a PSD operation works on: loading it, reading its header, asking whether
// its planes are there, writing it. The layout is in PsdOps.h. Only src/psd includes this.

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "files/Piece.h"
#include "pixels/PaintedRuns.h"

struct PsdHeader {
    std::uint32_t signature = 0;  // the first byte of the file is the lowest
    std::uint16_t version = 0;
    std::uint16_t channels = 0;
    std::uint32_t height = 0;
    std::uint32_t width = 0;
    std::int16_t depth = 0;
    std::int16_t colourMode = 0;
    std::uint32_t colourTableBytes = 0;
    std::uint32_t resourceBytes = 0;
    std::uint32_t layerBytes = 0;
    std::int32_t compression = 0;
};

// What precedes the image data of the file that the running operation works on, byte for byte. Filled
// by loadHead, emptied by the next one and at the end of every operation. Its memory then stays for the
// next file if it is small.
extern std::vector<std::uint8_t> img;

// A place in `img`, set by readPSDHeader: where the image data starts once a header was accepted.
extern std::int32_t offst;

// What readPSDHeader read last. Lives until it reads again.
extern PsdHeader fHeader;

// Empties `img` when an operation ends, however it ends.
struct ImgInUse {
    ImgInUse() = default;
    ImgInUse(const ImgInUse&) = delete;
    ImgInUse& operator=(const ImgInUse&) = delete;
    ~ImgInUse();
};

void emptyImg();

// Reads the header at the start of `img` into `fHeader` and stops at the first field that is
// refused; fields not reached keep the values of the file before. `offst` is 0, then the end of the
// image resources, then the end of the layers, then the start of the image data, as far as the header
// could be read.
//
//   returns  kOk, kNotOpened (no signature, or cut short), kBadVersion, kHasColourTable,
//            kCompressed
float readPSDHeader();

// Stores a value at a place in `img`, high byte first, unless it does not fit there. Each returns
// `value`.
int writeShort(std::size_t position, int value);  // the low 16 bits
std::uint32_t writeLong(std::size_t position, std::uint32_t value);

// The module's readers to match, which no operation calls: values at a place in `img`, whose bytes
// past the end read as 0, and the byte order of the processors that Quillon runs on.
std::int16_t readShort(std::size_t position);
std::uint32_t readLong(std::size_t position);
float readFloat(std::size_t position);    // little-endian: the name is the wrong way round
float readFloatLE(std::size_t position);  // big-endian, as PSD stores floats: likewise
bool bigEndian();
bool littleEndian();

// What a header said, and the length of the file that has it.
struct PsdLayout {
    PsdHeader header;
    std::size_t dataOffset = 0;
    std::size_t fileBytes = 0;

    std::uint64_t pixels() const { return std::uint64_t{header.width} * header.height; }

    // Whether `bytesPerPixel` bytes for each pixel are in the file, from `offset` on.
    bool holds(std::size_t offset, std::size_t bytesPerPixel) const;

    // Whether red, green and blue, as planes of bytes, are all in the file.
    bool holdsColourPlanes() const { return holds(dataOffset, 3); }
};

// A file that stays on disk, and its header.
struct PsdOnDisk : PsdLayout {
    File file;
};

// Opens a file for reading and reads its header, nothing else.
//
//   returns  as readPSDHeader
float openPSD(const char* path, PsdOnDisk& psd);

// Loads what precedes the image data of an accepted file into `img` and reads the header there.
//
//   returns  kNotOpened when it cannot be read, else as readPSDHeader
float loadHead(const PsdOnDisk& psd);

// Runs of a file's bytes that are read in order of place, all of them at equal distances. Bytes between
// two that cost less to read than a call of the system are read with them.
class Runs {
public:
    // Runs of at most `runBytes`, each `distance` after the one before.
    Runs(const File& file, std::size_t runBytes, std::size_t distance);

    // The `count` bytes from `place` on; null if they cannot be read. They stay until the next call.
    const std::uint8_t* read(std::size_t place, std::size_t count);

private:
    const File& file_;
    std::size_t readAhead_;
    Piece piece_;
};

// Planes of samples, one behind the other, as merges and swaps move them: a piece of each at a time.
struct Planes {
    std::size_t offset;  // of the first, in the file
    std::size_t bytes;   // of each
    std::size_t count;

    std::size_t placeOf(std::size_t plane, std::size_t start) const {
        return offset + plane * bytes + start;
    }
};

// The same piece of each plane of a file.
class PlanePieces {
public:
    explicit PlanePieces(const Planes& planes);

    static constexpr std::size_t kBytes = kPieceBytes / 4;  // of each plane

    // False when the file has fewer bytes.
    bool read(const File& file, std::size_t start, std::size_t count);

    // Writes plane `from` of what was read to the place of plane `to`. False when the disk took
    // fewer bytes; the file then ends before them.
    bool write(const File& file, std::size_t to, std::size_t from) const;

    // Writes a run of each plane to its own place.
    bool write(const File& file, const PaintedRun& run) const;

    // Where red, green and blue are in memory.
    std::array<std::uint8_t*, 3> colours() const { return {at(0), at(1), at(2)}; }
    std::uint8_t* at(std::size_t plane) const { return pieces_[plane].data(); }
    std::size_t start() const { return start_; }  // in each plane
    std::size_t size() const { return pieces_.front().size(); }

private:
    bool writeRun(const File& file, std::size_t to, std::size_t from, const PaintedRun& run) const;

    const Planes& planes_;
    std::vector<Piece> pieces_;  // one for each plane
    std::size_t start_ = 0;
};

// Writes a whole file, over what was there.
//
//   returns  kNotWritten when the file cannot be opened for writing; else kOk, even if the disk
//            takes fewer bytes
float writePSD(const char* path, std::span<const std::uint8_t> bytes);
