#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

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

    /// The keys of four points at once, from their coordinates, all x first.
    void keysOf(const double (&at)[3][4], std::uint32_t (&keys)[4]) const;

    /// Fills `keyed` with the keys of n points, each above the point's position in the lower
    /// `positionBits` bits. `coordinatesAt(i)` tells where x, y and z of point i are.
    template <class CoordinatesAt>
    void keyedPositions(std::size_t n, unsigned positionBits, CoordinatesAt coordinatesAt,
                        std::vector<std::uint64_t>& keyed) const {
        keyed.resize(n);
        for (std::size_t i = 0; i < n; i += 4) {
            const std::size_t last = n - 1;
            double at[3][4];
            for (std::size_t k = 0; k < 4; ++k) {
                const double* const point = coordinatesAt(i + k < n ? i + k : last);
                for (int axis = 0; axis < 3; ++axis) at[axis][k] = point[axis];
            }
            std::uint32_t keys[4];
            keysOf(at, keys);
            for (std::size_t k = 0; k < 4 && i + k < n; ++k)
                keyed[i + k] = std::uint64_t{keys[k]} << positionBits | (i + k);
        }
    }

  private:
    double low[3] = {};
    double extent[3] = {};
    unsigned numLevels = 0;
};

}  // namespace VARN3D
