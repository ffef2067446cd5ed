#pragma once

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstring>

#include "dt3Library/Point3.h"
#include "dt3Library/predicates/FixedInteger.h"
#include "dt3Library/predicates/FloatingPoint.h"
#include "dt3Library/predicates/WideInteger.h"

// The predicates are signs of determinants of coordinate differences. They are decided in stages,
// from the cheapest on:
//
//   Filter         plain doubles against a bound of their error; right for whatever it decides
//   Lattice        the same doubles, where it can be shown that nothing was rounded
//   SmallInteger   exact integers of one 64-bit limb a coordinate
//   MediumInteger  exact integers of two
//   WideInteger    exact integers for all finite doubles
//
// General input stops at the filter, integer grids at the lattice; points that are nearly or
// exactly cospherical or coplanar end in the small integers, since coordinates of similar size have
// similar exponents. In 64-bit arithmetic these integers are several times as fast as the
// floating-point expansions that usually follow the filter, and take no bounds to prove.

namespace VARN3D {

enum class PredicateStage { FILTER, LATTICE, SMALL_INTEGER, MEDIUM_INTEGER, WIDE_INTEGER };
constexpr int NUM_PREDICATE_STAGES = 5;

#ifdef VARN3D_PROFILE
/// How often each stage of a predicate had the last word, in this thread.
struct PredicateCounters {
    std::uint64_t orientation[NUM_PREDICATE_STAGES] = {};
    std::uint64_t sphere[NUM_PREDICATE_STAGES] = {};
    std::uint64_t collinear[NUM_PREDICATE_STAGES] = {};
    std::uint64_t distance[NUM_PREDICATE_STAGES] = {};
};
inline PredicateCounters& predicateCounters() {
    static thread_local PredicateCounters counters;
    return counters;
}
#define VARN3D_COUNT_STAGE(predicate, stage) \
    (++::VARN3D::predicateCounters().predicate[static_cast<int>(stage)])
#else
#define VARN3D_COUNT_STAGE(predicate, stage) static_cast<void>(0)
#endif

namespace predicateStages {

template <class Number>
struct Triple {
    Number x, y, z;
};

/// A determinant in plain doubles, and what its error depends on.
struct Estimate {
    double determinant;
    /// The determinant with all terms positive: a small multiple of 2^-53 of it bounds the
    /// rounding.
    double permanent;
    /// Bounds what is lost by underflow.
    double underflow;
};

// A product of doubles that underflows is off by at most 2^-1075, and that error is multiplied by
// the factors still to come; sums of doubles don't underflow. The bounds below have room for
// thousands of such errors. An overflow leaves an infinity or a NaN in the permanent, and then
// nothing is greater than the bound.
constexpr double UNDERFLOW = 0x1p-1000;

/// @{
/// Shewchuk's constants for the first stage.
constexpr double ORIENTATION_FILTER_BOUND = (7.0 + 56.0 * 0x1p-53) * 0x1p-53;
constexpr double SPHERE_FILTER_BOUND = (16.0 + 224.0 * 0x1p-53) * 0x1p-53;
/// @}
constexpr double DISTANCE_FILTER_BOUND = 8.0 * 0x1p-53;

/// Shewchuk's 3D orientation of a, b, c against the last point; rows are differences to that point.
struct Orientation {
    static constexpr int NUM_ROWS = 3;
    static constexpr int DEGREE = 3;

    static Estimate estimate(const Triple<double> (&row)[NUM_ROWS]) {
        const auto& [a, b, c] = row;
        const double bc = b.x * c.y;
        const double cb = c.x * b.y;
        const double ca = c.x * a.y;
        const double ac = a.x * c.y;
        const double ab = a.x * b.y;
        const double ba = b.x * a.y;
        const double sizeA = std::fabs(a.z);
        const double sizeB = std::fabs(b.z);
        const double sizeC = std::fabs(c.z);
        // A product in x and y is still multiplied by one z.
        return {a.z * (bc - cb) + b.z * (ca - ac) + c.z * (ab - ba),
                (std::fabs(bc) + std::fabs(cb)) * sizeA + (std::fabs(ca) + std::fabs(ac)) * sizeB +
                    (std::fabs(ab) + std::fabs(ba)) * sizeC,
                UNDERFLOW * (1.0 + sizeA + sizeB + sizeC)};
    }

