#pragma once

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstring>

#include "dt3Library/DoubleDouble.h"
#include "dt3Library/FixedInteger.h"

namespace VARN3D {

/// The stages of a predicate, from the cheapest on. Each either gives the certain sign or passes
/// the call on; a later stage never contradicts an earlier one.
enum class PredicateStage {
    Filter,         ///< plain doubles against an error bound
    Lattice,        ///< plain doubles, where nothing is rounded
    DoubleDouble,   ///< twice the precision against an error bound
    SmallInteger,   ///< exact integers, one limb a difference
    MediumInteger,  ///< exact integers, three limbs
    FullInteger,    ///< exact integers that hold every finite double
};
constexpr int NUM_PREDICATE_STAGES = 6;

#ifdef VARN3D_PROFILE
/// How often each stage of a predicate had the last word, in this thread.
struct PredicateCounters {
    std::uint64_t orientation[NUM_PREDICATE_STAGES] = {};
    std::uint64_t sphere[NUM_PREDICATE_STAGES] = {};
    std::uint64_t collinear[NUM_PREDICATE_STAGES] = {};
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

/// The predicates as determinants, stage by stage: what `GeomTest3` is made of.
namespace predicateStages {

template <class Number>
struct Triple {
    Number x, y, z;
};

/// Shewchuk's 3D orientation of a, b, c against the last point; differences to that point.
struct Orientation {
    static constexpr int NUM_ROWS = 3;
    static constexpr int DEGREE = 3;

    template <class Number>
    static auto determinant(const Triple<Number> (&row)[NUM_ROWS]) {
        const auto& [a, b, c] = row;
        return (a.z * (b.x * c.y - c.x * b.y) + b.z * (c.x * a.y - a.x * c.y)) +
               c.z * (a.x * b.y - b.x * a.y);
    }
    /// The determinant with all terms positive.
    static double permanent(const Triple<double> (&size)[NUM_ROWS]) {
        const auto& [a, b, c] = size;
        return (b.x * c.y + c.x * b.y) * a.z + (c.x * a.y + a.x * c.y) * b.z +
               (a.x * b.y + b.x * a.y) * c.z;
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
    static double permanent(const Triple<double> (&size)[NUM_ROWS]) {
        const auto& [a, b, c, d] = size;
        const double ab = a.x * b.y + b.x * a.y;
        const double bc = b.x * c.y + c.x * b.y;
        const double cd = c.x * d.y + d.x * c.y;
        const double da = d.x * a.y + a.x * d.y;
        const double ac = a.x * c.y + c.x * a.y;
        const double bd = b.x * d.y + d.x * b.y;
        return (cd * b.z + bd * c.z + bc * d.z) * lift(a) +
               (da * c.z + ac * d.z + cd * a.z) * lift(b) +
               (ab * d.z + bd * a.z + da * b.z) * lift(c) +
               (bc * a.z + ac * b.z + ab * c.z) * lift(d);
    }
};

/// The 2D orientation of a, b against the last point, in x and y.
struct Orientation2D {
    static constexpr int NUM_ROWS = 2;
    static constexpr int DEGREE = 2;

    template <class Number>
    static auto determinant(const Triple<Number> (&row)[NUM_ROWS]) {
        return row[0].x * row[1].y - row[0].y * row[1].x;
    }
    static double permanent(const Triple<double> (&size)[NUM_ROWS]) {
        return size[0].x * size[1].y + size[0].y * size[1].x;
    }
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

/// The binary places that the numbers of a call occupy.
struct BitRange {
    int lowest = 4096;
    int highest = -4096;

    void include(double value) {
        if (value == 0.0) return;
        const Parts parts(value);
        const int top = parts.exponent + highestBit(parts.mantissa);
        const int bottom = parts.exponent + lowestBit(parts.mantissa);
        highest = top > highest ? top : highest;
        lowest = bottom < lowest ? bottom : lowest;
    }
    template <std::size_t N>
    void include(const Triple<double> (&triples)[N]) {
        for (const Triple<double>& t : triples) {
            include(t.x);
            include(t.y);
            include(t.z);
        }
    }
    /// How many bits the numbers need, counted in units of the lowest place.
    int width() const { return highest < lowest ? 0 : highest - lowest + 1; }

