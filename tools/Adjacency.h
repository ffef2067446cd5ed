#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "tools/IndexedMesh.h"

namespace tool {

/// Which of a list of tetrahedra share a facet.
class Adjacency {
  public:
    static constexpr std::uint32_t NONE = UINT32_MAX;

    /// O(n log n) at worst, O(n) for meshes whose vertices have few neighbours; 80 bytes a
    /// tetrahedron while it is being built, 16 afterwards.
    explicit Adjacency(const std::vector<IndexedMesh::Tetrahedron>& tetrahedra);

    /// The number of tetrahedra.
    std::size_t size() const { return neighbours.size(); }

    /// The number of the tetrahedron across the facet opposite a corner, or NONE.
    std::uint32_t across(std::size_t tetrahedron, std::size_t corner) const {
        return neighbours[tetrahedron][corner];
    }

  private:
    std::vector<std::array<std::uint32_t, 4>> neighbours;
};

}  // namespace tool
