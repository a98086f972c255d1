// One colour of a map, or all others, replaced.

#include "harness/Target.h"
#include "psd/PsdOps.h"

FUZZ_TARGET(psd_replace, kPsd, 1) {
    const auto colour = [&](std::size_t index) {
        const std::int32_t number = files.number(index);
        return number < 0 ? files.real(index) : static_cast<float>(number);
    };
    const float status = convertPSD(files.file(0), colour(0), colour(4), files.byte(8) % 2 == 1);
    Case::expectStatus(status, {0.0f, -1.0f, -2.0f, -3.0f, -4.0f});
    files.expectSameSize(0);
    return status;
}
