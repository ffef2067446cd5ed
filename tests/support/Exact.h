#pragma once

#include <gmpxx.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>

#include "dt3Library/Point3.h"

/// The geometric decisions in GMP's integers: right for all finite doubles, and written from the
/// definitions, sharing nothing with the library.
namespace support {

using ExactVector = std::array<mpz_class, 3>;

/// The differences p[1] - p[0], p[2] - p[0] ... in units of the lowest binary place of all points.
template <std::size_t N>
std::array<ExactVector, N - 1> exactDifferences(const VARN3D::Point3* const (&p)[N]) {
    constexpr int MANTISSA_BITS = 53;
    int unit = 4096;
    double coordinates[N][3];
    for (std::size_t i = 0; i < N; ++i) {
        p[i]->xyz(coordinates[i][0], coordinates[i][1], coordinates[i][2]);
        for (const double c : coordinates[i])
            if (c != 0.0) unit = std::min(unit, std::ilogb(c) - MANTISSA_BITS + 1);
    }
    const auto integer = [unit](double c) -> mpz_class {
        if (c == 0.0) return 0;
        int exponent;
        const double mantissa = std::ldexp(std::frexp(c, &exponent), MANTISSA_BITS);
        return mpz_class(mantissa) << static_cast<mp_bitcnt_t>(exponent - MANTISSA_BITS - unit);
    };
    std::array<ExactVector, N - 1> result;
    for (std::size_t i = 1; i < N; ++i)
        for (std::size_t axis = 0; axis < 3; ++axis)
            result[i - 1][axis] = integer(coordinates[i][axis]) - integer(coordinates[0][axis]);
    return result;
}

inline ExactVector exactCross(const ExactVector& u, const ExactVector& v) {
    return {u[1] * v[2] - u[2] * v[1], u[2] * v[0] - u[0] * v[2], u[0] * v[1] - u[1] * v[0]};
}

inline mpz_class exactDot(const ExactVector& u, const ExactVector& v) {
    return u[0] * v[0] + u[1] * v[1] + u[2] * v[2];
}

/// The sign of the volume of a tetrahedron: 1 if a, b, c run counter-clockwise as seen from d.
inline int exactOrientation(const VARN3D::Point3& a, const VARN3D::Point3& b,
                            const VARN3D::Point3& c, const VARN3D::Point3& d) {
    const auto [ab, ac, ad] = exactDifferences({&a, &b, &c, &d});
    return sgn(exactDot(exactCross(ab, ac), ad));
}

/// 1 if e lies inside the sphere through the corners of the positive tetrahedron a, b, c, d, 0 on
/// it, -1 outside; the reverse for a negative one.
inline int exactInSphere(const VARN3D::Point3& a, const VARN3D::Point3& b, const VARN3D::Point3& c,
                         const VARN3D::Point3& d, const VARN3D::Point3& e) {
    const auto [u, v, w, q] = exactDifferences({&a, &b, &c, &d, &e});
    // With a at the origin, the centre times twice the volume.
    const ExactVector vw = exactCross(v, w);
    const ExactVector wu = exactCross(w, u);
    const ExactVector uv = exactCross(u, v);
    const mpz_class uu = exactDot(u, u);
    const mpz_class lengthV = exactDot(v, v);
    const mpz_class lengthW = exactDot(w, w);
    ExactVector centre;
    for (std::size_t axis = 0; axis < 3; ++axis)
        centre[axis] = uu * vw[axis] + lengthV * wu[axis] + lengthW * uv[axis];
    const mpz_class volume = exactDot(u, vw);
    return sgn(mpz_class(exactDot(q, centre) - exactDot(q, q) * volume));
}

/// -1 if a is nearer to the third point, 1 if b is.
inline int exactDistanceOrder(const VARN3D::Point3& a, const VARN3D::Point3& b,
                              const VARN3D::Point3& from) {
    const auto [toA, toB] = exactDifferences({&from, &a, &b});
    return sgn(mpz_class(exactDot(toA, toA) - exactDot(toB, toB)));
}

/// Whether the three points lie on one line.
inline bool exactlyCollinear(const VARN3D::Point3& a, const VARN3D::Point3& b,
                             const VARN3D::Point3& c) {
    const auto [ab, ac] = exactDifferences({&a, &b, &c});
    return exactCross(ab, ac) == ExactVector{};
}

}  // namespace support
