// The operations that make another image of one: the crop and the thumbnail.

#include <algorithm>
#include <cstring>

#include "bmp/BmpHeader.h"
#include "bmp/BmpOps.h"
#include "bmp/BmpWriter.h"
#include "bytes/Numbers.h"
#include "files/Piece.h"

namespace {

constexpr std::int32_t kCroppedRows = 3;  // the bottom row and the two top rows

// Appends bytes of bmpV from `start` on, black for those that lie before its start or past its end.
void appendClipped(BmpWriter& writer, std::int64_t start, std::int64_t count) {
    const auto size = static_cast<std::int64_t>(bmpV.size);
    const std::int64_t first = std::clamp<std::int64_t>(start, 0, size);
    const std::int64_t last = std::clamp<std::int64_t>(start + count, first, size);
    const std::int64_t before = std::min(first - start, count);
    writer.appendBlack(static_cast<std::uint64_t>(before));
    writer.append(bmpV.data.get() + first, static_cast<std::size_t>(last - first));
    writer.appendBlack(static_cast<std::uint64_t>(count - before - (last - first)));
}

// How many rows of a band, from the first on, end before the file starts. `start` is where the first
// one starts in the file.
std::uint64_t rowsBeforeFile(std::int64_t start, std::int64_t bandBytes, std::uint64_t rows) {
    const std::int64_t missing = -(start + bandBytes);
    if (missing < 0 || rows == 0) return 0;
    return std::min(rows, static_cast<std::uint64_t>(missing / bmpHdr.rowStride) + 1);
}

void appendBand(BmpWriter& writer, const NewImage& image, std::int32_t xOffset) {
    const auto bandBytes = static_cast<std::int64_t>(kBmpPixelBytes * image.pixelsPerRow);
    const auto size = static_cast<std::int64_t>(bmpV.size);
    const std::uint64_t rows = bmpHdr.width > 0 && bandBytes > 0 ? image.rows : 0;
    const std::uint64_t rowBytes = image.rows > 0 ? image.pixelBytes / image.rows : 0;

    std::int64_t start = std::int64_t{bmpHdr.pixelOffset} + bmpHdr.rowStride + xOffset;
    std::uint64_t row = rowsBeforeFile(start, bandBytes, rows);
    writer.appendBlack(rowBytes * row);
    start += bmpHdr.rowStride * static_cast<std::int64_t>(row);
    for (; row < rows && start < size; ++row) {
        appendClipped(writer, start, bandBytes);
        writer.appendBlack(image.padding);
        start += bmpHdr.rowStride;
    }
    writer.appendBlack(rowBytes * (image.rows - row));
}

struct Thumbnail {
    NewImage image;
    float step;  // source pixels from one pixel of the thumbnail to the next
};

Thumbnail thumbnailOf(const BmpHeader& header, std::int32_t size) {
    const auto width = static_cast<float>(header.width);
    const auto height = static_cast<float>(header.height);
    const auto side = static_cast<float>(size);
    if (header.height <= header.width)
        return {newImage(size, saturatedInt(height / width * side)), width / side};
    return {newImage(saturatedInt(width / height * side), size), height / side};
}

// The pixels of an image that is read here and there, further and further on.
class ReadAhead {
public:
    // As many bytes are read at once as a row has.
    explicit ReadAhead(const File& file)
        : file_(file),
          most_(static_cast<std::size_t>(
              std::clamp<std::int64_t>(bmpHdr.rowStride, kBmpPixelBytes, kPieceBytes))),
          piece_(most_) {}

    // Whether there is a pixel at `offset`, and a byte beyond it; others are black.
    bool hasPixel(std::uint64_t offset) const { return offset + kBmpPixelBytes < file_.size(); }

    const std::uint8_t* pixel(std::uint64_t offset) {
        const bool isHeld =
            offset >= piece_.offset() && offset + kBmpPixelBytes <= piece_.offset() + piece_.size();
        if (!isHeld) read(offset);
        return piece_.data() + (offset - piece_.offset());
    }

    // Whether the disk failed; what it did not give is black.
    bool failed() const { return failed_; }

private:
    void read(std::uint64_t offset) {
        const auto count =
            static_cast<std::size_t>(std::min<std::uint64_t>(most_, file_.size() - offset));
        if (piece_.read(file_, offset, count)) return;
        failed_ = true;
        std::memset(piece_.moveTo(offset, count), 0, count);
    }

