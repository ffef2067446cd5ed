#include "dt3Library/engine/VisibleHull.h"

namespace VARN3D {

const std::vector<Tet3*>& VisibleHull::list(const Point3* point, Tet3* start, int facet) {
    visible.clear();
    pending.clear();
    seenEdges.clear();
    seenTets.clear();
    addFacet(start, facet);
    while (!pending.empty()) {
        HullEdge edge = pending.back();
        pending.pop_back();
        turns.turn(edge);
        if (predicates.getOrientation3(edge.tet, edge.opp2, point) == ORIENTATION3_NEGATIVE)
            addFacet(edge.tet, edge.opp2);
    }
    return visible;
}

/// Each edge is turned around once, from the first of its two facets.
void VisibleHull::addFacet(Tet3* tet, int facet) {
    for (int k = 0; k < 4; ++k) {
        if (k == facet) continue;
        const HullEdge edge(tet, facet, k);
        if (seenEdges.insert(edge.low(), edge.high())) pending.push_back(edge);
    }
    if (seenTets.insert(tet, nullptr)) visible.push_back(tet);
}

}  // namespace VARN3D
