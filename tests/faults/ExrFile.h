#pragma once
// An OpenEXR file of one channel of half floats, whose attributes a test can change.

#include <cstdint>
#include <string>
#include <string_view>

#include "support/Append.h"

struct ExrFile {
    std::uint8_t version = 2;
    std::uint8_t flags = 0;
    std::uint8_t compression = 0;
    std::uint8_t sampling = 1;                 // of the columns
    std::string_view lineOrder = "lineOrder";  // the attribute's name
    std::uint16_t sample = 0x3C00;
    // As claimed: the file has one row of one pixel.
    std::uint32_t width = 1;
    std::uint32_t height = 1;

    ByteList bytes() const {
        ByteList file = {0x76, 0x2F, 0x31, 0x01, version, flags, 0, 0};
        const auto attribute = [&](std::string_view name, std::string_view type,
                                   const ByteList& value) {
            for (const std::string_view word : {name, type}) {
                file.insert(file.end(), word.begin(), word.end());
                file.push_back(0);
            }
            appendLe32(file, static_cast<std::uint32_t>(value.size()));
            append(file, value);
        };
        ByteList window(8);
        appendLe32(window, width - 1);
        appendLe32(window, height - 1);
        attribute("channels", "chlist",
                  {'Y', 0, 1, 0, 0, 0, 0, 0, 0, 0, sampling, 0, 0, 0, 1, 0, 0, 0, 0});
        attribute("compression", "compression", {compression});
        attribute("dataWindow", "box2i", window);
        attribute("displayWindow", "box2i", window);
        attribute(lineOrder, "lineOrder", {0});
        attribute("pixelAspectRatio", "float", {0, 0, 0x80, 0x3F});
        attribute("screenWindowCenter", "v2f", ByteList(8));
        attribute("screenWindowWidth", "float", {0, 0, 0x80, 0x3F});
        file.push_back(0);
        appendLe32(file, static_cast<std::uint32_t>(file.size()) + 8);  // the table: one chunk
        appendLe32(file, 0);
        appendLe32(file, 0);  // its row
        appendLe32(file, 2);  // its bytes
        appendLe16(file, sample);
        return file;
    }
};
