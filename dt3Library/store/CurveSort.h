#pragma once

#include <cstdint>
#include <functional>
#include <vector>

namespace VARN3D {

/// A point to be sorted, by where its coordinates are, with a number that travels with it.
struct CurveEntry {
    const double* at;
    std::uint32_t number;
};

/// Is told of the entries in a cell.
using OnCell = std::function<void(const CurveEntry* first, const CurveEntry* last)>;

/// Sorts points along a Hilbert curve over the cube around them, those that share a cell along a
/// curve over theirs, and so on: a good order at every scale, also where a far outlier squeezes a
/// million points into one cell of the whole. The order of points that share a cell of the last
/// curve, which are few or can't be told apart by any, stays; equal points are among these. O(n)
/// for each scale at which the points are clustered. `onCell` is told of each such cell, if given.
void sortAlongCurve(std::vector<CurveEntry>& entries, const OnCell& onCell = {});

}  // namespace VARN3D
