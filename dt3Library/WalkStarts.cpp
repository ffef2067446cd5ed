#include "dt3Library/WalkStarts.h"

#include <algorithm>
#include <limits>

#include "dt3Library/MeshAccess.h"
#include "dt3Library/SpatialOrder.h"
#include "dt3Library/prefetch.h"

namespace VARN3D {

void WalkStarts::prepare(const std::vector<Point3*>& vVertices, InsertionOrder order,
                         const Bbox3& box) {
    const std::size_t n = vVertices.size();
    if (n >= NONE) return;
    pVertices = &vVertices;
    for (std::size_t position; order.next(position);)
        remaining.push_back(static_cast<Position>(position));

    std::vector<Ranked> ranked(n);
    for (std::size_t i = 0; i < n; ++i) ranked[i].position = static_cast<Position>(i);
    sortInSpace(ranked.data(), ranked.data() + n, box);

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

/// Sorts by cells laid over the box, then what shares a cell by cells laid over its own box, and so
/// on: comparing codes is several times faster than comparing the coordinates' bits.
void WalkStarts::sortInSpace(Ranked* first, Ranked* last, const Bbox3& box) const {
    constexpr std::ptrdiff_t FEW = 8;
    SpatialOrder order;
    order.setFrame(box);
    for (Ranked* r = first; r != last; ++r) r->cellCode = order.cellCode(*vertexAt(r->position));
    std::sort(first, last,
              [](const Ranked& a, const Ranked& b) { return a.cellCode < b.cellCode; });
    for (Ranked* begin = first; begin != last;) {
        Ranked* end = begin + 1;
        while (end != last && end->cellCode == begin->cellCode) ++end;
        const std::ptrdiff_t count = end - begin;
        // Cells of an infinite box may separate nothing.
        if (count > FEW && count < last - first) {
            Bbox3 cellBox;
            for (const Ranked* r = begin; r != end; ++r) cellBox.add(*vertexAt(r->position));
            sortInSpace(begin, end, cellBox);
        } else if (count > 1) {
            std::sort(begin, end, [this](const Ranked& a, const Ranked& b) {
                return SpatialOrder::precedesInCell(*vertexAt(a.position), *vertexAt(b.position));
            });
        }
        begin = end;
    }
}

bool WalkStarts::next(std::size_t& position) {
    if (cursor == remaining.size()) return false;
    position = remaining[cursor++];
    // Each step reads what the step before it, an insertion ago, has loaded.
    if (cursor + 3 < remaining.size()) {
        fetchVertices(remaining[cursor + 3]);
        fetchTets(remaining[cursor + 2]);
        fetchStar(remaining[cursor + 1]);
        fetchSurroundings(remaining[cursor]);
    }
    return true;
}

/// Calls f(const Point3& vertex) for both neighbours, as far as there are any.
template <class F>
void WalkStarts::forNeighbours(std::size_t position, F f) const {
    for (const Position neighbour : {predecessors[position], successors[position]})
        if (neighbour != NONE) f(*vertexAt(neighbour));
}

void WalkStarts::fetchVertices(std::size_t position) const {
    prefetchRecord((*pVertices)[position]);
    forNeighbours(position, [](const Point3& vertex) { prefetchRecord(&vertex); });
}

void WalkStarts::fetchTets(std::size_t position) const {
    forNeighbours(position, [](const Point3& vertex) { prefetchRecord(vertex.getOneTet()); });
}

void WalkStarts::fetchStar(std::size_t position) const {
    const Tet3* tet = nearest(position, nullptr);
    if (tet == nullptr) return;
    for (int i = 0; i < 4; ++i) {
        prefetchRecord(MeshAccess::neighbour(tet, i));
        prefetchRecord(MeshAccess::corner(tet, i));
    }
}

void WalkStarts::fetchSurroundings(std::size_t position) const {
    const Tet3* tet = nearest(position, nullptr);
    if (tet == nullptr) return;
    for (int i = 0; i < 4; ++i) {
        const Tet3* neighbour = MeshAccess::neighbour(tet, i);
        if (neighbour == nullptr) continue;
        for (int k = 0; k < 4; ++k) {
            prefetchRecord(MeshAccess::neighbour(neighbour, k));
            prefetchRecord(MeshAccess::corner(neighbour, k));
        }
    }
}

Tet3* WalkStarts::nearest(std::size_t position, Tet3* current) const {
    const Point3& p = *(*pVertices)[position];
    const auto squaredDistance = [&p](const Point3& q) {
        const double dx = p.x() - q.x();
        const double dy = p.y() - q.y();
        const double dz = p.z() - q.z();
        return dx * dx + dy * dy + dz * dz;
    };
    Tet3* best = current;
    double bestDistance = current != nullptr ? squaredDistance(*MeshAccess::corner(current, 0))
                                             : std::numeric_limits<double>::infinity();
    forNeighbours(position, [&](const Point3& q) {
        if (q.getOneTet() == nullptr) return;
        const double distance = squaredDistance(q);
        if (!(distance < bestDistance)) return;
        best = q.getOneTet();
        bestDistance = distance;
    });
    return best;
}

}  // namespace VARN3D