    template <class Number>
    static auto determinant(const Triple<Number> (&row)[NUM_ROWS]) {
        const auto& [a, b, c] = row;
        return (a.z * (b.x * c.y - c.x * b.y) + b.z * (c.x * a.y - a.x * c.y)) +
               c.z * (a.x * b.y - b.x * a.y);
    }
};

/// The squared length of a difference.
template <class Number>
auto lift(const Triple<Number>& row) {
    return (row.x * row.x + row.y * row.y) + row.z * row.z;
}

/// Shewchuk's sphere test of a, b, c, d against the last point.
struct Sphere {
    static constexpr int NUM_ROWS = 4;
    static constexpr int DEGREE = 5;

    static Estimate estimate(const Triple<double> (&row)[NUM_ROWS]) {
        const auto& [a, b, c, d] = row;
        const Minor ab(a, b), bc(b, c), cd(c, d), da(d, a), ac(a, c), bd(b, d);
        const double abc = a.z * bc.value - b.z * ac.value + c.z * ab.value;
        const double bcd = b.z * cd.value - c.z * bd.value + d.z * bc.value;
        const double cda = c.z * da.value + d.z * ac.value + a.z * cd.value;
        const double dab = d.z * ab.value + a.z * bd.value + b.z * da.value;
        const double liftA = lift(a);
        const double liftB = lift(b);
        const double liftC = lift(c);
        const double liftD = lift(d);
        const double sizeA = std::fabs(a.z);
        const double sizeB = std::fabs(b.z);
        const double sizeC = std::fabs(c.z);
        const double sizeD = std::fabs(d.z);
        // At most three more differences are multiplied to a product, each below the root of this.
        const double size = 1.0 + liftA + liftB + liftC + liftD;
        return {(liftD * abc - liftC * dab) + (liftB * cda - liftA * bcd),
                (cd.size * sizeB + bd.size * sizeC + bc.size * sizeD) * liftA +
                    (da.size * sizeC + ac.size * sizeD + cd.size * sizeA) * liftB +
                    (ab.size * sizeD + bd.size * sizeA + da.size * sizeB) * liftC +
                    (bc.size * sizeA + ac.size * sizeB + ab.size * sizeC) * liftD,
                UNDERFLOW * (size * size)};
    }

    template <class Number>
    static auto determinant(const Triple<Number> (&row)[NUM_ROWS]) {
        const auto& [a, b, c, d] = row;
        const auto ab = a.x * b.y - b.x * a.y;
        const auto bc = b.x * c.y - c.x * b.y;
        const auto cd = c.x * d.y - d.x * c.y;
        const auto da = d.x * a.y - a.x * d.y;
        const auto ac = a.x * c.y - c.x * a.y;
        const auto bd = b.x * d.y - d.x * b.y;
        const auto abc = (a.z * bc - b.z * ac) + c.z * ab;
        const auto bcd = (b.z * cd - c.z * bd) + d.z * bc;
        const auto cda = (c.z * da + d.z * ac) + a.z * cd;
        const auto dab = (d.z * ab + a.z * bd) + b.z * da;
        return (lift(d) * abc - lift(c) * dab) + (lift(b) * cda - lift(a) * bcd);
    }

  private:
    /// A minor in x and y, and the same with both terms positive.
    struct Minor {
        double value;
        double size;
        Minor(const Triple<double>& p, const Triple<double>& q) {
            const double pq = p.x * q.y;
            const double qp = q.x * p.y;
            value = pq - qp;
            size = std::fabs(pq) + std::fabs(qp);
        }
    };
};

/// The 2D orientation of a, b against the last point, in x and y; z must be 0.
struct Orientation2D {
    static constexpr int NUM_ROWS = 2;
    static constexpr int DEGREE = 2;

    static Estimate estimate(const Triple<double> (&row)[NUM_ROWS]) {
        const double left = row[0].x * row[1].y;
        const double right = row[0].y * row[1].x;
        return {left - right, std::fabs(left) + std::fabs(right), UNDERFLOW};
    }

    template <class Number>
    static auto determinant(const Triple<Number> (&row)[NUM_ROWS]) {
        return row[0].x * row[1].y - row[0].y * row[1].x;
    }
};

/// Whether a or b is nearer to the last point: negative where a is.
///
/// A difference, its square, and two sums each round once, so each of the two lifts is off by at
/// most 5 * 2^-53 of itself and a little; the permanent is their sum. Three more units take care of
/// the determinant's own rounding and the bound's.
struct DistanceOrder {
    static constexpr int NUM_ROWS = 2;
    static constexpr int DEGREE = 2;

    static Estimate estimate(const Triple<double> (&row)[NUM_ROWS]) {
        const double liftA = lift(row[0]);
        const double liftB = lift(row[1]);
        return {liftA - liftB, liftA + liftB, UNDERFLOW};
    }

