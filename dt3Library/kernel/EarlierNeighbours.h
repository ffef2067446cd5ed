#pragma once

#include <array>
#include <cstddef>
#include <vector>

#include "dt3Library/Point3.h"
#include "dt3Library/kernel/CompactMesh.h"

namespace VARN3D {

/// For each vertex of a batch, the vertices next to it along a curve that are inserted before it.
///
/// Usually the walk to a new vertex starts where the last insertion ended, and is short. Where the
/// order of insertion says little about space (a box long or thin along one axis), such walks would
/// cross the whole mesh; then it starts at the nearer of these neighbours. They are found for all
/// vertices at once, in linear time after sorting, by taking them out of a linked list in reverse
/// order of insertion.
class EarlierNeighbours {
  public:
    /// For the vertices from `first` on, which are inserted in the order of their numbers; those
    /// from 1 on have been. Throws std::bad_alloc. O(n log n).
    EarlierNeighbours(const std::vector<Point3*>& points, VertexNumber first);

    /// Those inserted before that are next to it, AT_INFINITY for none.
    std::array<VertexNumber, 2> candidatesFor(VertexNumber vertex) const {
        return {predecessors[vertex], successors[vertex]};
    }

    /// The nearer one of those inserted before; AT_INFINITY if there is none.
    VertexNumber nearestTo(const CompactVertex* vertices, VertexNumber vertex) const {
        const auto [before, after] = candidatesFor(vertex);
        if (before == AT_INFINITY || after == AT_INFINITY) return before + after;
        return squaredDistance(vertices[before], vertices[vertex]) <
                       squaredDistance(vertices[after], vertices[vertex])
                   ? before
                   : after;
    }

  private:
    static double squaredDistance(const CompactVertex& a, const CompactVertex& b) {
        const double x = a.at[0] - b.at[0];
        const double y = a.at[1] - b.at[1];
        const double z = a.at[2] - b.at[2];
        return x * x + y * y + z * z;
    }

    std::vector<VertexNumber> predecessors;
    std::vector<VertexNumber> successors;
};

}  // namespace VARN3D
