#pragma once
// What a file has that the exports do not expect: one function per format, in sentences.

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "files/FileFacts.h"

inline constexpr std::uint16_t kTileWidthTag = 322;

// What the first directory of a TIFF says.
struct TiffFacts {
    struct Tag {
        std::uint32_t count = 0;
        std::uint32_t value = 0;        // the first one
        std::uint64_t valueOffset = 0;  // of the entry's value field, from the start of the file
        std::uint64_t valuesAt = 0;     // of the values themselves
    };

    bool bigEndian = false;
    bool bigTiff = false;  // then nothing below is known
    std::uint64_t directory = 0;
    std::uint64_t directoryEnd = 0;
    std::map<std::uint16_t, Tag> tags = {};

    bool has(std::uint16_t tag) const { return tags.contains(tag); }
    std::uint32_t count(std::uint16_t tag) const { return has(tag) ? tags.at(tag).count : 0; }
    std::uint32_t value(std::uint16_t tag, std::uint32_t otherwise = 0) const {
        return has(tag) ? tags.at(tag).value : otherwise;
    }
};

struct PsdFacts {
    std::int64_t version = 0;
    std::int64_t colourMode = 0;
    std::int64_t layerBytes = 0;
    std::int64_t compression = 0;
};

inline constexpr std::int64_t kOldBmpHeaderBytes = 12;

struct BmpFacts {
    std::int64_t headerBytes = 0;
    std::int64_t height = 0;  // below 0: the top row first
    std::int64_t bitsPerPixel = 0;
    std::int64_t compression = 0;
    std::int64_t pixelOffset = 0;
};

struct ExrFacts {
    std::int64_t flags = 0;
    std::int64_t compression = 0;
    bool isSubsampled = false;  // a channel has fewer samples than pixels
};

// A compression as "3 (ZIP)".
std::string exrCompression(std::int64_t number);

// Each returns the notes on a file of whose other facts all are set.
std::vector<Note> notesOn(const FileFacts& file, const TiffFacts& tiff);
std::vector<Note> notesOn(const FileFacts& file, const PsdFacts& psd);
std::vector<Note> notesOn(const FileFacts& file, const BmpFacts& bmp);
std::vector<Note> notesOn(const FileFacts& file, const ExrFacts& exr);
