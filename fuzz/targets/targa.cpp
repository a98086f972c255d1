// A TIFF map as Targa.

#include "encoders/TargaOps.h"
#include "harness/Target.h"

FUZZ_TARGET(targa, kTiff, 1) {
    char* const target = files.byte(0) % 8 == 7 ? files.file(0) : files.output();
    const float status = convertToTarga(files.file(0), target);
    Case::expectStatus(status,
                       {0.0f, -5.0f, -257.0f, -279.0f, 258.0f, -259.0f, -262.0f, -273.0f, -339.0f});
    files.expectUnchanged(0);
    files.expectOutputs(status == 0.0f ? 1 : 0);
    return status;
}
