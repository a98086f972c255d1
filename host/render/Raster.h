#pragma once
// Which pixels a triangle covers, and the value at each; the level of a value.

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>

// What is painted on, in pixels.
struct Canvas {
    std::uint32_t width;
    std::uint32_t height;
};

// A corner, in pixels from the canvas's upper left, with what is interpolated between corners: a
// value that can be added and scaled.
template <typename Value>
struct Corner {
    double x;
    double y;
    Value value;
};

// The distance of a point to one side of the line from a to b, as a linear function of the point.
struct Edge {
    double perX;
    double perY;
    double constant;

    template <typename Value>
    Edge(const Corner<Value>& a, const Corner<Value>& b)
        : perX(a.y - b.y), perY(b.x - a.x), constant(a.x * b.y - b.x * a.y) {}
    double at(double x, double y) const { return perX * x + perY * y + constant; }
};

struct PixelRange {
    std::uint32_t first;
    std::uint32_t end;
};

// Rounds to an integer type; numbers outside its range become its nearest, and a NaN becomes 0.
template <typename Integer, typename Number>
Integer rounded(Number number) {
    const Number moved = number + Number{0.5};
    return moved > 0
               ? static_cast<Integer>(std::min<Number>(moved, std::numeric_limits<Integer>::max()))
               : 0;
}

// The pixels whose centres may be between the smallest and the largest of three coordinates.
inline PixelRange pixelsBetween(double a, double b, double c, std::uint32_t size) {
    const double last = size;
    const double low = std::clamp(std::floor(std::min({a, b, c})), 0.0, last);
    const double high = std::clamp(std::ceil(std::max({a, b, c})), 0.0, last);
    return {static_cast<std::uint32_t>(low), static_cast<std::uint32_t>(high)};
}

// Calls `paint(pixel, value)` for each pixel whose centre the triangle covers, with its corners in
// either order. Its sides count as covered, and a side seen from the other triangle is the exact
// negative, so that triangles with a common side leave no gap.
template <typename Value, typename Paint>
void rasterize(const Corner<Value>& a, const Corner<Value>& second, const Corner<Value>& third,
               const Canvas& canvas, Paint paint) {
    const double area = Edge(a, second).at(third.x, third.y);
    if (!std::isfinite(area) || area == 0.0) return;
    const Corner<Value>& b = area > 0.0 ? second : third;
    const Corner<Value>& c = area > 0.0 ? third : second;

    const Edge towardA(b, c);
    const Edge towardB(c, a);
    const Edge towardC(a, b);
    const PixelRange columns = pixelsBetween(a.x, b.x, c.x, canvas.width);
    const PixelRange rows = pixelsBetween(a.y, b.y, c.y, canvas.height);
    for (std::uint32_t row = rows.first; row < rows.end; ++row) {
        for (std::uint32_t column = columns.first; column < columns.end; ++column) {
            const double x = column + 0.5;
            const double y = row + 0.5;
            const double shareA = towardA.at(x, y);
            const double shareB = towardB.at(x, y);
            const double shareC = towardC.at(x, y);
            if (shareA < 0.0 || shareB < 0.0 || shareC < 0.0) continue;
            // The area computed for this point: in a sliver rounding makes the two differ.
            const double shares = shareA + shareB + shareC;
            if (!(shares > 0.0)) continue;
            const Value sum = a.value * shareA + b.value * shareB + c.value * shareC;
            paint(std::size_t{row} * canvas.width + column, sum * (1.0 / shares));
        }
    }
}
