// A float map as a 16-bit TIFF or PSD.

#include <array>

#include "harness/Target.h"
#include "tiff/TiffOps.h"

FUZZ_TARGET(tiff_convert, kTiff, 1) {
    const int mode = std::array{1, 3, 4}[files.byte(0) % 3];
    char* const target = files.byte(2) % 8 == 7 ? files.file(0) : files.output();
    const float status = convertTiff(files.file(0), target, mode, files.byte(1) % 2);
    Case::expectStatus(status, {0.0f, -201.0f, -257.0f, -1.0f, -258.0f, -32.0f, -259.0f, -262.0f,
                                -273.0f, -274.0f, -279.0f, -339.0f});
    files.expectUnchanged(0);
    files.expectOutputs(status == 0.0f ? 1 : 0);
    return status;
}
