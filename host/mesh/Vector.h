#pragma once
// Directions and points in space.

#include <cmath>

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
