#pragma once

#include <cstdint>
#include <functional>
#include <vector>

#include "dt3Library/IndexedMesh.h"

namespace varn3d_python {

/// Which vertices share an edge: those that do with vertex k are neighbours[starts[k]] up to
/// neighbours[starts[k + 1]], ascending.
class VertexGraph {
  public:
    /// Calls `poll` now and then, which may throw. O(number of tetrahedra).
    VertexGraph(const VARN3D::IndexedMesh& mesh, std::size_t numPoints,
                const std::function<void()>& poll);

    const std::vector<std::int32_t>& getStarts() const { return starts; }
    const std::vector<std::int32_t>& getNeighbours() const { return neighbours; }

  private:
    std::vector<std::int32_t> starts;
    std::vector<std::int32_t> neighbours;
};

}  // namespace varn3d_python
