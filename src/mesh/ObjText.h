#pragma once
// ObjText: OBJ text on its way into a new file. Nothing in it depends on the locale.

#include <cstdint>
#include <string_view>

#include "files/PieceWriter.h"

// The last text is written when it goes out of scope. Once the disk has refused some the rest is
// dropped.
class ObjText {
public:
    ObjText() = default;
    ObjText(const ObjText&) = delete;
    ObjText& operator=(const ObjText&) = delete;
    ~ObjText() { out_.flush(); }

    // Whether the file could be created.
    bool create(const char* path) { return out_.start(File::create(path)); }

    void add(std::string_view text) {
        out_.append(reinterpret_cast<const std::uint8_t*>(text.data()), text.size());
    }
    void addInteger(std::int64_t value);
    void addFloat(float value);  // as "%g" under the C locale; "nan" for a NaN of either sign

    // Adds the colour block of `count` colours: blue, green, red and an unused byte each.
    void addColourBlock(const std::uint8_t* colours, std::uint32_t count);

private:
    void addColourLine(const std::uint8_t* colours, std::uint32_t count);

    PieceWriter out_;  // its memory is there before the file is touched
};
