#pragma once
// Numbers that become integers. A bare cast of a float beyond an integer's range gives another
// result on each processor.

#include <cstdint>
#include <limits>

// Truncated toward zero; beyond the range the nearest end of it; 0 for NaN.
inline std::int32_t saturatedInt(double value) {
    using Limits = std::numeric_limits<std::int32_t>;
    if (value != value) return 0;
    if (value <= Limits::min()) return Limits::min();
    if (value >= Limits::max()) return Limits::max();
    return static_cast<std::int32_t>(value);
}
