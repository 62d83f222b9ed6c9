#include "app/window/TransportSign.h"

#include <algorithm>
#include <array>
#include <span>

// Shapes on a square of 64 by 64 units. Each pixel is looked at in 16 places, which the drawing functions of
// the oldest platforms do not do.

namespace {

constexpr int kUnits = 64;
constexpr int kPlaces = 4;  // across a pixel, and down

struct Point {
    int x, y;
};

// A convex polygon, its corners clockwise; or a disc, given by its centre and radius.
struct Shape {
    std::array<Point, 4> corners;
    int count;  // of corners; 0: a disc
    int radius = 0;
};

constexpr Shape Disc(int radius) {
    return {{{{32, 32}}}, 0, radius};
}
constexpr Shape Bar(int left, int right) {
    return {{{{left, 8}, {right, 8}, {right, 56}, {left, 56}}}, 4};
}
constexpr Shape ToRight(int left, int right) {
    return {{{{left, 8}, {right, 32}, {left, 56}}}, 3};
}
constexpr Shape ToLeft(int left, int right) {
    return {{{{right, 8}, {right, 56}, {left, 32}}}, 3};
}

struct Sign {
    std::array<Shape, 3> shapes;
    size_t count;
};

// In the order of TransportSign. Inserting: a disc between two bars, a recording between existing passages;
// at the end: a disc behind a bar.
constexpr Sign kSigns[] = {
    {{{Disc(25)}}, 1},
    {{{Bar(2, 10), Disc(15), Bar(54, 62)}}, 3},
    {{{Bar(2, 10), Disc(15)}}, 2},
    {{{{{{{10, 10}, {54, 10}, {54, 54}, {10, 54}}}, 4}}}, 1},
    {{{ToRight(14, 58)}}, 1},
    {{{Bar(6, 14), ToLeft(16, 58)}}, 2},
    {{{ToLeft(0, 31), ToLeft(31, 62)}}, 2},
    {{{ToRight(2, 33), ToRight(33, 64)}}, 2},
    {{{ToRight(6, 48), Bar(50, 58)}}, 2},
};

// In places of the drawing, which are not whole units.
struct Place {
    double x, y;
};

bool Covers(const Shape& shape, Place at) {
    if (shape.count == 0) {
        const double x = at.x - shape.corners[0].x;
        const double y = at.y - shape.corners[0].y;
        return x * x + y * y <= shape.radius * shape.radius;
    }
    for (int i = 0; i < shape.count; ++i) {
        const Point& a = shape.corners[static_cast<size_t>(i)];
        const Point& b = shape.corners[static_cast<size_t>((i + 1) % shape.count)];
        if ((b.x - a.x) * (at.y - a.y) < (b.y - a.y) * (at.x - a.x)) return false;
    }
    return true;
}

bool Covers(const Sign& sign, Place at) {
    return std::ranges::any_of(std::span(sign.shapes).first(sign.count),
                               [at](const Shape& shape) { return Covers(shape, at); });
}

}  // namespace

std::vector<uint8_t> DrawSign(TransportSign sign, int side) {
    const Sign& drawing = kSigns[static_cast<size_t>(sign)];
    std::vector<uint8_t> pixels(static_cast<size_t>(side) * static_cast<size_t>(side));
    const double step = static_cast<double>(kUnits) / (side * kPlaces);
    for (int i = 0; i < side * side; ++i) {
        int covered = 0;
        for (int place = 0; place < kPlaces * kPlaces; ++place) {
            const int x = i % side * kPlaces + place % kPlaces;
            const int y = i / side * kPlaces + place / kPlaces;
            covered += Covers(drawing, {(x + 0.5) * step, (y + 0.5) * step});
        }
        pixels[static_cast<size_t>(i)] = static_cast<uint8_t>(covered * 255 / (kPlaces * kPlaces));
    }
    return pixels;
}
