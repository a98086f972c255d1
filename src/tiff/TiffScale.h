#pragma once
// TiffScale: the scale at which a displacement map is applied, from the number of its levels.

#include <cstddef>

// 18.49 e^(1049 / levels - 0.00007071 levels), an empirical fit. Single precision throughout, in
// this order; the exponential is rounded once from double, which gives the same bits on every
// system. Infinite below 13 levels. `levels` is 1 to 65536.
float scaleOfLevels(std::size_t levels);
