#pragma once

#include <vector>

#include "dt3Library/GeomTest3.h"
#include "dt3Library/engine/HullEdge.h"
#include "dt3Library/engine/HullTurns.h"
#include "dt3Library/engine/PointerPairSet.h"

namespace VARN3D {

/// The part of the hull that a point outside sees.
class VisibleHull {
  public:
    explicit VisibleHull(const GeomTest3& geomTest) : predicates(geomTest) {}

    /// The tetrahedra with a hull facet that the point sees, each once: beginning at one of them
    /// and its facet, from facet to facet across the hull's edges. Good until the next call.
    const std::vector<Tet3*>& list(const Point3* point, Tet3* start, int facet);

    /// To be called when tetrahedra's records have gone.
    void forgetAll() { turns.forgetAll(); }

  private:
    void addFacet(Tet3* tet, int facet);

    const GeomTest3& predicates;
    HullTurns turns;
    // Lists of one call, kept for their memory.
    std::vector<Tet3*> visible;
    std::vector<HullEdge> pending;
    PointerPairSet seenEdges;
    PointerPairSet seenTets;
};

}  // namespace VARN3D
