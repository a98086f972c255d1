#pragma once
// Format: what the mutator knows of a file format, so that it gets past the checks at the start of
// a file and reaches what comes after them.

#include <cstddef>
#include <cstdint>
#include <vector>

#include "harness/Recipe.h"

enum class Order { kLittle, kBig };

// A number in a file that decides how the rest is read.
struct Field {
    std::size_t offset;
    std::size_t bytes;  // 1, 2 or 4
    Order order = Order::kLittle;
};

struct Format {
    const char* name;  // of its dictionary and its seeds
    // The fields of a file, valid or not.
    std::vector<Field> (*fields)(const ByteList& file);
    // Makes a damaged file consistent where small changes suffice: signatures, offsets and counts
    // that stay within the file. `fileBytes` includes the filler.
    void (*repair)(ByteList& file, std::size_t fileBytes);
};

extern const Format kAny;  // whichever of the others the file is of
extern const Format kBmp;
extern const Format kExr;
extern const Format kPsd;
extern const Format kText;
extern const Format kTiff;
extern const Format kVemo;

std::uint32_t loadField(const ByteList& file, const Field& field);
void storeField(ByteList& file, const Field& field, std::uint32_t value);  // if the file has it

// Whether a BMP image claims more pixels than its coding as JPEG can take in an execution's time: the
// rows that the file does not have are coded, too.
bool isLongToCode(const ByteList& bmp);
