#pragma once

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <random>
#include <utility>
#include <vector>

#include "dt3Library/Point3.h"

/// Point sets for tests: the same on every platform for the same arguments, since they take from
/// the standard library only the generator, whose output is fixed, and correctly rounded functions.
namespace support {

using Points = std::vector<VARN3D::Point3>;

class Random {
  public:
    explicit Random(std::uint64_t seed) : generator(seed) {}

    std::uint64_t bits() { return generator(); }
    /// In [0, 1).
    double unit() { return static_cast<double>(generator() >> 11) * 0x1p-53; }
    double between(double min, double max) { return min + unit() * (max - min); }
    /// 0 to n - 1.
    int below(int n) { return static_cast<int>(generator() % static_cast<std::uint64_t>(n)); }
    /// Nearly normal: the sum of twelve uniform numbers.
    double bell() {
        double sum = -6.0;
        for (int i = 0; i < 12; ++i) sum += unit();
        return sum;
    }

  private:
    std::mt19937_64 generator;
};

template <class Make>
Points generate(std::size_t n, Make make) {
    Points points;
    points.reserve(n);
    for (std::size_t i = 0; i < n; ++i) points.push_back(make());
    return points;
}

inline Points uniform(std::size_t n, std::uint64_t seed, double min = 0.0, double max = 1.0) {
    Random r(seed);
    return generate(n, [&] {
        const double x = r.between(min, max);
        const double y = r.between(min, max);
        return VARN3D::Point3(x, y, r.between(min, max));
    });
}

inline Points gaussian(std::size_t n, std::uint64_t seed) {
    Random r(seed);
    return generate(n, [&] {
        const double x = r.bell();
        const double y = r.bell();
        return VARN3D::Point3(x, y, r.bell());
    });
}

/// Coordinates of these exponents, of either sign.
inline Points mixedExponents(std::size_t n, int min, int max) {
    Random r(3);
    const auto any = [&] { return std::ldexp(r.unit() - 0.5, r.below(max - min) + min); };
    return generate(n, [&] {
        const double x = any();
        const double y = any();
        return VARN3D::Point3(x, y, any());
    });
}

/// Random points of an integer lattice: full of equal, collinear, coplanar and cospherical ones.
inline Points lattice(std::size_t n, int sideX, int sideY, int sideZ, std::uint64_t seed) {
    Random r(seed);
    return generate(n, [&] {
        const int x = r.below(sideX);
        const int y = r.below(sideY);
        return VARN3D::Point3(x, y, r.below(sideZ));
    });
}

/// All points of a lattice, x slowest.
inline Points grid(int sideX, int sideY, int sideZ, double step = 1.0) {
    Points points;
    for (int x = 0; x < sideX; ++x)
        for (int y = 0; y < sideY; ++y)
            for (int z = 0; z < sideZ; ++z) points.emplace_back(x * step, y * step, z * step);
    return points;
}

/// Directions of a gaussian, so nearly on the unit sphere.
inline Points sphere(std::size_t n, std::uint64_t seed) {
    Points points = gaussian(n, seed);
    for (VARN3D::Point3& p : points) {
        const double length = std::sqrt(p.x() * p.x() + p.y() * p.y() + p.z() * p.z());
        p.exchange(p.x() / length, p.y() / length, p.z() / length);
    }
    return points;
}

/// All integer points at that squared distance from the origin: exactly on a sphere.
inline Points integerSphere(int squaredRadius) {
    Points points;
    const int r = static_cast<int>(std::sqrt(static_cast<double>(squaredRadius)));
    for (int x = -r; x <= r; ++x)
        for (int y = -r; y <= r; ++y)
            for (int z = -r; z <= r; ++z)
                if (x * x + y * y + z * z == squaredRadius) points.emplace_back(x, y, z);
    return points;
}

/// One turn every 40 points along z, from a rotation by repeated multiplication.
inline Points helix(std::size_t n) {
    const double stepX = std::sqrt(1.0 - 0.15625 * 0.15625);
    const double stepY = 0.15625;
    double x = 1.0;
    double y = 0.0;
    double z = 0.0;
    return generate(n, [&] {
        const double length = std::sqrt(x * x + y * y);
        const VARN3D::Point3 p(x / length, y / length, z);
        x = p.x() * stepX - p.y() * stepY;
        y = p.x() * stepY + p.y() * stepX;
        z += 0.01;
        return p;
    });
}

/// Two segments at right angles, one above the other: a quadratic number of tetrahedra.
inline Points skewSegments(int n) {
    Points points;
    for (int i = 0; i < n; ++i) {
        points.emplace_back(i, n / 2, 0);
        points.emplace_back(n / 2, i, n);
    }
    return points;
}

/// In order: each new point sees hull facets at edges of high degree.
inline Points momentCurve(int n) {
    Points points;
    for (int i = 0; i < n; ++i) {
        const double t = static_cast<double>(i) / n;
        points.emplace_back(t, t * t, t * t * t);
    }
    return points;
}

/// Sixty clusters around the origin, each within a cell of the one before.
inline Points nestedClusters(std::size_t n) {
    Points points = uniform(n, 7);
    for (std::size_t i = 0; i < n; ++i) {
        const double size = std::ldexp(1.0, -12 * static_cast<int>(i % 60));
        VARN3D::Point3& p = points[i];
        p.exchange(p.x() * size, p.y() * size, p.z() * size);
    }
    return points;
}

/// Exactly on the plane z = x + 2y.
inline Points planar(std::size_t n, int side, std::uint64_t seed) {
    Random r(seed);
    return generate(n, [&] {
        const int x = r.below(side);
        const int y = r.below(side);
        return VARN3D::Point3(x, y, x + 2 * y);
    });
}

inline Points shuffled(Points points, std::uint64_t seed) {
    Random r(seed);
    for (std::size_t i = points.size(); i > 1; --i)
        std::swap(points[i - 1], points[static_cast<std::size_t>(r.below(static_cast<int>(i)))]);
    return points;
}

/// The same points, written otherwise.
inline Points withSignsOfZerosExchanged(Points points) {
    const auto other = [](double c) { return c == 0.0 ? -c : c; };
    for (VARN3D::Point3& p : points) p.exchange(other(p.x()), other(p.y()), other(p.z()));
    return points;
}

inline Points reversed(const Points& points) {
    return {points.rbegin(), points.rend()};
}

inline Points operator+(Points a, const Points& b) {
    a.insert(a.end(), b.begin(), b.end());
    return a;
}

}  // namespace support
