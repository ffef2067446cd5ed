#pragma once

#include <array>
#include <vector>

#include "dt3Library/GeomTest3.h"

namespace VARN3D {

/// Finds the first four vertices of the list that are not coplanar, in positive orientation: the
/// lexicographically first quadruple of positions. False if all are coplanar. O(n).
bool findStartSimplex(const std::vector<Point3*>& vVertices, const GeomTest3& predicates,
                      std::array<Point3*, 4>& simplex);

}  // namespace VARN3D
