#pragma once

#include "dt3Library/Export.h"
#include "dt3Library/Point3.h"

namespace VARN3D {

/// A segment from a source to a target point. A plain value: each
/// one is used by one thread at a time, or read by several.
class VARN3D_EXPORT Segment3 {
  public:
    /// Copies both points.
    Segment3(const Point3& src, const Point3& trg) : source(src), target(trg) {}

    /// @{
    /// A copy of an end point.
    Point3 getSrc() const { return source; }
    Point3 getTrg() const { return target; }
    /// @}

    /// Prints both points on standard output.
    void debug() const;

  private:
    Point3 source;
    Point3 target;
};

}  // namespace VARN3D