    /// |value| = mantissa * 2^exponent.
    struct Parts {
        std::uint64_t mantissa;
        int exponent;
        explicit Parts(double value) {
            std::uint64_t bits;
            std::memcpy(&bits, &value, sizeof bits);
            const int biased = static_cast<int>(bits >> 52 & 0x7FF);
            mantissa = bits & 0xFFFFFFFFFFFFFU;
            if (biased != 0) mantissa |= std::uint64_t{1} << 52;
            exponent = (biased != 0 ? biased : 1) - 1075;
        }
    };
    static int highestBit(std::uint64_t v) {
#if defined(__GNUC__)
        return 63 - __builtin_clzll(v);
#else
        int bit = 0;
        for (int step = 32; step > 0; step /= 2)
            if (v >> step) {
                v >>= step;
                bit += step;
            }
        return bit;
#endif
    }
    static int lowestBit(std::uint64_t v) {
        return highestBit(v & (~v + 1));
    }
};

/// 2^exponent, for normal numbers.
inline double powerOfTwo(int exponent) {
    const std::uint64_t bits = static_cast<std::uint64_t>(exponent + 1023) << 52;
    double value;
    std::memcpy(&value, &bits, sizeof value);
    return value;
}

/// Where the differences and all products of `degree` of them are safe from overflow and
/// underflow: every coordinate is 0 or a multiple of 2^-200 below 2^199.
constexpr int HIGHEST_SAFE_BIT = 198;
constexpr int LOWEST_SAFE_BIT = -200;

/// The points of one call: the rows' points, then the one that all differences are taken to.
template <class Predicate>
struct Points {
    Triple<double> p[Predicate::NUM_ROWS + 1];
};

/// Whether the coordinates are in that range, or so large or small that it takes a closer look.
template <class Predicate>
bool areSafeAtFirstSight(const Points<Predicate>& points) {
    constexpr double TOO_LARGE = 0x1p199;
    constexpr double LARGE_ENOUGH = 0x1p-148;  // its last bit is 2^-200
    bool bSafe = true;
    for (const Triple<double>& p : points.p) {
        for (const double coordinate : {p.x, p.y, p.z}) {
            const double size = std::fabs(coordinate);
            bSafe &= (size < TOO_LARGE) & ((size >= LARGE_ENOUGH) | (size == 0.0));
        }
    }
    return bSafe;
}

/// The rounded differences, and on demand what the rounding cut off.
template <class Predicate>
struct Differences {
    Triple<double> head[Predicate::NUM_ROWS];
    Triple<double> tail[Predicate::NUM_ROWS];
    double permanent;
    bool bExact = true;

    explicit Differences(const Points<Predicate>& points) {
        const Triple<double>& origin = points.p[Predicate::NUM_ROWS];
        Triple<double> size[Predicate::NUM_ROWS];
        for (int i = 0; i < Predicate::NUM_ROWS; ++i) {
            const Triple<double>& p = points.p[i];
            head[i] = {p.x - origin.x, p.y - origin.y, p.z - origin.z};
            size[i] = {std::fabs(head[i].x), std::fabs(head[i].y), std::fabs(head[i].z)};
        }
        permanent = Predicate::permanent(size);
    }

