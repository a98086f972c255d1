#include "pixels/WideVectors.h"

#if defined(__x86_64__)

#include <cpuid.h>

namespace {

bool areThere() {
    constexpr unsigned kKept = 6;  // by the system: the low and the high halves
    unsigned a = 0, b = 0, c = 0, d = 0;
    if (__get_cpuid(1, &a, &b, &c, &d) == 0 || (c & bit_OSXSAVE) == 0) return false;
    unsigned kept = 0;
    unsigned keptHigh = 0;
    __asm__("xgetbv" : "=a"(kept), "=d"(keptHigh) : "c"(0));
    if ((kept & kKept) != kKept) return false;
    return __get_cpuid_count(7, 0, &a, &b, &c, &d) != 0 && (b & bit_AVX2) != 0;
}

}  // namespace

bool hasWideVectors() {
    static const bool there = areThere();
    return there;
}

#else

bool hasWideVectors() {
    return false;
}

#endif
