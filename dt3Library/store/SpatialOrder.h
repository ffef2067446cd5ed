#pragma once

#include <cstdint>

#include "dt3Library/Bbox3.h"
#include "dt3Library/Point3.h"

namespace VARN3D {

/// An order of points in space in which neighbours tend to be close together, at every scale.
///
/// It is a Morton (Z-order) curve: coarse cells of a cube first, as a code that is cheap to
/// compare; within a cell the bits of the coordinates themselves, so that a million points that a
/// single far outlier squeezes into one cell are still in a good order. Points are equivalent
/// exactly when their coordinates are equal. The comparison of bits is Chan's (Closest-point
/// problems simplified on the RAM, 2002), carried over to floating-point numbers.
class SpatialOrder {
  public:
    /// Lays the cube of cells over the box. Any box will do: points outside count to the nearest
    /// cell, and an infinite box makes one cell of everything.
    void setFrame(const Bbox3& box);

    /// The cell of a point: 21 bits an axis, interleaved.
    std::uint64_t cellCode(const Point3& p) const;

    /// The order within a cell.
    static bool precedesInCell(const Point3& a, const Point3& b);

    /// An entry of a table in this order.
    struct Entry {
        std::uint64_t code;
        Point3* vertex;
    };
    static bool precedes(const Entry& a, const Entry& b) {
        return a.code != b.code ? a.code < b.code : precedesInCell(*a.vertex, *b.vertex);
    }

  private:
    double minimum[3] = {0.0, 0.0, 0.0};
    double cellsPerUnit = 0.0;
};

}  // namespace VARN3D
