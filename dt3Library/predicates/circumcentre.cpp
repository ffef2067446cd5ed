#include "dt3Library/predicates/circumcentre.h"

#include <cmath>
#include <cstddef>
#include <cstdint>

#include "dt3Library/predicates/predicateStages.h"

namespace VARN3D {

using namespace predicateStages;

namespace {

/// value * 2^exponent.
struct Scaled {
    double value;
    int exponent;
};

/// A magnitude of so many limbs, the topmost of them not 0, to within 2^-51 of itself: the three
/// that count are rounded in five steps.
template <class LimbAt>
Scaled roundLimbs(int numLimbs, bool bNegative, LimbAt limbAt) {
    double value = 0.0;
    for (int i = numLimbs - 1; i >= numLimbs - 3; --i)
        value = value * 0x1p64 + (i >= 0 ? static_cast<double>(limbAt(i)) : 0.0);
    return {bNegative ? -value : value, 64 * (numLimbs - 3)};
}

template <std::size_t N>
Scaled roundInteger(const FixedInteger<N>& integer) {
    const FixedInteger<N> size = integer.isNegative() ? FixedInteger<N>() - integer : integer;
    int numLimbs = static_cast<int>(N);
    while (numLimbs > 0 && size.limbs[static_cast<std::size_t>(numLimbs - 1)] == 0) --numLimbs;
    return roundLimbs(numLimbs, integer.isNegative(),
                      [&size](int i) { return size.limbs[static_cast<std::size_t>(i)]; });
}

template <int N>
Scaled roundInteger(const WideInteger<N>& integer) {
    return roundLimbs(integer.numLimbs(), integer.sign() < 0,
                      [&integer](int i) { return integer.limb(i); });
}

template <class Number>
auto crossOf(const Triple<Number>& u, const Triple<Number>& v) {
    using Product = decltype(u.x * v.x);
    return Triple<Product>{u.y * v.z - u.z * v.y, u.z * v.x - u.x * v.z, u.x * v.y - u.y * v.x};
}

/// By Cramer's rule, from rows in units of 2^unitExponent.
template <class Number>
Vector3 centreOf(const Triple<Number> (&row)[3], int unitExponent) {
    const auto& [b, c, d] = row;
    const auto cd = crossOf(c, d);
    const auto db = crossOf(d, b);
    const auto bc = crossOf(b, c);
    const auto liftB = lift(b);
    const auto liftC = lift(c);
    const auto liftD = lift(d);
    const Scaled volume = roundInteger((b.x * cd.x + b.y * cd.y) + b.z * cd.z);
    const auto component = [&](const auto& ofB, const auto& ofC, const auto& ofD) {
        const Scaled sum = roundInteger((liftB * ofB + liftC * ofC) + liftD * ofD);
        return std::ldexp(sum.value / volume.value,
                          sum.exponent - volume.exponent - 1 + unitExponent);
    };
    return {component(cd.x, db.x, bc.x), component(cd.y, db.y, bc.y), component(cd.z, db.z, bc.z)};
}

template <std::size_t N>
bool tryIntegers(const Points<Orientation>& points, Vector3& centre) {
    Converter<N> convert(points);
    const IntegerRows<Orientation, Converter<N>> rows(points, convert);
    if (!convert.isExact()) return false;
    centre = centreOf(rows.row, convert.unitExponent());
    return true;
}

}  // namespace

Vector3 circumcentreFrom(const Point3& origin, const Point3& b, const Point3& c, const Point3& d) {
    const Points<Orientation> points{{&b, &c, &d, &origin}};
    Vector3 centre;
    if (tryIntegers<1>(points, centre) || tryIntegers<2>(points, centre)) return centre;
    WideConverter convert;
    const IntegerRows<Orientation, WideConverter> rows(points, convert);
    return centreOf(rows.row, WideConverter::UNIT_EXPONENT);
}

}  // namespace VARN3D
