#pragma once
// What stands in a file's headers, field by field, for a person who looks for a wrong byte. Nothing
// here judges: a broken file shows what it has.

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

enum class FileKind { kVemo, kTiff, kPsd, kBmp, kExr, kJpeg, kTarga, kUnknown };

struct Field {
    std::uint64_t offset;
    std::uint64_t bytes;
    std::string name;
    std::string value;
};

// What a file tells of the picture in it; 0 for what it does not tell.
struct PictureFacts {
    std::int64_t width = 0;
    std::int64_t height = 0;
    std::int64_t channels = 0;
    std::int64_t depth = 0;       // bits a sample
    std::uint64_t samplesAt = 0;  // where those of a TIFF, PSD or BMP map start
};

struct FileFacts {
    FileKind kind = FileKind::kUnknown;
    const char* format = "";  // in words
    std::uint64_t bytes = 0;
    std::optional<PictureFacts> picture;
    std::vector<Field> fields;  // in the order of the file; the first thousand
};

// The kind is told by the first bytes, that of a mesh by its first chunk; where they tell nothing, by
// the extension, so that a map with a broken start shows what is wrong with it. Only headers are
// read, however long the file is. Throws Failure for what is no file or cannot be read.
FileFacts factsOf(const std::string& path);
