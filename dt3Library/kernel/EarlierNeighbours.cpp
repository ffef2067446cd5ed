#include "dt3Library/kernel/EarlierNeighbours.h"

#include "dt3Library/base/MeshAccess.h"
#include "dt3Library/store/CurveSort.h"

namespace VARN3D {

EarlierNeighbours::EarlierNeighbours(const std::vector<Point3*>& points, VertexNumber first)
    : predecessors(points.size(), AT_INFINITY), successors(points.size(), AT_INFINITY) {
    const auto numVertices = static_cast<VertexNumber>(points.size());
    std::vector<CurveEntry> entries;
    entries.reserve(points.size());
    for (VertexNumber vertex = 1; vertex < numVertices; ++vertex)
        entries.push_back({MeshAccess::coordinates(*points[vertex]), vertex});
    sortAlongCurve(entries);
    for (std::size_t i = 1; i < entries.size(); ++i) {
        predecessors[entries[i].number] = entries[i - 1].number;
        successors[entries[i - 1].number] = entries[i].number;
    }
    // A vertex taken out keeps the links it had: to its neighbours among those inserted before it.
    for (VertexNumber last = numVertices; last-- > first;) {
        const VertexNumber before = predecessors[last];
        const VertexNumber after = successors[last];
        if (before != AT_INFINITY) successors[before] = after;
        if (after != AT_INFINITY) predecessors[after] = before;
    }
}

}  // namespace VARN3D
