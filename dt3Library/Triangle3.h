#pragma once

#include <iosfwd>

#include "dt3Library/Export.h"
#include "dt3Library/Point3.h"

namespace VARN3D {

/// A triangle of three corners with up to three neighbours, neighbour i opposite corner i (0 to 2).
/// Owns nothing: corners and neighbours must outlive it. Used by one thread at a time, or read by
/// several.
class VARN3D_EXPORT Triangle3 {
  public:
    /// A triangle without neighbours.
    Triangle3(Point3* p0, Point3* p1, Point3* p2);

    /// Corner i; i outside 0..2 is reported and throws VarnException, here and below.
    Point3* getCorner(int i) const;
    /// The neighbour opposite corner i; null if there is none.
    Triangle3* getNeig(int i) const;
    /// Sets that neighbour; null is allowed. The other side is the caller's business.
    void setNeig(int i, Triangle3* p);

    /// The index of a corner; -999 and a line on standard error if p is none.
    int getIntraTriangleIndex(Point3* p) const;
    /// The index of the corner opposite the edge of p1 and p2, given in either order; -999 and two
    /// lines on standard error if that is no edge.
    int getIntraTriangleIndex(Point3* p1, Point3* p2) const;

    /// The mean of the corners, none of which may be null: VarnException.
    Point3 getBarycenter() const;

  private:
    Point3* aCorners[3];
    Triangle3* aNeigs[3] = {};
};

/// Prints a line for each corner with its address, its coordinates (nothing for null) and the
/// neighbour opposite.
VARN3D_EXPORT std::ostream& operator<<(std::ostream& out, const Triangle3& triangle);

}  // namespace VARN3D
