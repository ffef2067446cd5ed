#pragma once

#include <limits>

#include "dt3Library/base/vectors.h"
#include "dt3Library/predicates/FloatingPoint.h"

namespace VARN3D {

/// Under which conditions a circumsphere computed in doubles is certain to answer, and how far from
/// it a point must be.
///
/// Theorem. Let p, a, b, c be finite with no coordinate above MAX_COORDINATE, and reach at least
/// |p|inf and LEAST_REACH. Then whatever `sideOfSphere` says but 0 of a sphere of `makeSphere` and
/// a finite q is true of the exact sphere through p, a, b, c; of a point on that sphere it says 0.
///
/// What is assumed: doubles rounded to nearest, with denormals; division rounded as well. Products
/// may be fused into sums in any pattern, sums of three terms added in any order, so that scalar
/// and vector code are both covered, though they need not agree in what they leave undecided. The
/// rows start at p. The coordinates are meant as they stand: if they were moved, then exactly.
///
/// Notation: u = 2^-53, |.| the Euclidean norm. A_i are the exact rows a - p, b - p, c - p, and a_i
/// the computed ones; P = |a_1| |a_2| |a_3|, cross_i = a_j x a_k, D = a_1 . cross_1, and
/// N = sum |a_i|^2 cross_i, all without rounding; D', N' and so on are computed. O is the exact
/// centre minus p, rho = |O|; o = N / (2 D) the exact centre of 0, a_1, a_2, a_3, and k = P / |D'|.
///
/// (a) Rows: a_i = A_i + d_i with |d_i| <= u |a_i|; a difference never underflows.
/// (b) Cross products: a component s - t errs by at most (2u + u^2)(|s| + |t|), fused or not, and
///     the vector of these |s| + |t| is no longer than sqrt(2) |a_j| |a_k|, as (|s| + |t|)^2 <=
///     2 s^2 + 2 t^2: together less than 2.83u |a_j| |a_k|.
/// (c) Numerator: three roundings in a lift, three more in product and sum:
///     |N' - N| <= (2.83 + 6.01)u P (|a_1| + |a_2| + |a_3|) <= 8.84u P * 6|o|, a chord being no
///     longer than a diameter. So |N' - N| / (2 |D'|) <= 26.52 ku |o|.
/// (d) Determinant: likewise |D' - D| <= 5.83u P, and k >= 1 - 6u as |D| <= P.
/// (e) N' / (2 D') - o = (N' - N) / (2 D') + o (D - D') / D', and the quotient takes two roundings
///     at most: the computed o' has |o' - o| <= (26.52 + 5.83 + 2.02) ku |o| < 34.4 ku |o|.
/// (f) Rounded against exact rows: A_i . O = |A_i|^2 / 2 and a_i . o = |a_i|^2 / 2 give
///     a_i . (o - O) = d_i . (A_i - O) + |d_i|^2 / 2 =: x_i, where |A_i - O| = rho, hence
///     |x_i| <= u |a_i| rho (1 + 2u). As o - O = sum cross_i x_i / D and |D| >= |D'| (1 - 5.83 ku),
///     |o - O| <= 3.01 ku rho. O exists: a unit vector v with all A_i . v = 0 would have
///     |a_i . v| <= u |a_i| and so 1 = |sum cross_i (a_i . v) / D| <= 3.01 ku, against (h).
/// (g) Both: |o' - O| <= 34.4 ku (1 + 3.01 ku) rho + 3.01 ku rho <= 38 ku rho =: e rho.
/// (h) The conditions, in which det det is rounded once, the product of lifts eleven times, the sum
///     once and r2 three times, give ku <= (1 + 8u) u / sqrt(DETERMINANT), which is 2^-30, and
///     u reach / rho <= (1 + 2e) u / sqrt(RADIUS), which is 2^-24.
/// (i) Stored centre: it is off by |o' - O| + u |p + o'| at most, which is below f rho with
///     f = e + 1.74u reach / rho + 1.01u.
/// (j) Stored squared radius: |o'|^2 within 3 roundings of a double and one of a float.
/// (k) Test: the squared distance takes 5 roundings and r2 (1 -+ ETA) one, since 1 -+ ETA are
///     doubles. If q were not inside and the answer "inside",
///         (1 - f)^2 (1 - 5.01u) < (1 + e)^2 (1 + 4.02u) (1 + 2^-24) (1 - ETA),
///     and if it were not outside and the answer "outside",
///         (1 + f)^2 (1 + 5.01u) > (1 - e)^2 (1 - 4.02u) (1 - 2^-24) (1 + ETA).
///     Neither can be if 2f + 2e + 9.03u + 2^-24 is less than ETA by more than the terms of second
///     order, of which 0.02 ETA is far more than enough. With (g) to (i) that is
///         152 ku + 3.5u reach / rho + 2^-24 + 14u < 0.98 ETA,
///     and 152 * 2^-30 + 3.5 * 2^-24 + 2^-24 + 14u is 0.860 ETA.
///
/// Range. With coordinates up to 2^30 rows are below 2^32, determinants below 2^97, numerators
/// below 2^130 and the product of the lifts below 2^192; k <= 2^23 makes rho less than 1.5 * 2^55.
/// Nothing overflows, and the limit of 2^127 to r2 is a guard for callers that break the rule. The
/// distance to a far q may become infinite, which is then truly outside. With det det > 2^-800,
/// P > 2^-401, so that each row is above 2^-466, each lift above 2^-932, each product of two rows
/// above 2^-434, of two lifts above 2^-868: the bounds above exceed what underflow adds to them,
/// 2^-1074 an operation, by 2^80 and more. r2 > 2^-58 * 2^-60 is a normal float, and the stored
/// centre and the distances compared with r2 are far too large for underflow to matter to them.
/// Rows that vanish or make no determinant fail the first condition, and so does a NaN.
struct ProvedCertificate {
    static constexpr double ETA = 0x1p-21;
    static constexpr double DETERMINANT = 0x1p-46;
    static constexpr double RADIUS = 0x1p-58;
    static constexpr double LEAST_DETERMINANT = 0x1p-800;
    static constexpr double LEAST_REACH = 0x1p-30;
    static constexpr double MAX_COORDINATE = 0x1p30;
    /// The roots of 1 / DETERMINANT and 1 / RADIUS, for the inequality of (k).
    static constexpr double MAX_CONDITION = 0x1p23;
    static constexpr double MAX_DISTANCE = 0x1p29;
};
static_assert(ProvedCertificate::MAX_CONDITION * ProvedCertificate::MAX_CONDITION *
                          ProvedCertificate::DETERMINANT ==
                      1.0 &&
                  ProvedCertificate::MAX_DISTANCE * ProvedCertificate::MAX_DISTANCE *
                          ProvedCertificate::RADIUS ==
                      1.0,
              "the roots in the proof belong to the constants");
static_assert(152 * 0x1p-53 * ProvedCertificate::MAX_CONDITION +
                      3.5 * 0x1p-53 * ProvedCertificate::MAX_DISTANCE + 0x1p-24 + 14 * 0x1p-53 <
                  0.98 * ProvedCertificate::ETA,
              "the last inequality of the proof");

/// A circumsphere as a tetrahedron keeps it. A squared radius of NaN stands for "not certified",
/// and then every comparison fails.
struct CachedSphere {
    double x, y, z;
    float squaredRadius;
};

/// p - q
inline Vector3 difference(const double (&p)[3], const double (&q)[3]) {
    return {p[0] - q[0], p[1] - q[1], p[2] - q[2]};
}

/// The circumsphere of p, a, b, c (of either handedness), certified or not. `reach` must be at
/// least |p|inf and `Certificate::LEAST_REACH`, and no coordinate above 2^30; see the theorem
/// above.
template <class Certificate = ProvedCertificate>
CachedSphere makeSphere(const double (&p)[3], const double (&a)[3], const double (&b)[3],
                        const double (&c)[3], double reach) {
    constexpr double LARGEST = 0x1p127;
    const Vector3 rowA = difference(a, p), rowB = difference(b, p), rowC = difference(c, p);
    const Vector3 bc = cross(rowB, rowC), ca = cross(rowC, rowA), ab = cross(rowA, rowB);
    const double liftA = dot(rowA, rowA), liftB = dot(rowB, rowB), liftC = dot(rowC, rowC);
    const double det = dot(rowA, bc);
    const double scale = 0.5 / det;
    const Vector3 centre{scale * ((liftA * bc.x + liftB * ca.x) + liftC * ab.x),
                         scale * ((liftA * bc.y + liftB * ca.y) + liftC * ab.y),
                         scale * ((liftA * bc.z + liftB * ca.z) + liftC * ab.z)};
    const double r2 = dot(centre, centre);
    const bool bCertified = det * det > Certificate::DETERMINANT * (liftA * liftB * liftC) +
                                            Certificate::LEAST_DETERMINANT &&
                            r2 > Certificate::RADIUS * (reach * reach) && r2 < LARGEST;
    return {p[0] + centre.x, p[1] + centre.y, p[2] + centre.z,
            bCertified ? static_cast<float>(r2) : std::numeric_limits<float>::quiet_NaN()};
}

/// -1 if q certainly lies strictly inside, 1 if certainly strictly outside, 0 if undecided.
template <class Certificate = ProvedCertificate>
int sideOfSphere(const CachedSphere& sphere, const double (&q)[3]) {
    const double centre[3] = {sphere.x, sphere.y, sphere.z};
    const Vector3 away = difference(q, centre);
    const double distance = dot(away, away);
    // As a double first: a product of floats would add an error as large as the whole margin.
    const auto r2 = static_cast<double>(sphere.squaredRadius);
    return (distance > r2 * (1.0 + Certificate::ETA) ? 1 : 0) -
           (distance < r2 * (1.0 - Certificate::ETA) ? 1 : 0);
}

}  // namespace VARN3D
