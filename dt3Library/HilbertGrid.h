#pragma once

#include <cstdint>

#include "dt3Library/Point3.h"

namespace VARN3D {

/// A three-dimensional Hilbert curve through the cells of a box, by the table method.
class HilbertGrid {
  public:
    /// No cells yet.
    HilbertGrid() = default;
    /// 2^levels cells an axis; at most 10 levels. A point on or beyond the last face belongs to
    /// the last cell.
    HilbertGrid(const double (&minimum)[3], const double (&extents)[3], unsigned levels);

    /// The place of the point's cell on the curve, below 2^(3 levels).
    std::uint32_t keyOf(const Point3& point) const;

    /// The keys of four points at once.
    void keysOf(const Point3* const (&points)[4], std::uint32_t (&keys)[4]) const;

  private:
    double low[3] = {};
    double extent[3] = {};
    unsigned numLevels = 0;
};

}  // namespace VARN3D
