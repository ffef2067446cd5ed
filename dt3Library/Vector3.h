#pragma once

#include "dt3Library/Export.h"

namespace VARN3D {

/// A direction in space: the difference of two points. A plain value: each one is used
/// by one thread at a time, or read by several.
class VARN3D_EXPORT Vector3 {
  public:
    /// The null vector.
    Vector3() : Vector3(0.0, 0.0, 0.0) {}
    /// The vector (x, y, z).
    Vector3(double x, double y, double z) : xx(x), yy(y), zz(z) {}

    /// @{
    /// A component.
    double x() const { return xx; }
    double y() const { return yy; }
    double z() const { return zz; }
    /// @}

  private:
    friend Vector3 normalize(const Vector3& v);
    Vector3 unit() const;

    double xx;
    double yy;
    double zz;
};

/// v scaled to length 1. A vector of length 0 gives (0, 0, 0) and a warning line on standard
/// output.
inline Vector3 normalize(const Vector3& v) {
    return v.unit();
}

}  // namespace VARN3D
