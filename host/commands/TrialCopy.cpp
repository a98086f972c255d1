#include "commands/TrialCopy.h"

#include <stdlib.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <numeric>
#include <optional>
#include <utility>

#include "files/DiskFile.h"
#include "terminal/Failure.h"
#include "terminal/Interrupt.h"

namespace fs = std::filesystem;

namespace {

constexpr std::size_t kPieceBytes = 256 * 1024;

constexpr const char* kOtherFolder = "; set TMPDIR to a folder that can be written to";

struct StoredPlace {
    std::uint64_t row;  // in the order of the file
    std::uint64_t x;
};

std::uint64_t offsetOf(const PixelLayout& layout, std::uint64_t plane, StoredPlace place) {
    return layout.start + (plane * layout.height + place.row) * layout.rowBytes +
           place.x * pixelBytesOf(layout);
}

std::uint64_t planesOf(const PixelLayout& layout) {
    return layout.planes ? layout.channels : 1;
}

// Where the parts of a pixel are.
std::vector<std::uint64_t> placesOf(const PixelLayout& layout, StoredPlace place) {
    std::vector<std::uint64_t> places;
    places.reserve(planesOf(layout));
    for (std::uint64_t plane = 0; plane < planesOf(layout); ++plane)
        places.push_back(offsetOf(layout, plane, place));
    return places;
}

// The first place in a plane whose bytes differ from those at its start.
std::optional<StoredPlace> firstDifferent(InputFile& file, const PixelLayout& layout,
                                          std::uint64_t plane) {
    const auto pixelBytes = static_cast<std::ptrdiff_t>(pixelBytesOf(layout));
    // Each pixel of a row is compared with the one before it, the first with the plane's first.
    std::vector<std::uint8_t> row((layout.width + 1) * pixelBytesOf(layout));
    const auto pixels = row.begin() + pixelBytes;
    file.read(offsetOf(layout, plane, {0, 0}), {row.begin(), pixels});
    for (std::uint64_t y = 0; y < layout.height; ++y) {
        stopIfInterrupted();
        file.read(offsetOf(layout, plane, {y, 0}), {pixels, row.end()});
        const auto [different, before] = std::mismatch(pixels, row.end(), row.begin());
        if (different != row.end())
            return StoredPlace{y, static_cast<std::uint64_t>((different - pixels) / pixelBytes)};
    }
    return std::nullopt;
}

bool areEqual(const std::string& one, const std::string& other) {
    InputFile first(one, "file");
    InputFile second(other, "file");
    if (first.size() != second.size()) return false;
    std::vector<std::uint8_t> firstPiece(kPieceBytes);
    std::vector<std::uint8_t> secondPiece(kPieceBytes);
    for (std::uint64_t offset = 0; offset < first.size(); offset += kPieceBytes) {
        first.read(offset, firstPiece);
        second.read(offset, secondPiece);
        if (firstPiece != secondPiece) return false;
    }
    return true;
}

}  // namespace

TemporaryFolder::TemporaryFolder() {
    const char* const named = std::getenv("TMPDIR");
    const std::string parent = named != nullptr && *named != '\0' ? named : "/tmp";
    std::string pattern = parent + "/quillon-XXXXXX";
    if (::mkdtemp(pattern.data()) == nullptr)
        throw Failure("cannot make a folder for copies in " + parent + ": " + std::strerror(errno) +
                      kOtherFolder);
    path_ = pattern;
}

TemporaryFolder::~TemporaryFolder() {
    std::error_code ignored;
    fs::remove_all(path_, ignored);
}

TrialCopy::TrialCopy(std::string original, const FileFacts& facts, const TemporaryFolder& folder)
    : original_(std::move(original)),
      facts_(facts),
      path_(folder.at("copy" + fs::path(original_).extension().string())) {}

const std::string& TrialCopy::renew() {
    std::error_code error;
    if (!fs::copy_file(original_, path_, fs::copy_options::overwrite_existing, error))
        throw Failure("cannot copy " + original_ + " to " + path_ +
                      " to try the exports on: " + error.message() + kOtherFolder);
    return path_;
}

bool TrialCopy::hasPixels() const {
    return facts_.picture && facts_.picture->pixels &&
           endOf(*facts_.picture->pixels) <= facts_.bytes;
}

bool TrialCopy::hidePixel() {
    const PixelLayout& layout = *facts_.picture->pixels;
    InputFile file(original_, "file");
    std::optional<StoredPlace> found;
    for (std::uint64_t plane = 0; plane < planesOf(layout) && !found; ++plane)
        found = firstDifferent(file, layout, plane);
    if (!found) return false;
    write({placesOf(layout, *found), readPixel(original_, placesOf(layout, {0, 0})).bytes});
    return true;
}

void TrialCopy::markPixel() {
    StoredPixel pixel = readPixel(original_, placesOf(*facts_.picture->pixels, {0, 0}));
    std::iota(pixel.bytes.begin(), pixel.bytes.end(), std::uint8_t{1});
    write(std::move(pixel));
}

bool TrialCopy::hasChanged() const {
    if (!hasPixels()) return !areEqual(original_, path_);
    return readPixel(path_, pixel_.places).bytes != pixel_.bytes;
}

TrialCopy::StoredPixel TrialCopy::readPixel(const std::string& path,
                                            std::vector<std::uint64_t> places) const {
    InputFile file(path, "file");
    const std::size_t partBytes = pixelBytesOf(*facts_.picture->pixels);
    StoredPixel pixel{std::move(places), {}};
    for (const std::uint64_t place : pixel.places) {
        const Bytes part = file.part(place, partBytes);
        pixel.bytes.insert(pixel.bytes.end(), part.data, part.data + part.size);
    }
    return pixel;
}

void TrialCopy::write(StoredPixel pixel) {
    const std::size_t partBytes = pixel.bytes.size() / pixel.places.size();
    std::fstream file(path_, std::ios::in | std::ios::out | std::ios::binary);
    for (std::size_t i = 0; i < pixel.places.size(); ++i) {
        file.seekp(static_cast<std::streamoff>(pixel.places[i]));
        file.write(reinterpret_cast<const char*>(&pixel.bytes[i * partBytes]),
                   static_cast<std::streamsize>(partBytes));
    }
    file.close();
    if (!file) throw Failure("cannot write " + path_ + kOtherFolder);
    pixel_ = std::move(pixel);
}
