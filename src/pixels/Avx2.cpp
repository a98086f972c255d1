#include "pixels/Avx2.h"

#if defined(__x86_64__)

#include <cpuid.h>

namespace {

bool detectAvx2() {
    constexpr unsigned kSaved = 6;  // by the system: the low and the high halves of the registers
    unsigned a = 0, b = 0, c = 0, d = 0;
    if (__get_cpuid(1, &a, &b, &c, &d) == 0 || (c & bit_OSXSAVE) == 0) return false;
    unsigned saved = 0;
    unsigned savedHigh = 0;
    __asm__("xgetbv" : "=a"(saved), "=d"(savedHigh) : "c"(0));
    if ((saved & kSaved) != kSaved) return false;
    return __get_cpuid_count(7, 0, &a, &b, &c, &d) != 0 && (b & bit_AVX2) != 0;
}

}  // namespace

bool hasAvx2() {
    static const bool has = detectAvx2();
    return has;
}

#else

bool hasAvx2() {
    return false;
}

#endif
