#pragma once

#include <vector>

#include "tests/support/PointSets.h"

namespace support {

/// One batch, or points inserted one by one.
struct Step {
    bool bBatch;
    Points points;
};
using Scenario = std::vector<Step>;

/// Random successions of insertions, all of them small and finite.

/// One batch of lattice points.
Scenario lattices(Random& random);
/// A batch, and then points in its planes, on its edges and just beside its vertices.
Scenario onTheHull(Random& random);
/// Of any size, or thin, or so far from the origin that little of the differences is left.
Scenario extremes(Random& random);
/// Parts of several sets of different size and place.
Scenario mixed(Random& random);
/// Points of one place, line or plane, and then what makes the first tetrahedron.
Scenario waiting(Random& random);
/// A far point squeezes everything else into few cells of the curve.
Scenario crowded(Random& random);

}  // namespace support
