#pragma once

#include <cstddef>
#include <vector>

#include "dt3Library/Point3.h"
#include "dt3Library/base/MeshAccess.h"
#include "dt3Library/base/prefetch.h"

namespace VARN3D {

/// The points of a batch where the host has them. Owns nothing.
class InputPoints {
  public:
    // Implicit: a vector of points is what most callers have.
    InputPoints(const std::vector<Point3>& points)
        : first(points.empty() ? nullptr : MeshAccess::coordinates(points.front())),
          stride(sizeof(Point3) / sizeof(double)),
          numPoints(points.size()) {}
    /// x, y, z of each of n points.
    InputPoints(const double* xyz, std::size_t n) : first(xyz), stride(3), numPoints(n) {}

    std::size_t size() const { return numPoints; }
    bool empty() const { return numPoints == 0; }
    Point3 operator[](std::size_t i) const {
        const double* const at = first + i * stride;
        return Point3(at[0], at[1], at[2]);
    }
    void prefetch(std::size_t i) const { prefetchBytes(first + i * stride, 3 * sizeof(double)); }

  private:
    static_assert(sizeof(Point3) % sizeof(double) == 0, "points are a whole number of doubles");

    const double* first;
    /// From a point to the next, in doubles.
    std::size_t stride;
    std::size_t numPoints;
};

}  // namespace VARN3D
