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
        : InputPoints(points.empty() ? nullptr : MeshAccess::coordinates(points.front()),
                      points.size(), sizeof(Point3)) {}
    /// x, y, z of each of n points.
    InputPoints(const double* xyz, std::size_t n) : InputPoints(xyz, n, 3 * sizeof(double)) {}

    std::size_t size() const { return numPoints; }
    bool empty() const { return numPoints == 0; }
    Point3 operator[](std::size_t i) const {
        const double* const at = coordinates(i);
        return Point3(at[0], at[1], at[2]);
    }
    /// Where x, y and z of a point are.
    const double* coordinates(std::size_t i) const {
        return reinterpret_cast<const double*>(bytes + i * stride);
    }
    void prefetch(std::size_t i) const { prefetchBytes(coordinates(i), 3 * sizeof(double)); }

  private:
    InputPoints(const double* first, std::size_t n, std::size_t numBytes)
        : bytes(reinterpret_cast<const char*>(first)), stride(numBytes), numPoints(n) {}

    const char* bytes;
    /// From a point to the next, in bytes: 32-bit platforms align doubles to four of them.
    std::size_t stride;
    std::size_t numPoints;
};

}  // namespace VARN3D
