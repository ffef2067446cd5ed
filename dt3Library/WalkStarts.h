#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "dt3Library/Bbox3.h"
#include "dt3Library/InsertionOrder.h"
#include "dt3Library/Point3.h"

namespace VARN3D {

/// For each vertex of a batch, the vertices next to it in spatial order that will have been
/// inserted before it.
///
/// Usually the walk to a new vertex starts at the one inserted before it, and is short. Where the
/// insertion order says little about space (a box long or thin along one axis, one far outlier)
/// such walks would cross the whole mesh; then it starts at one of these neighbours. They are found
/// for the whole batch in linear time after sorting, by deleting the vertices from a linked list in
/// reverse insertion order.
class WalkStarts {
  public:
    bool isReady() const { return !predecessors.empty(); }

    /// Prepares for all positions that `order` has yet to give. O(n log n), 16 bytes a vertex.
    void prepare(const std::vector<Point3*>& vVertices, InsertionOrder order, const Bbox3& box);

    /// A tetrahedron at the nearest of the neighbours and `current`, where to start the walk.
    Tet3* nearest(const std::vector<Point3*>& vVertices, std::size_t position, Tet3* current) const;

  private:
    using Position = std::uint32_t;
    static constexpr Position NONE = 0xFFFFFFFF;

    std::vector<Position> predecessors;
    std::vector<Position> successors;
};

}  // namespace VARN3D
