#include "files/PsdWriter.h"

#include <array>

#include "bytes/Bytes.h"

namespace {

constexpr std::uint16_t kVersion = 1;
constexpr std::uint16_t kGrey = 1;  // colour modes
constexpr std::uint16_t kRgb = 3;

// After the colour mode: no colour table, no resources, no layers, no compression.
using Head = std::array<std::uint8_t, 40>;

Head headOf(const PsdFormat& format) {
    Head head{'8', 'B', 'P', 'S'};
    storeBe16(&head[4], kVersion);
    storeBe16(&head[12], format.channels);
    storeBe32(&head[14], format.height);
    storeBe32(&head[18], format.width);
    storeBe16(&head[22], format.bits);
    storeBe16(&head[24], format.channels == 1 ? kGrey : kRgb);
    return head;
}

}  // namespace

PsdWriter::PsdWriter(const std::string& path, const PsdFormat& format) : OutputFile(path) {
    append(headOf(format));
}