    void computeTails(const Points<Predicate>& points) {
        const Triple<double>& origin = points.p[Predicate::NUM_ROWS];
        for (int i = 0; i < Predicate::NUM_ROWS; ++i) {
            const Triple<double>& p = points.p[i];
            twoDiff(p.x, origin.x, head[i].x, tail[i].x);
            twoDiff(p.y, origin.y, head[i].y, tail[i].y);
            twoDiff(p.z, origin.z, head[i].z, tail[i].z);
            bExact = bExact & (tail[i].x == 0.0) & (tail[i].y == 0.0) & (tail[i].z == 0.0);
        }
    }
};

/// Plain doubles: `errorBound` times the permanent bounds the rounding. For safe points only.
template <class Predicate>
Verdict decideByFilter(const Differences<Predicate>& differences, double errorBound) {
    const double determinant = Predicate::determinant(differences.head);
    const double bound = errorBound * differences.permanent;
    if (determinant > bound || -determinant > bound) return {true, signOf(determinant)};
    return UNCERTAIN;
}

/// Plain doubles where all differences are exact multiples of one power of two u and the permanent
/// is below 2^52 u^degree: then no operation rounds, and a determinant of 0 is one.
template <class Predicate>
Verdict decideOnLattice(const Differences<Predicate>& differences) {
    if (!differences.bExact) return UNCERTAIN;
    const double permanent = differences.permanent;
    if (permanent == 0.0) return {true, 0};
    const int excess = BitRange::Parts(permanent).exponent + 52 + 1 - 52;
    const int unitExponent = excess > 0 ? (excess + Predicate::DEGREE - 1) / Predicate::DEGREE
                                        : excess / Predicate::DEGREE;
    // Adding and subtracting this number rounds to multiples of the unit.
    const double rounder = 1.5 * powerOfTwo(52 + unitExponent);
    bool bMultiples = true;
    for (const Triple<double>& d : differences.head) {
        bMultiples &= ((d.x + rounder) - rounder == d.x) & ((d.y + rounder) - rounder == d.y) &
                      ((d.z + rounder) - rounder == d.z);
    }
    if (!bMultiples) return UNCERTAIN;
    return {true, signOf(Predicate::determinant(differences.head))};
}

/// A product of up to five differences passes at most 11 roundings of 2^-103 each on its way into
/// the determinant (8u^2 for a sum, 7u^2 for a product, see DoubleDouble), so 2^-99 times the
/// permanent bounds the error; the permanent itself is off by a few units of 2^-53.
template <class Predicate>
Verdict decideByDoubleDouble(const Differences<Predicate>& differences) {
    Triple<DoubleDouble> rows[Predicate::NUM_ROWS];
    for (int i = 0; i < Predicate::NUM_ROWS; ++i) {
        const Triple<double>& head = differences.head[i];
        const Triple<double>& tail = differences.tail[i];
        rows[i] = {{head.x, tail.x}, {head.y, tail.y}, {head.z, tail.z}};
    }
    const double determinant = Predicate::determinant(rows).high;
    const double bound = 0x1p-98 * differences.permanent;
    if (determinant > bound || -determinant > bound) return {true, signOf(determinant)};
    return UNCERTAIN;
}

// ---- Exact integers ----------------------------------------------------------------------------

/// value / 2^unitExponent, an integer that fits.
template <std::size_t N>
FixedInteger<N> toInteger(double value, int unitExponent) {
    FixedInteger<N> result;
    if (value == 0.0) return result;
    const BitRange::Parts parts(value);
    const int shift = parts.exponent - unitExponent;
    if (shift < 0) {
        result.limbs[0] = parts.mantissa >> -shift;
    } else {
        const auto limb = static_cast<std::size_t>(shift) / 64;
        const int bits = shift % 64;
        result.limbs[limb] = parts.mantissa << bits;
        if (bits > 11 && limb + 1 < N) result.limbs[limb + 1] = parts.mantissa >> (64 - bits);
    }
    return value < 0.0 ? FixedInteger<N>() - result : result;
}

/// How many bits a difference may have in integers of N limbs: with two bits free, the sums of the
/// determinants stay below their types' limits (a sphere test's is less than 24 products).
template <std::size_t N>
constexpr int MAX_DIFFERENCE_BITS = 64 * static_cast<int>(N) - 2;

/// From the points themselves: right for all finite doubles if N is large enough.
template <class Predicate, std::size_t N>
Verdict decideByIntegers(const Points<Predicate>& points) {
    BitRange range;
    range.include(points.p);
    if (range.width() + 1 > MAX_DIFFERENCE_BITS<N>) return UNCERTAIN;
    const auto convert = [&range](const Triple<double>& p) {
        return Triple<FixedInteger<N>>{toInteger<N>(p.x, range.lowest),
                                       toInteger<N>(p.y, range.lowest),
                                       toInteger<N>(p.z, range.lowest)};
    };
    const auto origin = convert(points.p[Predicate::NUM_ROWS]);
    Triple<FixedInteger<N>> rows[Predicate::NUM_ROWS];
    for (int i = 0; i < Predicate::NUM_ROWS; ++i) {
        const auto p = convert(points.p[i]);
        rows[i] = {p.x - origin.x, p.y - origin.y, p.z - origin.z};
    }
    return {true, Predicate::determinant(rows).sign()};
}

/// From exact differences, which often need fewer bits than the points.
template <class Predicate>
Verdict decideBySmallIntegers(const Differences<Predicate>& differences) {
    if (!differences.bExact) return UNCERTAIN;
    BitRange range;
    range.include(differences.head);
    if (range.width() > MAX_DIFFERENCE_BITS<1>) return UNCERTAIN;
    Triple<FixedInteger<1>> rows[Predicate::NUM_ROWS];
    for (int i = 0; i < Predicate::NUM_ROWS; ++i) {
        const Triple<double>& head = differences.head[i];
        rows[i] = {toInteger<1>(head.x, range.lowest), toInteger<1>(head.y, range.lowest),
                   toInteger<1>(head.z, range.lowest)};
    }
    return {true, Predicate::determinant(rows).sign()};
}

/// Limbs for the differences of any two finite doubles: 2099 bits.
constexpr std::size_t FULL_LIMBS = 33;

}  // namespace predicateStages

}  // namespace VARN3D
