#pragma once
// Which pixels a triangle covers, and what it shows there.

#include <algorithm>
#include <cmath>
#include <cstdint>

#include "Vector.h"

// A corner on the map, in pixels from its upper left, with what is interpolated between corners.
struct Corner {
    double x;
    double y;
    Vector value;
};

// How far a point lies to one side of the line from a to b, as a linear function of the point.
struct Edge {
    double perX;
    double perY;
    double constant;

    Edge(const Corner& a, const Corner& b)
        : perX(a.y - b.y), perY(b.x - a.x), constant(a.x * b.y - b.x * a.y) {}
    double at(double x, double y) const { return perX * x + perY * y + constant; }
};

struct Range {
    std::uint32_t first;
    std::uint32_t end;
};

// The pixels whose centres may lie between the smallest and the largest of three coordinates.
inline Range pixelsBetween(double a, double b, double c, std::uint32_t size) {
    const double last = size;
    const double low = std::clamp(std::floor(std::min({a, b, c})), 0.0, last);
    const double high = std::clamp(std::ceil(std::max({a, b, c})), 0.0, last);
    return {static_cast<std::uint32_t>(low), static_cast<std::uint32_t>(high)};
}

// Calls `paint(pixel, value)` for each pixel whose centre the triangle covers, in whichever sense
// its corners run. Its sides count as covered, and a side seen from the other triangle is the exact
// negative, so that triangles with a common side leave no gap.
template <typename Paint>
void rasterize(const Corner& a, const Corner& second, const Corner& third, std::uint32_t size,
               Paint paint) {
    const double area = Edge(a, second).at(third.x, third.y);
    if (!std::isfinite(area) || area == 0.0) return;
    const Corner& b = area > 0.0 ? second : third;
    const Corner& c = area > 0.0 ? third : second;

    const Edge towardA(b, c);
    const Edge towardB(c, a);
    const Edge towardC(a, b);
    const Range columns = pixelsBetween(a.x, b.x, c.x, size);
    const Range rows = pixelsBetween(a.y, b.y, c.y, size);
    for (std::uint32_t row = rows.first; row < rows.end; ++row) {
        for (std::uint32_t column = columns.first; column < columns.end; ++column) {
            const double x = column + 0.5;
            const double y = row + 0.5;
            const double shareA = towardA.at(x, y);
            const double shareB = towardB.at(x, y);
            const double shareC = towardC.at(x, y);
            if (shareA < 0.0 || shareB < 0.0 || shareC < 0.0) continue;
            // The area, as this point sees it: in a sliver rounding makes the two differ.
            const double shares = shareA + shareB + shareC;
            if (!(shares > 0.0)) continue;
            const Vector sum = a.value * shareA + b.value * shareB + c.value * shareC;
            paint(std::size_t{row} * size + column, sum * (1.0 / shares));
        }
    }
}
