#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "dt3Library/Tet3.h"

namespace VARN3D {

/// Makes neighbours of the new tetrahedra of one insertion.
///
/// Every new tetrahedron has the new vertex as corner 0; each of its other three facets holds the
/// new vertex and one edge of the cavity's boundary. Two of these facets are the same facet exactly
/// when they hold the same edge, once in either direction, for all new tetrahedra are positively
/// oriented. So all directed edges are entered in a hash table, and then each tetrahedron looks up
/// its partners under the opposite ones.
///
/// The table is never cleared: an entry is the number of an edge, and counts only if that edge
/// knows to be entered there.
class FacetGluing {
  public:
    /// Makes room for so many tetrahedra: `glue` then allocates nothing.
    void reserve(std::size_t numTets);

    /// Links all of them. Returns how many facets found no partner: they are left without
    /// neighbour. Expected time O(n).
    std::size_t glue(const std::vector<Tet3*>& tets);

  private:
    /// Edge 4 i + k runs from corner 1 + k of the i-th tetrahedron to the next of corners 1 to 3.
    using Edge = std::uint32_t;
    using Place = std::uint32_t;

    Place home(const Point3* source, const Point3* target) const;
    Place placeAfter(Place place) const { return (place + 1) & ((1U << bits) - 1); }
    bool isTaken(Place place, Edge numEntered) const;
    void enterEdges(const std::vector<Tet3*>& tets);
    Tet3* findPartner(const std::vector<Tet3*>& tets, const Point3* source,
                      const Point3* target) const;

    /// Where each edge is entered.
    std::vector<Place> placeOf;
    /// Open addressing in the first 2^bits places.
    std::vector<Edge> table;
    unsigned bits = 0;
};

}  // namespace VARN3D
