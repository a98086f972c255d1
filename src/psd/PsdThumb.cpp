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

constexpr std::size_t kPlanes = 3;
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
    std::size_t step;
    Side columns;
    Side rows;
};

Thumb thumbOf(const PsdHeader& header, std::uint32_t size) {
    const std::uint32_t step = std::max(std::max(header.width, header.height) / size, 1u);
    const bool high = header.height > header.width;
    return {size, step, sideOf(header.width, size, step, high),
            sideOf(header.height, size, step, !high)};
}

// Reads the rows of one plane that the thumbnail shows, from byte `offset` of the file on. False when
// one cannot be read.
bool readShown(Runs& rows, std::size_t offset, std::size_t width, const Thumb& thumb,
               std::uint8_t* to) {
    const std::vector<std::size_t>& columns = thumb.columns.shown;
    for (const std::size_t row : thumb.rows.shown) {
        const std::uint8_t* const from = rows.read(offset + row * width, columns.back() + 1);
        if (from == nullptr) return false;
        gatherBytes(to, from, columns.data(), columns.size());
        to += columns.size();
    }
    return true;
}

// The same for all planes, one behind the other.
bool readShown(const PsdOnDisk& map, const Thumb& thumb, std::vector<std::uint8_t>& samples) {
    const std::vector<std::size_t>& columns = thumb.columns.shown;
    const std::size_t planeBytes = thumb.rows.shown.size() * columns.size();
    if (planeBytes == 0) return true;
    samples.resize(kPlanes * planeBytes);
    const std::size_t width = map.header.width;
    Runs rows(map.file, columns.back() + 1, thumb.step * width);
    for (std::size_t plane = 0; plane < kPlanes; ++plane) {
        const std::size_t offset = map.dataOffset + plane * static_cast<std::size_t>(map.pixels());
        if (!readShown(rows, offset, width, thumb, samples.data() + plane * planeBytes))
            return false;
    }
    return true;
}

// One plane from the samples of the picture, black around it. Returns where those of the next begin.
const std::uint8_t* appendPlane(PieceWriter& out, const std::uint8_t* samples, const Thumb& thumb) {
    const std::size_t shown = thumb.columns.shown.size();
    const std::size_t lastRow = thumb.rows.margin + thumb.rows.shown.size();
    for (std::size_t row = 0; row < thumb.size; ++row) {
        std::uint8_t* const to = out.room(thumb.size);
        std::memset(to, 0, thumb.size);
        if (row < thumb.rows.margin || row >= lastRow) continue;
        std::copy_n(samples, shown, to + thumb.columns.margin);
        samples += shown;
    }
    return samples;
}

}  // namespace

float createThumb(const char* path, int size) {
    if (size < 1 || size > kLongestSide) return kBadSize;
    PsdOnDisk map;
    float status = openPSD(path, map);
    if (status != kOk) return status;
    if (!map.holdsColourPlanes()) return kNotOpened;

    const ImgInUse inUse;
    status = loadHead(map);
    if (status != kOk) return status;
    const auto side = static_cast<std::uint32_t>(size);
    writeLong(kHeightField, side);
    writeLong(kWidthField, side);
    const Thumb thumb = thumbOf(map.header, side);
    std::vector<std::uint8_t> picture;
    if (!readShown(map, thumb, picture)) return kNotOpened;

    PieceWriter out;  // the memory is there before the file is emptied
    if (!out.start(File::create(path))) return kNotWritten;
    out.append(img.data(), img.size());
    const std::uint8_t* samples = picture.data();
    for (std::size_t plane = 0; plane < kPlanes; ++plane)
        samples = appendPlane(out, samples, thumb);
    out.flush();
    return kOk;
}
