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

    // Returns a part of the file, as far as the file has it. It is valid until the next call.
    Bytes part(std::uint64_t offset, std::size_t count);

    // Returns a text, in which a dot replaces each byte that is no letter; the first 60 bytes.
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
    std::vector<std::uint8_t> part_;
    FileFacts facts_;
};

// "256 width"; the number alone if the table has no name for it.
template <std::size_t kCount>
std::string named(const std::pair<std::uint32_t, const char*> (&names)[kCount], std::uint32_t id) {
    for (const auto& [known, name] : names) {
        if (known == id) return std::to_string(id) + ' ' + name;
    }
    return std::to_string(id);
}

void readTiff(Fields& fields);
void readPsd(Fields& fields);
void readBmp(Fields& fields);
void readExr(Fields& fields);
void readJpeg(Fields& fields);
void readTarga(Fields& fields);
void readVemo(Fields& fields);
