#pragma once
// ObjText: OBJ text on its way into a new file. Nothing in it depends on the locale.

#include <cstdint>
#include <memory>
#include <string_view>

#include "files/File.h"

// Collects text and writes it in large pieces, the last one when it goes out of scope. Once the
// disk has refused a piece the rest is dropped.
class ObjText {
public:
    explicit ObjText(const char* path);
    ObjText(const ObjText&) = delete;
    ObjText& operator=(const ObjText&) = delete;
    ~ObjText();

    // Whether the file could be created.
    bool isOpen() const { return file_.isOpen(); }

    void add(std::string_view text);
    void addInteger(std::int64_t value);
    void addFloat(float value);  // as "%g" under the C locale; "nan" for a NaN of either sign

    // Adds the colour block of `count` colours: blue, green, red and an unused byte each.
    void addColourBlock(const std::uint8_t* colours, std::uint32_t count);

private:
    void flush();

    std::unique_ptr<char[]> piece_;  // had before the file is touched
    std::size_t length_ = 0;
    FileWriter file_;
    bool refused_ = false;
};
