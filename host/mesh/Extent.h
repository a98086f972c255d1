#pragma once
// From the lowest to the highest of some coordinates.

#include <algorithm>
#include <cmath>
#include <limits>

struct Extent {
    double low = std::numeric_limits<double>::infinity();
    double high = -std::numeric_limits<double>::infinity();

    // A NaN is left out.
    void take(double coordinate) {
        low = std::min(low, coordinate);
        high = std::max(high, coordinate);
    }
    double size() const { return high - low; }

    // For UVs: the whole number at or below all; they are in one tile if they reach no further than
    // the next one.
    double start() const { return std::floor(low); }
    bool liesInOneTile() const { return high <= start() + 1.0; }
};
