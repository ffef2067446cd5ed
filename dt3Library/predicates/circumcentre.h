#pragma once

#include "dt3Library/Point3.h"

namespace VARN3D {

/// The centre of the sphere through four points that are not coplanar, as seen from the first. Made
/// by exact integers and rounded in the end, so that each component is off by at most 2^-49 of
/// itself, for the flattest tetrahedra, too; beyond the range of doubles it is infinite or 0.
Vector3 circumcentreFrom(const Point3& origin, const Point3& b, const Point3& c, const Point3& d);

}  // namespace VARN3D
