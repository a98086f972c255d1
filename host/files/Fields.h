#pragma once
// Fields of a file, noted while its headers are read, and the reader of each kind of file.

#include <string>
#include <utility>
#include <vector>

#include "files/DiskFile.h"
#include "files/FileFacts.h"

class Fields {
public:
    explicit Fields(const std::string& path) : file_(path, "file") { facts_.bytes = file_.size(); }

    // A part of the file, as InputFile gives it.
    Bytes part(std::uint64_t offset, std::size_t count) { return file_.part(offset, count); }

    // Returns the first 60 bytes of a text, with a dot for each that is not printable ASCII.
    std::string lettersAt(std::uint64_t offset, std::size_t count);

    // Notes a number and returns it. Bytes that the file does not have count as 0.
    std::int64_t number(std::uint64_t offset, NumberKind kind, const char* name);
    void text(std::uint64_t offset, std::size_t count, const char* name);
    // All bytes from `offset` on, if there are any.
    void rest(std::uint64_t offset, const char* name);
    void add(Field field);

    // Notes the rest of a file that ends within `what`; returns whether it does.
    bool endsWithin(const char* what, const Bytes& read, std::uint64_t offset);

    bool isFull() const;
    bool has(std::uint64_t offset) const { return offset < facts_.bytes; }
    FileFacts& facts() { return facts_; }

private:
    InputFile file_;
    FileFacts facts_;
};

void readTiff(Fields& fields);
void readPsd(Fields& fields);
void readBmp(Fields& fields);
void readExr(Fields& fields);
void readJpeg(Fields& fields);
void readTarga(Fields& fields);
void readVemo(Fields& fields);

// Whether a chunk of a mesh file can have this id.
bool isVemoChunk(std::uint32_t id);

// Returns the layout of an uncompressed image whose samples alternate in rows without padding, or
// nothing for an image without pixels.
std::optional<PixelLayout> layoutOf(const PictureFacts& picture, NumberKind sample,
                                    std::uint64_t start);
