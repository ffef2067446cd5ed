#pragma once

#include <cmath>
#include <cstdint>

#include "tests/support/Exact.h"

/// The exact decisions, faster where all coordinates are small multiples of a half: there the
/// determinants fit 64 bits. Brute force on lattices lives on it.
namespace support {

using LatticeVector = std::array<std::int64_t, 3>;

/// p - origin in halves. Returns false if these are no small integers.
inline bool latticeDifference(const VARN3D::Point3& p, const VARN3D::Point3& origin,
                              LatticeVector& difference) {
    constexpr double LIMIT = 512.0;  // keeps the sphere test below 2^57
    const double from[3] = {2 * origin.x(), 2 * origin.y(), 2 * origin.z()};
    const double to[3] = {2 * p.x(), 2 * p.y(), 2 * p.z()};
    for (std::size_t axis = 0; axis < 3; ++axis) {
        if (!(std::fabs(from[axis]) <= LIMIT && std::fabs(to[axis]) <= LIMIT) ||
            from[axis] != std::floor(from[axis]) || to[axis] != std::floor(to[axis]))
            return false;
        difference[axis] = static_cast<std::int64_t>(to[axis] - from[axis]);
    }
    return true;
}

inline std::int64_t latticeVolume(const LatticeVector& u, const LatticeVector& v,
                                  const LatticeVector& w) {
    return u[0] * (v[1] * w[2] - v[2] * w[1]) + u[1] * (v[2] * w[0] - v[0] * w[2]) +
           u[2] * (v[0] * w[1] - v[1] * w[0]);
}

inline int signOf(std::int64_t value) {
    return (value > 0 ? 1 : 0) - (value < 0 ? 1 : 0);
}

/// As `exactOrientation`.
inline int orientationOf(const VARN3D::Point3& a, const VARN3D::Point3& b, const VARN3D::Point3& c,
                         const VARN3D::Point3& d) {
    LatticeVector u, v, w;
    if (!latticeDifference(b, a, u) || !latticeDifference(c, a, v) || !latticeDifference(d, a, w))
        return exactOrientation(a, b, c, d);
    return signOf(latticeVolume(u, v, w));
}

/// As `exactInSphere`.
inline int inSphereOf(const VARN3D::Point3& a, const VARN3D::Point3& b, const VARN3D::Point3& c,
                      const VARN3D::Point3& d, const VARN3D::Point3& e) {
    LatticeVector rows[4];
    if (!latticeDifference(a, e, rows[0]) || !latticeDifference(b, e, rows[1]) ||
        !latticeDifference(c, e, rows[2]) || !latticeDifference(d, e, rows[3]))
        return exactInSphere(a, b, c, d, e);
    const auto lift = [&rows](std::size_t i) {
        return rows[i][0] * rows[i][0] + rows[i][1] * rows[i][1] + rows[i][2] * rows[i][2];
    };
    return signOf(lift(0) * latticeVolume(rows[1], rows[2], rows[3]) -
                  lift(1) * latticeVolume(rows[0], rows[2], rows[3]) +
                  lift(2) * latticeVolume(rows[0], rows[1], rows[3]) -
                  lift(3) * latticeVolume(rows[0], rows[1], rows[2]));
}

}  // namespace support
