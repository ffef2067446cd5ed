#pragma once

#include <vector>

#include "dt3Library/GeomTest3.h"
#include "dt3Library/engine/HullTurns.h"
#include "dt3Library/engine/PointerPairSet.h"

namespace VARN3D {

/// The part of the hull that a point outside sees.
class VisibleHull {
  public:
    /// A hull facet, by its tetrahedron and index there. The search has come to it across the edge
    /// opposite that index and this one; -1 where it has begun.
    struct Facet {
        Tet3* tet;
        int index;
        int entry;
    };

    explicit VisibleHull(const GeomTest3& geomTest) : predicates(geomTest) {}

    /// The hull facets that the point sees, each once: beginning at one of them, breadth first
    /// across the hull's edges. Good until the next call.
    const std::vector<Facet>& list(const Point3* point, Tet3* start, int facet);

    /// To be called when tetrahedra's records have gone.
    void forgetAll() { turns.forgetAll(); }

  private:
    const GeomTest3& predicates;
    HullTurns turns;
    // Lists of one call, kept for their memory.
    std::vector<Facet> visible;
    /// Facets that have been looked at, as tetrahedron and opposite corner.
    PointerPairSet seen;
};

}  // namespace VARN3D
