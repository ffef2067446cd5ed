#pragma once

#include <cstdint>
#include <vector>

#include "dt3Library/Point3.h"

namespace VARN3D {

/// A vertex to be sorted, with a number that travels with it.
struct CurveEntry {
    Point3* vertex;
    std::uint32_t number;
};

/// Sorts vertices along a Hilbert curve over the cube around them, those that share a cell along a
/// curve over theirs, and so on: a good order at every scale, also where a far outlier squeezes a
/// million vertices into one cell of the whole. The order of vertices that share a cell of the last
/// curve, which are few, stays. O(n) for each scale at which the vertices are clustered.
void sortAlongCurve(std::vector<CurveEntry>& entries);

}  // namespace VARN3D
