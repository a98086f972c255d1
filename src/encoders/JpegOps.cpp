#include "encoders/JpegOps.h"

#include <algorithm>
#include <cstring>
#include <memory>
#include <new>

#include "encoders/jpeg/JpegBitmap.h"
#include "encoders/jpeg/JpegBlocks.h"
#include "encoders/jpeg/JpegQuantisation.h"
#include "encoders/jpeg/JpegSegments.h"
#include "encoders/jpeg/JpegStream.h"

using namespace jpeg_status;

namespace {

constexpr std::size_t kMaxPathBytes = 511;
constexpr std::size_t kSide = 8;  // of a block
constexpr std::size_t kBlockPixelBytes = 3 * kSide;

bool isTooLong(const char* path) {
    return std::strlen(path) > kMaxPathBytes;
}

// How many rows are loaded at a time: whole rows of blocks, as many as make up a piece.
std::size_t bandRows(const JpegBitmap& picture) {
    const std::size_t blockRows = kPieceBytes / (kSide * picture.rowBytes());
    return std::min(std::max<std::size_t>(blockRows, 1) * kSide, picture.height());
}

// The memory for a band of rows, at their padded size and as they are in the file.
std::size_t bandBytes(const JpegBitmap& picture) {
    return bandRows(picture) * (picture.rowBytes() + picture.stagedRowBytes()) + kBytesAfterRow;
}

// Codes the blocks of one picture, one after the other.
class BlockCoder {
public:
    BlockCoder(JpegStream& stream, const Divisors& fdtbl) : stream_(stream), fdtbl_(fdtbl) {}

    // A row of blocks whose top left pixel is at `pixels`, in rows `rowStep` apart.
    void codeRow(const std::uint8_t* pixels, std::ptrdiff_t rowStep, std::size_t blocks) {
        constexpr std::size_t kAtOnce = JpegStream::kRoom / kMaxBlockBytes;
        for (std::size_t first = 0; first < blocks; first += kAtOnce) {
            stream_.makeRoom();
            codeBlocks(pixels + first * kBlockPixelBytes, rowStep,
                       std::min(kAtOnce, blocks - first), fdtbl_, dcPredictors_, stream_.bits());
        }
    }

    // Black blocks. Each after the first equals the one before: it takes the shortest codes and no
    // transform.
    void codeBlack(std::size_t blocks) {
        static constexpr std::array<std::uint8_t, kBlockPixelBytes + kBytesAfterRow> kBlack{};
        codeRow(kBlack.data(), 0, 1);
        for (std::size_t i = 1; i < blocks; ++i) {
            stream_.makeRoom();
            codeUnchangedBlock(stream_.bits());
        }
    }

private:
    JpegStream& stream_;
    const Divisors& fdtbl_;
    DcPredictors dcPredictors_{};
};

// Codes the whole picture, band by band; RGB_buffer has bandBytes.
void main_encoder(const JpegBitmap& picture, std::uint8_t* RGB_buffer, BlockCoder coder) {
    const std::size_t rowsAtOnce = bandRows(picture);
    std::uint8_t* const fileRows = RGB_buffer + rowsAtOnce * picture.rowBytes();
    for (std::size_t row = 0; row < picture.height(); row += rowsAtOnce) {
        const std::size_t end = std::min(row + rowsAtOnce, picture.height());
        if (!picture.hasRows(row, end)) {
            coder.codeBlack((end - row) / kSide * (picture.width() / kSide));
            continue;
        }
        const BitmapRows rows = picture.loadRows(row, end, fileRows, RGB_buffer);
        for (std::size_t y = 0; y < end - row; y += kSide) {
            coder.codeRow(rows.top + static_cast<std::ptrdiff_t>(y) * rows.step, rows.step,
                          picture.width() / kSide);
        }
    }
}

// The tables that depend on the scale factor; all others are made by the compiler.
struct Tables {
    QuantSegment DQTinfo;
    Divisors fdtbl;
};
Tables init_all(int scale_factor) {
    const QuantSegment DQTinfo = set_DQTinfo(scale_factor);
    return {DQTinfo, prepare_quant_tables(DQTinfo)};
}

void writeHeaders(JpegStream& file, const QuantSegment& DQTinfo, FrameSize SOF0info) {
    write_SOI(file);
    write_APP0info(file);
    write_comment(file, "Quillon v1.0..");
    write_DQTinfo(file, DQTinfo);
    write_SOF0info(file, SOF0info);
    write_DHTinfo(file);
    write_SOSinfo(file);
}

}  // namespace

float convertToJPEG(const char* in_path, const char* out_path, int scale_factor) {
    if (isTooLong(in_path) || isTooLong(out_path)) return kPathTooLong;
    JpegBitmap picture;
    const float loaded = picture.load_bitmap(in_path);
    if (loaded != kOk) return loaded;
    const std::unique_ptr<std::uint8_t[]> RGB_buffer(new (std::nothrow)
                                                         std::uint8_t[bandBytes(picture)]);
    if (RGB_buffer == nullptr || !picture.loadIfSameAs(out_path)) return kNoMemory;

    JpegStream fp_jpeg_stream(out_path);
    if (!fp_jpeg_stream.isOpen()) return kTargetNotCreated;
    const Tables tables = init_all(scale_factor);
    writeHeaders(fp_jpeg_stream, tables.DQTinfo, picture.realSize());
    main_encoder(picture, RGB_buffer.get(), BlockCoder(fp_jpeg_stream, tables.fdtbl));
    fp_jpeg_stream.bits().fillLastByte();
    write_EOI(fp_jpeg_stream);
    return fp_jpeg_stream.flush() ? kOk : kTargetNotWritten;
}
