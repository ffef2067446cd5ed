#pragma once

#include "dt3Library/Point3.h"
#include "dt3Library/Tet3.h"

namespace VARN3D {

/// On which side of the plane of three points a, b, c a fourth point d lies: positive where a, b, c
/// run counter-clockwise seen from d, as (0,0,0), (1,0,0), (0,1,0) do from (0,0,1).
enum Orientation3 {
    ORIENTATION3_POSITIVE = 0,
    ORIENTATION3_NEGATIVE = 1,
    ORIENTATION3_COPLANAR = 2,
};

/// Where a point lies against the circumsphere of a tetrahedron.
enum SphereInclusion {
    SIC_INSIDE = 0,   ///< also at a corner
    SIC_OUTSIDE = 1,  ///< also exactly on the sphere
    SIC_VERTEX = 2,   ///< not in use
};

/// The name of an orientation, "ORI3_ORIENTATION3_POSITIVE" and so on.
const char* getOrientationName(Orientation3 orientation);

/// The fifteen constants of Shewchuk's adaptive predicates.
struct PredicateConstants {
    double splitter;
    double epsilon;
    double resulterrbound;
    double ccwerrboundA;
    double ccwerrboundB;
    double ccwerrboundC;
    double o3derrboundA;
    double o3derrboundB;
    double o3derrboundC;
    double iccerrboundA;
    double iccerrboundB;
    double iccerrboundC;
    double isperrboundA;
    double isperrboundB;
    double isperrboundC;
};

/// The determinants of a point and each facet of a tetrahedron in plain doubles: positive where the
/// point lies on the facet's inner side. Those not beyond the bound, in either direction, are
/// uncertain.
struct FacetSides {
    double orientation[4];
    double bound;
    /// Bit i is set unless facet i certainly has the point on its inner side.
    unsigned notInner;
};

/// The exact predicates. No answer depends on rounding, and all finite coordinates will do: where
/// products of differences leave a double's range the answer comes from exact integers. Pointers
/// must not be null, nor coordinates infinite or NaN; neither is checked unless it is said below.
/// Constant time. The caller sees to rounding to nearest and to denormal numbers
/// (`FloatingPointScope`). Used by any number of threads.
class GeomTest3 {
  public:
    GeomTest3();

    const PredicateConstants& getConstants() const { return constants; }

    /// The side of the plane of pa, pb, pc on which pd lies; coplanar also if the three lie on a
    /// line.
    Orientation3 getOrientation3(const Point3* pa, const Point3* pb, const Point3* pc,
                                 const Point3* pd) const;
    /// The side of facet ith of a positively oriented tetrahedron: positive where its corner ith
    /// lies, negative beyond the facet. An ith outside 0..3 throws VarnException, null for the
    /// tetrahedron ends the process.
    Orientation3 getOrientation3(const Tet3* pC, int ith, const Point3* pD) const;
    /// A first look at all facets at once.
    FacetSides seeFacets(const Tet3* pTet, const Point3* p) const;
    /// The tetrahedron must be positively oriented, or inside and outside are exchanged.
    SphereInclusion sphereInclusionTest(const Tet3* pTet, const Point3* pE) const;
    /// Whether the last point lies strictly inside the sphere through the other four, which must be
    /// positively oriented. In exact integers, without a look at plain doubles: for points of which
    /// these are known to tell nothing.
    bool isStrictlyInSphere(const Point3* pa, const Point3* pb, const Point3* pc, const Point3* pd,
                            const Point3* pe) const;

    /// Whether a point lies exactly on the circumsphere of a tetrahedron.
    bool isOnSphere(const Tet3* pTet, const Point3* pE) const;

    /// Compares the distances of two points from a third: -1 where pa is nearer, 1 where pb is, 0
    /// for equal ones.
    int compareDistances(const Point3* pa, const Point3* pb, const Point3* from) const;

    /// Whether three points lie exactly on one line (coinciding points do).
    bool areCollinear(const Point3* pa, const Point3* pb, const Point3* pc) const;

    /// Bounds the rounding of a determinant of differences that are none larger than these, and
    /// below MAX_DIFFERENCE: the first of Shewchuk's bounds, with the permanent's 6 terms replaced
    /// by the product of the largest components.
    double getOrientationBound(double maxX, double maxY, double maxZ) const {
        return 8.0 * constants.o3derrboundA * (maxX * maxY * maxZ) + UNDERFLOW_GUARD;
    }

    /// With differences below this no determinant of either predicate overflows, and each of its
    /// fewer than 200 products that underflow adds at most 2^-1074 times a remaining factor below
    /// 2^602: far less than the guard.
    static constexpr double MAX_DIFFERENCE = 0x1p200;
    static constexpr double UNDERFLOW_GUARD = 0x1p-400;

  private:
    PredicateConstants constants;
};

}  // namespace VARN3D
