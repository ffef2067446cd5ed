#include "dt3Library/WalkStarts.h"

#include <algorithm>

#include "dt3Library/MeshAccess.h"
#include "dt3Library/SpatialOrder.h"

namespace VARN3D {

void WalkStarts::prepare(const std::vector<Point3*>& vVertices, InsertionOrder order,
                         const Bbox3& box) {
    const std::size_t n = vVertices.size();
    if (n >= NONE) return;
    std::vector<Position> remaining;
    for (std::size_t position; order.next(position);)
        remaining.push_back(static_cast<Position>(position));

    SpatialOrder spatialOrder;
    spatialOrder.setFrame(box);
    struct Ranked {
        SpatialOrder::Entry entry;
        Position position;
    };
    std::vector<Ranked> ranked(n);
    for (std::size_t i = 0; i < n; ++i)
        ranked[i] = {{spatialOrder.cellCode(*vVertices[i]), vVertices[i]},
                     static_cast<Position>(i)};
    std::sort(ranked.begin(), ranked.end(), [](const Ranked& a, const Ranked& b) {
        return SpatialOrder::precedes(a.entry, b.entry);
    });

    predecessors.assign(n, NONE);
    successors.assign(n, NONE);
    for (std::size_t i = 1; i < n; ++i) {
        predecessors[ranked[i].position] = ranked[i - 1].position;
        successors[ranked[i - 1].position] = ranked[i].position;
    }
    // A deleted vertex keeps the links it had: to its neighbours among those inserted before it.
    for (auto last = remaining.rbegin(); last != remaining.rend(); ++last) {
        const Position before = predecessors[*last];
        const Position after = successors[*last];
        if (before != NONE) successors[before] = after;
        if (after != NONE) predecessors[after] = before;
    }
}

Tet3* WalkStarts::nearest(const std::vector<Point3*>& vVertices, std::size_t position,
                          Tet3* current) const {
    const Point3& p = *vVertices[position];
    const auto squaredDistance = [&p](const Point3& q) {
        const double dx = p.x() - q.x();
        const double dy = p.y() - q.y();
        const double dz = p.z() - q.z();
        return dx * dx + dy * dy + dz * dz;
    };
    Tet3* best = current;
    double bestDistance = squaredDistance(*MeshAccess::corner(current, 0));
    for (const Position neighbour : {predecessors[position], successors[position]}) {
        if (neighbour == NONE) continue;
        const Point3& q = *vVertices[neighbour];
        if (q.getOneTet() == nullptr) continue;
        const double distance = squaredDistance(q);
        if (!(distance < bestDistance)) continue;
        best = q.getOneTet();
        bestDistance = distance;
    }
    return best;
}

}  // namespace VARN3D
