#pragma once

#include <array>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <memory>
#include <utility>
#include <vector>

#include "dt3Library/Tet3.h"
#include "tests/support/CaptureOutput.h"
#include "tests/support/PointSets.h"

/// Families of five points that are hard for a predicate, each in its own way.
namespace support {

using FivePoints = std::array<VARN3D::Point3, 5>;

/// A tetrahedron to set, without the line that its constructor prints.
inline VARN3D::Tet3& scratchTet() {
    static std::unique_ptr<VARN3D::Tet3> tet;
    if (tet == nullptr) outputOf([] { tet = std::make_unique<VARN3D::Tet3>(); });
    return *tet;
}

struct PredicateInput {
    const char* name;
    FivePoints (*make)(Random&);
};

template <class Coordinate>
FivePoints fromCoordinates(Coordinate coordinate) {
    FivePoints points;
    for (VARN3D::Point3& p : points) {
        const double x = coordinate();
        const double y = coordinate();
        p.exchange(x, y, coordinate());
    }
    return points;
}

/// Five of the eight corners of a box.
inline FivePoints boxCorners(Random& r, std::array<std::array<double, 2>, 3> ranges) {
    std::array<int, 8> corners{0, 1, 2, 3, 4, 5, 6, 7};
    for (int i = 7; i > 0; --i)
        std::swap(corners[static_cast<std::size_t>(i)],
                  corners[static_cast<std::size_t>(r.below(i + 1))]);
    FivePoints points;
    for (std::size_t i = 0; i < points.size(); ++i) {
        const auto pick = [&](unsigned axis) {
            return ranges[axis][static_cast<unsigned>(corners[i]) >> axis & 1U];
        };
        points[i].exchange(pick(0), pick(1), pick(2));
    }
    return points;
}

inline FivePoints gridBox(Random& r, double step, int numSteps, double offset) {
    std::array<std::array<double, 2>, 3> ranges;
    for (auto& range : ranges) {
        const int first = r.below(numSteps);
        range = {offset + step * first, offset + step * (first + 1 + r.below(3))};
    }
    return boxCorners(r, ranges);
}

inline FivePoints onSphere(Random& r, double radius, double flatness) {
    FivePoints points;
    for (VARN3D::Point3& p : points) {
        const double x = r.bell();
        const double y = r.bell();
        const double z = r.bell();
        const double scale = radius / std::sqrt(x * x + y * y + z * z);
        p.exchange(x * scale, y * scale, z * scale * flatness);
    }
    return points;
}

inline double anyFiniteDouble(Random& r) {
    for (;;) {
        const std::uint64_t bits = static_cast<std::uint64_t>(r.below(1 << 30)) << 34 ^
                                   static_cast<std::uint64_t>(r.below(1 << 30)) << 17 ^
                                   static_cast<std::uint64_t>(r.below(1 << 30));
        double value;
        std::memcpy(&value, &bits, sizeof value);
        if (std::isfinite(value)) return value;
    }
}

inline double extremeDouble(Random& r) {
    using Limits = std::numeric_limits<double>;
    static const double EXTREMES[] = {0.0,       Limits::denorm_min(), 3 * Limits::denorm_min(),
                                      0x1p-1023, Limits::min(),        0x1p-537,
                                      0x1p-200,  Limits::epsilon(),    1.0,
                                      3.0,       1.0 + 0x1p-52,        0x1p199,
                                      0x1p600,   Limits::max() / 2,    Limits::max()};
    const double value = EXTREMES[r.below(15)];
    return r.below(2) == 0 ? value : -value;
}

inline const std::vector<PredicateInput>& predicateInputs() {
    static const std::vector<PredicateInput> inputs = {
        {"uniform", [](Random& r) { return fromCoordinates([&] { return r.unit(); }); }},
        {"lastBits",
         [](Random& r) { return fromCoordinates([&] { return 1e6 + 0x1p-33 * r.below(4); }); }},
        {"tinyLattice",
         [](Random& r) { return fromCoordinates([&] { return double(r.below(3)); }); }},
        {"lattice",
         [](Random& r) { return fromCoordinates([&] { return 0.25 * r.below(64) - 7.0; }); }},
        {"latticeTooLargeForDoubles",
         [](Random& r) { return fromCoordinates([&] { return double(r.below(1 << 20)); }); }},
        {"tenths", [](Random& r) { return fromCoordinates([&] { return 0.1 * r.below(5); }); }},
        {"boxOfIntegers", [](Random& r) { return gridBox(r, 1.0, 60, 0.0); }},
        {"boxOfIntegersOfManySizes",
         [](Random& r) {
             const int size = 1 << (7 + r.below(6));
             std::array<std::array<double, 2>, 3> ranges;
             for (auto& range : ranges) range = {double(r.below(size)), double(r.below(size))};
             return boxCorners(r, ranges);
         }},
        {"coplanarIntegersOfManySizes",
         [](Random& r) {
             const int size = 1 << (14 + r.below(7));
             FivePoints points = fromCoordinates([&] { return double(r.below(size)); });
             const VARN3D::Vector3 u = points[1] - points[0];
             const VARN3D::Vector3 v = points[2] - points[0];
             for (const std::size_t k : {3U, 4U}) {
                 const double i = r.below(4), j = r.below(4);
                 points[k].exchange(points[0].x() + i * u.x + j * v.x,
                                    points[0].y() + i * u.y + j * v.y,
                                    points[0].z() + i * u.z + j * v.z);
             }
             return points;
         }},
        {"nearlyCoplanar",
         [](Random& r) {
             FivePoints points = onSphere(r, 1.0, 1.0);
             for (VARN3D::Point3& p : points) p.exchange(p.x(), p.y(), 0.3 - p.x() / 7 - p.y());
             return points;
         }},
        {"boxOfHalvesFarBelowZero",
         [](Random& r) {
             std::array<std::array<double, 2>, 3> ranges;
             for (auto& range : ranges)
                 range = {-3e15 + 0.5 * r.below(8192), -3e15 + 0.5 * r.below(8192)};
             return boxCorners(r, ranges);
         }},
        {"boxOfTenths", [](Random& r) { return gridBox(r, 0.1, 60, 0.0); }},
        {"boxOfThirdsFarOff", [](Random& r) { return gridBox(r, 1.0 / 3.0, 5, 1e7); }},
        {"boxBelowUnderflow", [](Random& r) { return gridBox(r, 1e-120, 9, 0.0); }},
        {"boxOfDenormals", [](Random& r) { return gridBox(r, 5e-324, 9, 0.0); }},
        {"boxBeyondOverflow", [](Random& r) { return gridBox(r, 1e306, 9, -4e306); }},
        {"symmetricBox",
         [](Random& r) {
             const double x = r.unit(), y = 1e-3 * r.unit(), z = 1e-9 * r.unit();
             return boxCorners(r, {{{-x, x}, {-y, y}, {-z, z}}});
         }},
        {"symmetricBoxOfAnyDoubles",
         [](Random& r) {
             const double x = anyFiniteDouble(r), y = anyFiniteDouble(r), z = anyFiniteDouble(r);
             return boxCorners(r, {{{-x, x}, {-y, y}, {-z, z}}});
         }},
        {"sphere", [](Random& r) { return onSphere(r, 1.0, 1.0); }},
        {"sphereOfTinyRadius", [](Random& r) { return onSphere(r, 1e-200, 1.0); }},
        {"sphereOfHugeRadius", [](Random& r) { return onSphere(r, 1e307, 1.0); }},
        {"flatEllipsoid", [](Random& r) { return onSphere(r, 1.0, 1e-150); }},
        {"needleWhoseThicknessUnderflows",
         [](Random& r) {
             FivePoints points;
             for (VARN3D::Point3& p : points) {
                 const double x = 4e-162 * r.unit();
                 const double y = 4e-162 * r.unit();
                 p.exchange(x, y, 1e12 * r.unit());
             }
             return points;
         }},
        {"small", [](Random& r) { return fromCoordinates([&] { return 1e-60 * r.unit(); }); }},
        {"productsUnderflow",
         [](Random& r) {
             const double size = std::ldexp(1.0, -345 - r.below(20));
             return fromCoordinates([&] { return size * r.unit(); });
         }},
        {"smaller", [](Random& r) { return fromCoordinates([&] { return 1e-250 * r.unit(); }); }},
        {"denormal", [](Random& r) { return fromCoordinates([&] { return 2e-322 * r.unit(); }); }},
        {"large", [](Random& r) { return fromCoordinates([&] { return 1e61 * r.unit(); }); }},
        {"largest",
         [](Random& r) { return fromCoordinates([&] { return 1.7e308 * (2 * r.unit() - 1); }); }},
        {"anyDoubles",
         [](Random& r) { return fromCoordinates([&] { return anyFiniteDouble(r); }); }},
        {"extremes", [](Random& r) { return fromCoordinates([&] { return extremeDouble(r); }); }},
    };
    return inputs;
}

}  // namespace support
