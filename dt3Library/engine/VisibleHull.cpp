#include "dt3Library/engine/VisibleHull.h"

namespace VARN3D {

const std::vector<VisibleHull::Facet>& VisibleHull::list(const Point3* point, Tet3* start,
                                                         int facet) {
    VARN3D_TIME(secondsHull);
    visible.assign(1, {start, facet, -1});
    seen.clear();
    seen.insert(start, MeshAccess::corner(start, facet));
    for (std::size_t i = 0; i < visible.size(); ++i) {
        const Facet from = visible[i];
        for (int k = 0; k < 4; ++k) {
            if (k == from.index || k == from.entry) continue;
            HullEdge edge{from.tet, from.index, k};
            turns.turn(edge);
            if (!seen.insert(edge.tet, MeshAccess::corner(edge.tet, edge.opp2))) continue;
            if (predicates.getOrientation3(edge.tet, edge.opp2, point) == ORIENTATION3_NEGATIVE)
                visible.push_back({edge.tet, edge.opp2, edge.opp3});
        }
    }
    return visible;
}

}  // namespace VARN3D
