#pragma once
// Directions and points in space, and the extent of coordinates.

#include <algorithm>
#include <cmath>
#include <limits>

struct Vector {
    double x = 0.0, y = 0.0, z = 0.0;

    Vector operator+(const Vector& b) const { return {x + b.x, y + b.y, z + b.z}; }
    Vector operator-(const Vector& b) const { return {x - b.x, y - b.y, z - b.z}; }
    Vector operator*(double factor) const { return {x * factor, y * factor, z * factor}; }
};

inline Vector cross(const Vector& a, const Vector& b) {
    return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}

inline Vector normalized(const Vector& a) {
    const double length = std::sqrt(a.x * a.x + a.y * a.y + a.z * a.z);
    return length > 0.0 ? a * (1.0 / length) : Vector{};
}

// From the lowest to the highest of some coordinates.
struct Extent {
    double low = std::numeric_limits<double>::infinity();
    double high = -std::numeric_limits<double>::infinity();

    void take(double coordinate) {
        low = std::min(low, coordinate);
        high = std::max(high, coordinate);
    }
    double size() const { return high - low; }
};
