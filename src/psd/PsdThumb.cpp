// Shrinking a map to a thumbnail.

#include <algorithm>
#include <cstring>
#include <vector>

#include "files/PieceWriter.h"
#include "pixels/Planes.h"
#include "psd/PsdImage.h"
#include "psd/PsdOps.h"

using namespace psd_status;

namespace {

constexpr std::size_t kHeightField = 14;
constexpr std::size_t kWidthField = 18;

constexpr int kLongestSide = 30000;  // pixels; the format has no longer ones

// Which of a picture's rows, or columns, each place along one side of the thumbnail shows: first a
// margin of black, then the picture, then black again.
struct Side {
    std::size_t margin;
    std::vector<std::size_t> shown;
};

// A side of `length` pixels seen through `size` places.
Side sideOf(std::uint64_t length, std::uint64_t size, std::uint64_t step, bool centred) {
    const std::uint64_t shrunk = length / step;
    const std::uint64_t margin = centred && shrunk < size ? (size - shrunk) / 2 : 0;
    // After each `period` places one more pixel is left out.
    const std::uint64_t period = length > step * size ? size / (length - step * size) : 0;
    Side side{static_cast<std::size_t>(margin), {}};
    for (std::uint64_t place = 0; place < size - margin; ++place) {
        const std::uint64_t at = place * step + (period > 0 ? place / period : 0);
        if (at >= length) break;
        side.shown.push_back(static_cast<std::size_t>(at));
    }
    return side;
}

struct Thumb {
    std::size_t size;
    Side columns;
    Side rows;
};

Thumb thumbOf(const PsdHeader& header, std::uint32_t size) {
    const std::uint32_t step = std::max(std::max(header.width, header.height) / size, 1u);
    const bool high = header.height > header.width;
    return {size, sideOf(header.width, size, step, high), sideOf(header.height, size, step, !high)};
}

// The rows of one plane, black around the picture.
void appendPlane(PieceWriter& out, const std::uint8_t* plane, std::size_t width,
                 const Thumb& thumb) {
    const std::size_t lastRow = thumb.rows.margin + thumb.rows.shown.size();
    for (std::size_t row = 0; row < thumb.size; ++row) {
        std::uint8_t* const to = out.room(thumb.size);
        std::memset(to, 0, thumb.size);
        if (row < thumb.rows.margin || row >= lastRow) continue;
        const std::size_t shown = thumb.rows.shown[row - thumb.rows.margin];
        gatherBytes(to + thumb.columns.margin, plane + shown * width, thumb.columns.shown.data(),
                    thumb.columns.shown.size());
    }
}

}  // namespace

float createThumb(const char* path, int size) {
    if (size < 1 || size > kLongestSide) return kBadSize;
    const ImgInUse inUse;
    const float status = loadPSD(path);
    if (status != kOk) return status;
    const PsdLayout map = layoutOfImg();
    if (!map.holdsColourPlanes()) return kNotOpened;

    const auto side = static_cast<std::uint32_t>(size);
    const Thumb thumb = thumbOf(map.header, side);
    PieceWriter out;  // the memory is there before the file is emptied
    if (!out.start(File::create(path))) return kNotWritten;
    writeLong(kHeightField, side);
    writeLong(kWidthField, side);
    out.append(img.data(), map.dataOffset);
    const auto pixels = static_cast<std::size_t>(map.pixels());
    for (std::size_t plane = 0; plane < 3; ++plane)
        appendPlane(out, img.data() + map.dataOffset + plane * pixels, map.header.width, thumb);
    out.flush();
    return kOk;
}
