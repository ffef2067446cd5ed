#pragma once

#include "dt3Library/Export.h"
#include "dt3Library/Point3.h"

namespace VARN3D {

/// A ball by its centre and squared radius. A plain value: each
/// one is used by one thread at a time, or read by several.
class VARN3D_EXPORT Ball3 {
  public:
    /// The ball around (x, y, z).
    Ball3(double x, double y, double z, double sqRadius)
        : centre(x, y, z), squaredRadius(sqRadius) {}

    /// A copy of the centre.
    Point3 getCenter() const { return centre; }
    /// The squared radius, as it was given.
    double getSqRadius() const { return squaredRadius; }
    /// The square root of that.
    double getRadius() const;

    /// Prints centre and radius on standard output.
    void debug() const;

  private:
    Point3 centre;
    double squaredRadius;
};

}  // namespace VARN3D
