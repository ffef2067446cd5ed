#pragma once

#include "dt3Library/GeomTest3.h"
#include "dt3Library/Point3.h"

namespace VARN3D {

/// What the points seen so far span: nothing, a point, a line, a plane or space.
///
/// As long as they span no space there is no tetrahedron, and telling so costs one test a point
/// instead of a search through all of them.
class AffineSpan {
  public:
    /// Takes a point in. Returns whether all points now span space. O(1).
    bool extend(const Point3* point, const GeomTest3& predicates) {
        if (dimension == 3) return true;
        const bool outside =
            dimension == -1 || (dimension == 0 && !(*basis[0] == *point)) ||
            (dimension == 1 && !predicates.areCollinear(basis[0], basis[1], point)) ||
            (dimension == 2 && predicates.getOrientation3(basis[0], basis[1], basis[2], point) !=
                                   ORIENTATION3_COPLANAR);
        if (!outside) return false;
        ++dimension;
        if (dimension < 3) basis[dimension] = point;
        return dimension == 3;
    }

    /// -1 to 3.
    int getDimension() const { return dimension; }

  private:
    int dimension = -1;
    const Point3* basis[3] = {};
};

}  // namespace VARN3D
