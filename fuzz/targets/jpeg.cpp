// A BMP image as JPEG.

#include "bytes/Bytes.h"
#include "encoders/JpegOps.h"
#include "harness/Target.h"

namespace {

// Rows that a file does not have are coded, too; huge sizes only take longer.
constexpr std::uint32_t kMaxPixels = 256 * 256;

bool isHuge(const ByteList& file) {
    Bytes bytes{file.data(), file.size()};
    return std::uint32_t{bytes.le16(18)} * bytes.le16(22) > kMaxPixels;
}

}  // namespace

FUZZ_TARGET(jpeg, kBmp, 1) {
    if (isHuge(files.given(0))) return 0.0f;
    const bool replaces = files.byte(4) % 8 == 7;
    const float status =
        convertToJPEG(files.file(0), replaces ? files.file(0) : files.output(), files.number(0));
    Case::expectStatus(status, {0.0f, 4.0f, 5.0f, -9.0f});
    if (!replaces) files.expectUnchanged(0);
    files.expectOutputs(!replaces && status == 0.0f ? 1 : 0);
    return status;
}
