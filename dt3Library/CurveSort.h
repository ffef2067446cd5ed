#pragma once

#include <cstdint>

#include "dt3Library/Point3.h"

namespace VARN3D {

/// A vertex to be sorted, with a number that travels with it.
struct CurveEntry {
    const Point3* vertex;
    std::uint32_t number;
    std::uint32_t key;
};

/// Sorts vertices along a Hilbert curve over the cube around them, those that share a cell along a
/// curve over theirs, and so on: a good order at every scale, also where a far outlier squeezes a
/// million vertices into one cell of the whole. Few vertices in a cell stay in the order of their
/// numbers. Expected time O(n log n).
void sortAlongCurve(CurveEntry* first, CurveEntry* last);

}  // namespace VARN3D