    template <class Number>
    static auto determinant(const Triple<Number> (&row)[NUM_ROWS]) {
        return lift(row[0]) - lift(row[1]);
    }
};

/// The points of one call: the rows' points, then the one that all differences are taken to.
template <class Predicate>
struct Points {
    const Point3* p[Predicate::NUM_ROWS + 1];
};

/// A certain sign, or none.
struct Verdict {
    bool bCertain;
    int sign;
};
constexpr Verdict UNCERTAIN{false, 0};

inline int signOf(double value) {
    return (value > 0.0 ? 1 : 0) - (value < 0.0 ? 1 : 0);
}

// ---- Plain doubles -----------------------------------------------------------------------------

template <class Predicate>
Estimate estimateOf(const Points<Predicate>& points) {
    const Point3& origin = *points.p[Predicate::NUM_ROWS];
    Triple<double> rows[Predicate::NUM_ROWS];
    for (int i = 0; i < Predicate::NUM_ROWS; ++i) {
        const Point3& p = *points.p[i];
        rows[i] = {p.x() - origin.x(), p.y() - origin.y(), p.z() - origin.z()};
    }
    return Predicate::estimate(rows);
}

/// Stage A of Shewchuk's predicates (Adaptive Precision Floating-Point Arithmetic and Fast Robust
/// Geometric Predicates, 1997) with `errorBound` his constant, and a bound for underflow.
inline Verdict decideByFilter(const Estimate& estimate, double errorBound) {
    const double bound = errorBound * estimate.permanent + estimate.underflow;
    if (std::fabs(estimate.determinant) > bound) return {true, signOf(estimate.determinant)};
    return UNCERTAIN;
}

/// The bits of a double: |value| = mantissa * 2^exponent, in units of the smallest double.
struct BinaryParts {
    std::uint64_t mantissa;
    int exponent;
    bool bNegative;

    explicit BinaryParts(double value) {
        std::uint64_t bits;
        std::memcpy(&bits, &value, sizeof bits);
        const int biased = static_cast<int>(bits >> 52 & 0x7FF);
        const int normal = biased != 0 ? 1 : 0;
        mantissa = (bits & 0xFFFFFFFFFFFFFU) | static_cast<std::uint64_t>(normal) << 52;
        exponent = biased - normal;
        bNegative = bits >> 63 != 0;
    }
};

/// 2^exponent, for normal numbers.
inline double powerOfTwo(int exponent) {
    const std::uint64_t bits = static_cast<std::uint64_t>(exponent + 1023) << 52;
    double value;
    std::memcpy(&value, &bits, sizeof value);
    return value;
}

/// If all coordinates are multiples of a power of two u and the permanent is below 2^52 u^degree,
/// the plain determinant is exact and a 0 certain: every value on the way to a term that is not 0
/// is an integer below 2^53 in its power of u.
template <class Predicate>
Verdict decideOnLattice(const Points<Predicate>& points, const Estimate& estimate) {
    constexpr double NO_OVERFLOW = 0x1p900;
    if (!(estimate.permanent < NO_OVERFLOW)) return UNCERTAIN;
    constexpr int DEGREE = Predicate::DEGREE;
    // permanent < 2^(excess + 52), and excess is at least -1073: with u^degree no less than
    // 2^excess nothing underflows either.
    const int excess = BinaryParts(estimate.permanent).exponent - 1074 + 1;
    const int unit = excess > 0 ? (excess + DEGREE - 1) / DEGREE : excess / DEGREE;
    // Adding and subtracting this number rounds to a multiple of u, if that changes anything. The
    // sign is left out: a sum below the rounder would have finer steps.
    const double rounder = powerOfTwo(52 + unit);
    const auto isOff = [rounder](double value) {
        const double size = std::fabs(value);
        return (size + rounder) - rounder != size ? 1U : 0U;
    };
    unsigned anyOff = 0;
    for (const Point3* p : points.p) anyOff |= isOff(p->x()) | isOff(p->y()) | isOff(p->z());
    if (anyOff != 0) return UNCERTAIN;
    return {true, signOf(estimate.determinant)};
}

// ---- Exact integers ----------------------------------------------------------------------------

/// Takes the coordinates of some points to integers of N limbs, in the unit that leaves the largest
/// one 64N - 3 bits. Differences are then below 2^(64N - 2), and a determinant of degree d, with at
/// most 72 products, is below 72 * 2^(64N - 2)d < 2^(64Nd - 1); its minors fit in the same way.
template <std::size_t N>
class Converter {
  public:
    using Integer = FixedInteger<N>;

