#include "encoders/JpegOps.h"

#include <algorithm>
#include <cstring>
#include <new>
#include <optional>

#include "encoders/JpegBitmap.h"
#include "encoders/JpegBlocks.h"
#include "encoders/JpegDct.h"
#include "encoders/JpegSegments.h"
#include "encoders/JpegStream.h"

using namespace jpeg_status;

namespace {

// State of the running conversion. Each is set before its first use; all are emptied when the
// conversion ends, however it ends. They are handed down, no other function looks at them.
std::optional<JpegStream> fp_jpeg_stream;
std::unique_ptr<std::uint8_t[]> RGB_buffer;  // a band of rows of the picture, at its padded size
FrameSize SOF0info;
QuantSegment DQTinfo;
DivisorTable fdtbl_Y;
DivisorTable fdtbl_Cb;  // for Cr, too

struct EmptyStateAtEnd {
    EmptyStateAtEnd() = default;
    EmptyStateAtEnd(const EmptyStateAtEnd&) = delete;
    EmptyStateAtEnd& operator=(const EmptyStateAtEnd&) = delete;
    ~EmptyStateAtEnd() {
        fp_jpeg_stream.reset();
        RGB_buffer.reset();
        SOF0info = {};
        DQTinfo = {};
        fdtbl_Y = {};
        fdtbl_Cb = {};
    }
};

constexpr std::size_t kLongestPath = 511;
constexpr std::size_t kSide = 8;  // of a block
constexpr std::size_t kBlockPixelBytes = 3 * kSide;

bool isTooLong(const char* path) {
    return std::strlen(path) > kLongestPath;
}

// How many rows are loaded at a time: whole rows of blocks, as many as make up a piece.
std::size_t bandRows(const JpegBitmap& picture) {
    const std::size_t blockRows = kPieceBytes / (kSide * picture.rowBytes());
    return std::min(std::max<std::size_t>(blockRows, 1) * kSide, picture.height());
}

// Codes the blocks of one picture, one after the other.
class BlockCoder {
public:
    BlockCoder(JpegStream& stream, const DivisorTable& luminance, const DivisorTable& chrominance)
        : stream_(stream),
          luminance_{luminance, YDC_HT, YAC_HT},
          chrominance_{chrominance, CbDC_HT, CbAC_HT} {}

    // A block whose top left pixel is at `pixels`, in rows of `rowBytes`.
    void code(const std::uint8_t* pixels, std::size_t rowBytes) {
        PictureBlock block;
        load_data_units(pixels, rowBytes, block);
        stream_.makeRoom();
        process_DU(block.YDU, luminance_, DC_Y_, stream_.bits());
        process_DU(block.CbDU, chrominance_, DC_Cb_, stream_.bits());
        process_DU(block.CrDU, chrominance_, DC_Cr_, stream_.bits());
    }

    // Blocks of black. From the second on nothing differs from the block before, which takes the
    // shortest codes there are and no transform.
    void codeBlack(std::size_t blocks) {
        static constexpr std::array<std::uint8_t, kBlockPixelBytes> kBlack{};
        code(kBlack.data(), 0);
        for (std::size_t i = 1; i < blocks; ++i) {
            stream_.makeRoom();
            putUnchanged(luminance_);
            putUnchanged(chrominance_);
            putUnchanged(chrominance_);
        }
    }

private:
    void putUnchanged(const ComponentCoding& component) {
        stream_.bits().put(component.HTDC[0]);
        stream_.bits().put(component.HTAC[kEndOfBlock]);
    }

    JpegStream& stream_;
    const ComponentCoding luminance_;
    const ComponentCoding chrominance_;
    std::int16_t DC_Y_ = 0;
    std::int16_t DC_Cb_ = 0;
    std::int16_t DC_Cr_ = 0;
};

// Codes the rows of a band, which `pixels` holds.
void codeBand(BlockCoder& coder, const std::uint8_t* pixels, std::size_t rows,
              std::size_t rowBytes) {
    for (std::size_t y = 0; y < rows; y += kSide) {
        for (std::size_t x = 0; x < rowBytes; x += kBlockPixelBytes)
            coder.code(pixels + y * rowBytes + x, rowBytes);
    }
}

// Codes the whole picture, band by band; `band` has room for one at its padded size and one as it
// lies in the file.
void main_encoder(const JpegBitmap& picture, std::uint8_t* band, BlockCoder coder) {
    const std::size_t rowsAtOnce = bandRows(picture);
    for (std::size_t row = 0; row < picture.height(); row += rowsAtOnce) {
        const std::size_t end = std::min(row + rowsAtOnce, picture.height());
        if (!picture.hasRows(row, end)) {
            coder.codeBlack((end - row) / kSide * (picture.width() / kSide));
            continue;
        }
        picture.loadRows(row, end, band + rowsAtOnce * picture.rowBytes(), band);
        codeBand(coder, band, end - row, picture.rowBytes());
    }
}

void init_all(int scale_factor) {
    DQTinfo = set_DQTinfo(scale_factor);
    fdtbl_Y = prepare_quant_table(DQTinfo.luminance());
    fdtbl_Cb = prepare_quant_table(DQTinfo.chrominance());
}

void writeHeaders(JpegStream& file, const QuantSegment& quantisation, FrameSize size) {
    write_SOI(file);
    write_APP0info(file);
    write_comment(file, "Quillon v1.0..");
    write_DQTinfo(file, quantisation);
    write_SOF0info(file, size);
    write_DHTinfo(file);
    write_SOSinfo(file);
}

}  // namespace

float convertToJPEG(const char* in_path, const char* out_path, int scale_factor) {
    if (isTooLong(in_path) || isTooLong(out_path)) return kPathTooLong;
    const EmptyStateAtEnd emptyStateAtEnd;

    JpegBitmap picture;
    const float loaded = picture.load_bitmap(in_path);
    if (loaded != kOk) return loaded;
    const std::size_t bandBytes =
        bandRows(picture) * (picture.rowBytes() + picture.stagedRowBytes());
    RGB_buffer.reset(new (std::nothrow) std::uint8_t[bandBytes]);
    if (RGB_buffer == nullptr || !picture.keepFrom(out_path)) return kNoMemory;

    fp_jpeg_stream.emplace(out_path);
    if (!fp_jpeg_stream->isOpen()) return kTargetNotCreated;
    init_all(scale_factor);
    SOF0info = picture.realSize();
    writeHeaders(*fp_jpeg_stream, DQTinfo, SOF0info);
    main_encoder(picture, RGB_buffer.get(), BlockCoder(*fp_jpeg_stream, fdtbl_Y, fdtbl_Cb));
    fp_jpeg_stream->bits().fillLastByte();
    write_EOI(*fp_jpeg_stream);
    return fp_jpeg_stream->flush() ? kOk : kTargetNotWritten;
}
