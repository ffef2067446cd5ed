#pragma once

#include "dt3Library/Export.h"

namespace VARN3D {

/// A direction in space: the difference of two points. A plain value: each one is used
/// by one thread at a time, or read by several.
class VARN3D_EXPORT Vector3 {
  public:
    /// The null vector.
    Vector3() = default;
    /// The vector (x, y, z).
    Vector3(double theX, double theY, double theZ) : x(theX), y(theY), z(theZ) {}

    /// @{
    /// A component, in the unit of the points' coordinates.
    double x = 0.0;
    double y = 0.0;
    double z = 0.0;
    /// @}
};

/// v scaled to length 1. A vector of length 0 gives (0, 0, 0) and a warning line on standard
/// output. The square of the length must be within a double's range: components below 1e-162 count
/// as 0, and one above 1e154 gives (0, 0, 0) without a line.
VARN3D_EXPORT Vector3 normalize(const Vector3& v);

}  // namespace VARN3D