    template <class Predicate>
    explicit Converter(const Points<Predicate>& points) {
        for (const Point3* p : points.p)
            for (const double c : {p->x(), p->y(), p->z()})
                highest = std::max(highest, BinaryParts(c).exponent);
    }

    Integer operator()(double coordinate) {
        const BinaryParts parts(coordinate);
        // From bit 63 of the topmost limb down to where it belongs, 3 bits or more.
        const std::uint64_t aligned = parts.mantissa << 11;
        const int shift = 3 + highest - parts.exponent;
        Integer result;
        std::uint64_t rest = aligned;
        for (std::size_t i = N; i-- > 0;) {
            const int here = shift - 64 * static_cast<int>(N - 1 - i);
            if (here > 0 && here < 64) {
                result.limbs[i] = aligned >> here;
                rest = aligned << (64 - here);
            } else if (here <= 0 && here > -64) {
                result.limbs[i] = aligned << -here;
                rest = 0;
            }
        }
        lost |= rest;
        return parts.bNegative ? Integer() - result : result;
    }

    /// Whether all coordinates so far were multiples of the unit.
    bool isExact() const { return lost == 0; }
    /// The unit is 2 to this power.
    int unitExponent() const { return highest - 1082 - 64 * static_cast<int>(N - 1); }

  private:
    int highest = 0;
    std::uint64_t lost = 0;
};

/// The same for one limb by the processor's own conversions, which take a third of the time.
template <>
class Converter<1> {
  public:
    using Integer = FixedInteger<1>;

    template <class Predicate>
    explicit Converter(const Points<Predicate>& points) {
        double largest = 0.0;
        for (const Point3* p : points.p)
            for (const double c : {p->x(), p->y(), p->z()}) {
                const double size = std::fabs(c);
                largest = largest < size ? size : largest;
            }
        // largest < 2^(highest - 1021); where the scale would overflow, two limbs must do.
        highest = BinaryParts(largest).exponent;
        constexpr int LOWEST = 60;
        bInexact = highest < LOWEST;
        if (bInexact) return;
        scale = powerOfTwo(-unitExponent());
        unit = powerOfTwo(unitExponent());
    }

    Integer operator()(double coordinate) {
        const auto integer = static_cast<std::int64_t>(coordinate * scale);
        bInexact = bInexact || static_cast<double>(integer) * unit != coordinate;
        return {{static_cast<std::uint64_t>(integer)}};
    }

    bool isExact() const { return !bInexact; }
    int unitExponent() const { return highest - 1082; }

  private:
    int highest = 0;
    double scale = 0.0;
    double unit = 0.0;
    bool bInexact;
};

/// In units of the smallest double a difference of any two has 2099 bits.
struct WideConverter {
    using Integer = WideInteger<33>;
    static constexpr int UNIT_EXPONENT = -1074;

    Integer operator()(double coordinate) const {
        const BinaryParts parts(coordinate);
        return {parts.mantissa, parts.exponent, parts.bNegative};
    }
};

template <class Predicate, class Convert>
struct IntegerRows {
    Triple<typename Convert::Integer> row[Predicate::NUM_ROWS];

    IntegerRows(const Points<Predicate>& points, Convert& convert) {
        const auto convertAll = [&convert](const Point3& p) {
            return Triple<typename Convert::Integer>{convert(p.x()), convert(p.y()),
                                                     convert(p.z())};
        };
        const auto origin = convertAll(*points.p[Predicate::NUM_ROWS]);
        for (int i = 0; i < Predicate::NUM_ROWS; ++i) {
            const auto p = convertAll(*points.p[i]);
            row[i] = {p.x - origin.x, p.y - origin.y, p.z - origin.z};
        }
    }
};

/// Integers of N limbs a difference; uncertain if the coordinates' sizes differ too much for them.
template <class Predicate, std::size_t N>
Verdict decideByIntegers(const Points<Predicate>& points) {
    Converter<N> convert(points);
    const IntegerRows<Predicate, Converter<N>> rows(points, convert);
    if (!convert.isExact()) return UNCERTAIN;
    return {true, Predicate::determinant(rows.row).sign()};
}

/// Integers for any finite doubles.
template <class Predicate>
int signByWideIntegers(const Points<Predicate>& points) {
    WideConverter convert;
    const IntegerRows<Predicate, WideConverter> rows(points, convert);
    return Predicate::determinant(rows.row).sign();
}

}  // namespace predicateStages

}  // namespace VARN3D