    const File& file_;
    std::size_t most_;  // bytes at once
    Piece piece_;
    bool failed_ = false;
};

std::uint64_t wholePart(float sum) {
    return static_cast<std::uint64_t>(sum);
}

void appendSampledRow(BmpWriter& writer, const Thumbnail& thumb, ReadAhead& image,
                      std::uint64_t rowStart) {
    std::uint64_t pixelsLeft = thumb.image.pixelsPerRow;
    float column = 0.0f;
    for (; pixelsLeft > 0; --pixelsLeft) {
        const std::uint64_t sample = rowStart + kBmpPixelBytes * wholePart(column);
        if (!image.hasPixel(sample)) break;  // nor are there any further right
        writer.append(image.pixel(sample), kBmpPixelBytes);
        column += thumb.step;
    }
    writer.appendBlack(kBmpPixelBytes * pixelsLeft + thumb.image.padding);
}

// A pixel of the copy is no further on in the file than the one it shows, so the copy can be
// written over the image while that is read.
void appendSamples(BmpWriter& writer, const Thumbnail& thumb, ReadAhead& image) {
    if (thumb.image.rows == 0 || thumb.image.pixelBytes == 0) return;
    const auto stride = static_cast<std::uint64_t>(bmpHdr.rowStride);

    float sourceRow = 0.0f;
    std::uint64_t row = 0;
    for (; row < thumb.image.rows; ++row) {
        const std::uint64_t rowStart = bmpHdr.pixelOffset + stride * wholePart(sourceRow);
        if (!image.hasPixel(rowStart)) break;  // nor are there any further up
        appendSampledRow(writer, thumb, image, rowStart);
        sourceRow += thumb.step;
    }
    writer.appendBlack(thumb.image.pixelBytes / thumb.image.rows * (thumb.image.rows - row));
}

float loadForThumbnail(const char* path) {
    const float status = loadBMPHead(path, bmp_status::kThumbNotOpened);
    const bool hasSignature = bmpHdr.firstByte == 'B' && bmpHdr.secondByte == 'M';
    return status == bmp_status::kNotABmp && !hasSignature ? bmp_status::kThumbNotABmp : status;
}

}  // namespace

float cropBMP(const char* input, const char* output, std::int32_t xOffset, std::int32_t newWidth) {
    const EmptyBmpVAtEnd emptied;
    const float status = loadWholeBMP(input, bmp_status::kNotOpened);
    if (status != bmp_status::kOk) return status;
    if (bmpHdr.pixelOffset > bmpV.size) return bmp_status::kNotABmp;

    const NewImage image = newImage(newWidth, std::int64_t{bmpHdr.height} - kCroppedRows);
    if (!canBeWritten(image)) return bmp_status::kSizeRefused;

    BmpWriter writer;
    if (!writer.create(output)) return bmp_status::kOutputNotWritten;
    appendBand(writer, image, xOffset);
    return writer.finish(image) ? bmp_status::kOk : bmp_status::kOutputNotWritten;
}

float createBMPthumb(const char* path, std::int32_t size) {
    if (size <= 0) return bmp_status::kSizeRefused;
    const EmptyBmpVAtEnd emptied;
    const float status = loadForThumbnail(path);
    if (status != bmp_status::kOk) return status;
    if (bmpHdr.width < size && bmpHdr.height < size) return bmp_status::kOk;
    const File file = File::openForReading(path);
    if (!file.isOpen()) return bmp_status::kThumbNotOpened;
    if (!loadBMPUpToPixels(file)) return bmp_status::kNotABmp;
    if (bmpHdr.height < 0) return bmp_status::kThumbTopDown;

    const Thumbnail thumb = thumbnailOf(bmpHdr, size);
    if (!canBeWritten(thumb.image)) return bmp_status::kSizeRefused;

    // An image that cannot be written stays whole; the host's scripts take that as done.
    ReadAhead image(file);
    BmpWriter writer;
    if (!writer.writeOver(File::openForRewriting(path))) return bmp_status::kOk;
    appendSamples(writer, thumb, image);
    if (image.failed()) return bmp_status::kThumbNotOpened;
    writer.finish(thumb.image);
    return bmp_status::kOk;
}
