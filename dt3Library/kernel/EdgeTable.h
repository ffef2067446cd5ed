#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "dt3Library/kernel/CompactMesh.h"

namespace VARN3D {

/// The cavity numbers of a boundary facet's corners, as the new tetrahedron's corners 1, 2, 3.
struct CavityFacet {
    std::uint32_t number[3];
};

/// Finds, for the new tetrahedra of one insertion, what lies across their facets through the new
/// vertex.
///
/// Each such facet holds one edge of the cavity's boundary, and its partner holds the same edge in
/// the other direction, for all new tetrahedra are positively oriented. The vertices of the cavity
/// have small numbers, so an edge is a place in a square table; nothing is ever cleared, for every
/// edge that is asked for has been entered in the same insertion. Cavities of very many vertices
/// use hashing instead.
class EdgeTable {
  public:
    /// Up to so many vertices an edge is a place in the table.
    static constexpr std::size_t MAX_SIDE = 512;

    /// The table for a cavity of so many vertices, at most MAX_SIDE: the edge from a to b stands at
    /// a << shift | b.
    std::uint32_t* square(std::size_t numVertices) {
        if (numVertices > std::size_t{1} << shift || table.empty()) grow(numVertices);
        return table.data();
    }
    unsigned getShift() const { return shift; }

    /// For cavities of any size: writes links 1 to 3 of the tetrahedra in these slots, in expected
    /// linear time. Returns how many facets have no partner.
    std::size_t linkByHashing(const std::vector<CavityFacet>& facets, std::size_t numFacets,
                              const Slot* slots, CompactTet* tets);

  private:
    struct Entry {
        std::uint64_t edge;
        FacetCode code;
    };

    void grow(std::size_t numVertices);

    std::vector<std::uint32_t> table;
    unsigned shift = 6;
    std::vector<Entry> hash;
};

}  // namespace VARN3D
