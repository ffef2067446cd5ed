#pragma once

#include <vector>

#include "dt3Library/Export.h"
#include "dt3Library/Point3.h"

namespace VARN3D {

/// An axis-aligned box that grows over the points added to it.
///
/// A new box is empty: its minima are the largest finite double and its maxima the negative of
/// that. Units are the points'. A plain value: each one is used by one thread at a time, or
/// read by several.
class VARN3D_EXPORT Bbox3 {
  public:
    /// The empty box.
    Bbox3();
    /// The box of these points; empty for none.
    explicit Bbox3(const std::vector<Point3>& points);

    /// Whether the box holds anything.
    bool isValid() const;

    /// Grows the box over a point. Returns whether it changed.
    bool add(const Point3& p);
    /// Grows the box over all points. Returns whether it changed. O(n).
    bool add(const std::vector<Point3>& v);

    /// Widens each axis by `factor` times its extent, half of it on either side.
    void enlargeBounds(double factor);

    /// Grows this box, the left operand, over the other one and returns a copy of it.
    Bbox3 operator+(Bbox3& other);

    /// @{
    /// The corner with the smallest or the largest coordinates.
    Point3 getMinPoint() const;
    Point3 getMaxPoint() const;
    /// @}
    /// The smallest of the three minima.
    double getMinCoord() const;
    /// The largest of the three maxima.
    double getMaxCoord() const;
    /// @{
    /// The extent along an axis.
    double getRangeX() const { return maxX - minX; }
    double getRangeY() const { return maxY - minY; }
    double getRangeZ() const { return maxZ - minZ; }
    /// @}
    /// The largest of the three extents.
    double getMaxRange() const;
    /// @{
    /// A bound along an axis.
    double getMinX() const { return minX; }
    double getMinY() const { return minY; }
    double getMinZ() const { return minZ; }
    double getMaxX() const { return maxX; }
    double getMaxY() const { return maxY; }
    double getMaxZ() const { return maxZ; }
    /// @}

    /// Prints "Bbox3: (minima) -> (maxima)" and a line end on standard output.
    void debug() const;

  protected:
    /// Grows a box that is not empty.
    void treatPointForValidBox(const Point3& p);

  private:
    bool hasBoundsOf(const Bbox3& other) const;

    double minX;
    double minY;
    double minZ;
    double maxX;
    double maxY;
    double maxZ;
};

}  // namespace VARN3D
