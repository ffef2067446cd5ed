#pragma once

#include "dt3Library/Point3.h"
#include "dt3Library/Tet3.h"

namespace VARN3D {

/// On which side of the plane of three points a fourth lies.
enum Orientation3 {
    ORIENTATION3_POSITIVE = 0,
    ORIENTATION3_NEGATIVE = 1,
    ORIENTATION3_COPLANAR = 2,
};

/// Where a point lies against the circumsphere of a tetrahedron.
enum SphereInclusion {
    SIC_INSIDE = 0,
    SIC_OUTSIDE = 1,  ///< also exactly on the sphere
    SIC_VERTEX = 2,
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

/// The exact predicates.
class GeomTest3 {
  public:
    GeomTest3();

    const PredicateConstants& getConstants() const { return constants; }

    Orientation3 getOrientation3(const Point3* pa, const Point3* pb, const Point3* pc,
                                 const Point3* pd) const;
    Orientation3 getOrientation3(const Tet3* pC, int ith, const Point3* pD) const;
    SphereInclusion sphereInclusionTest(const Tet3* pTet, const Point3* pE) const;

    /// Whether three points lie exactly on one line (coinciding points do).
    bool areCollinear(const Point3* pa, const Point3* pb, const Point3* pc) const;

  private:
    PredicateConstants constants;
};

}  // namespace VARN3D
