#include "dt3Library/engine/MeshSearch.h"

#include <algorithm>

#include "dt3Library/Dt3.h"
#include "dt3Library/base/EngineCheck.h"
#include "dt3Library/base/MeshAccess.h"
#include "dt3Library/base/vectors.h"
#include "dt3Library/predicates/FloatingPoint.h"
#include "dt3Library/predicates/predicateStages.h"

namespace VARN3D {

namespace {

/// How many facet tests a walk from the last query's end may take before the sample is asked.
constexpr int NEAR_STEPS = 60;

/// One vertex in so many is in the sample: a walk from the nearest of these passes few tetrahedra.
constexpr std::size_t SAMPLE_STRIDE = 8;

/// How many entries of the sample on either side are searched for a vertex of the mesh.
constexpr std::size_t ENTRIES_SEARCHED = 32;

}  // namespace

/// What is known of the mesh as it was before an insertion may be void.
void MeshSearch::noticeChanges() {
    if (revision == engine.getRevision()) return;
    revision = engine.getRevision();
    tet = engine.getRecentTet();
    bScattered = false;
    bSampled = false;
    bWaitingListed = false;
    hull.forgetAll();
}

// ---- Location ----------------------------------------------------------------------------------

Location MeshSearch::locate(const Point3& point) {
    noticeChanges();
    if (tet == nullptr) return {};
    return classify(point, walkTo(point));
}

/// Takes `tet` to the point: to a tetrahedron that holds it, or to one with a hull facet that it
/// lies beyond, whose index is returned.
int MeshSearch::walkTo(const Point3& point) {
    if (bScattered) startNear(point);
    WalkEnd end = locator.walk(&point, tet, NEAR_STEPS);
    if (end.place == WalkEnd::Place::ON_THE_WAY) {
        tet = end.tet;
        if (!bScattered) startNear(point);
        end = locator.locate(&point, tet);
    }
    engineCheck(end.place != WalkEnd::Place::ON_THE_WAY, checks::WALK_ENDS);
    tet = end.tet;
    return end.index;
}

/// Goes to the sample's vertex near the point, unless `tet` is nearer already.
void MeshSearch::startNear(const Point3& point) {
    if (!bSampled) {
        sample.build(engine.getStore().getPool(), engine.getStore().getBbox(), SAMPLE_STRIDE);
        bSampled = true;
    }
    Tet3* near = sample.findTet(sample.lowerBound(point), point, ENTRIES_SEARCHED);
    bScattered = near != nullptr && squaredDistance(*MeshAccess::corner(near, 0), point) <
                                        squaredDistance(*MeshAccess::corner(tet, 0), point);
    if (bScattered) tet = near;
}

/// Says of the place where a walk ended how the point lies there.
Location MeshSearch::classify(const Point3& point, int walkEnd) const {
    const FacetSides sides = predicates.seeFacets(tet, &point);
    if (sides.notInner == 0) return {LocationKind::INSIDE, tet};
    int coplanar[4];
    int numCoplanar = 0;
    int positive = 0;
    for (int i = 0; i < 4; ++i) {
        if (sides.orientation[i] > sides.bound) {
            positive = i;
            continue;
        }
        const Orientation3 side = predicates.getOrientation3(tet, i, &point);
        if (side == ORIENTATION3_NEGATIVE) return {LocationKind::OUTSIDE, tet, walkEnd};
        if (side == ORIENTATION3_COPLANAR)
            coplanar[numCoplanar++] = i;
        else
            positive = i;
    }
    switch (numCoplanar) {
        case 0:
            return {LocationKind::INSIDE, tet};
        case 1:
            return {LocationKind::ON_FACET, tet, coplanar[0]};
        case 2:
            return {LocationKind::ON_EDGE, tet, coplanar[0], coplanar[1]};
        default:
            return {LocationKind::AT_VERTEX, tet, -1, -1, MeshAccess::corner(tet, positive)};
    }
}

// ---- Nearest vertex ----------------------------------------------------------------------------

Point3* MeshSearch::findNearest(const Point3& point) {
    noticeChanges();
    listWaiting();
    nearest.clear();
    seenVertices.clear();
    if (tet != nullptr) {
        walkTo(point);
        descend(point);
    }
    for (Point3* vertex : waiting) consider(vertex, point);
    if (nearest.empty()) return nullptr;
    return *std::min_element(nearest.begin(), nearest.end(), [](const Point3* a, const Point3* b) {
        // As unsigned numbers those without one come last.
        return static_cast<std::uint32_t>(MeshAccess::number(a)) <
               static_cast<std::uint32_t>(MeshAccess::number(b));
    });
}

void MeshSearch::listWaiting() {
    if (bWaitingListed) return;
    waiting.clear();
    const auto listIn = [this](Point3* first, int used) {
        for (Point3* vertex = first; vertex != first + used; ++vertex)
            if (vertex->getOneTet() == nullptr) waiting.push_back(vertex);
    };
    if (engine.getNumWaiting() > 0) engine.getStore().getPool().forEachBlock(listIn);
    bWaitingListed = true;
}

/// Goes from vertex to neighbouring vertex as long as that comes nearer to the point, and lists all
/// nearest vertices of the mesh.
///
/// A vertex's Voronoi cell is where it is no farther than any of its neighbours, so whichever isn't
/// nearest has a neighbour that is nearer. All vertices on a sphere that is empty, such as the one
/// around the point through the nearest, span a polytope that the tetrahedra, or their facets and
/// edges, triangulate; so from one nearest vertex the others are reached along edges between them.
void MeshSearch::descend(const Point3& point) {
    for (int i = 0; i < 4; ++i) consider(MeshAccess::corner(tet, i), point);
    std::size_t next = 0;
    while (next < nearest.size()) {
        const Point3* centre = nearest[next];
        considerNeighbours(centre, point);
        const bool bStillNearest = next < nearest.size() && nearest[next] == centre;
        next = bStillNearest ? next + 1 : 0;
    }
}

void MeshSearch::considerNeighbours(const Point3* centre, const Point3& point) {
    star.clear();
    seenTets.clear();
    const Tet3* first = centre->getOneTet();
    star.push_back(first);
    seenTets.insert(first, nullptr);
    for (int i = 0; i < 4; ++i) consider(MeshAccess::corner(first, i), point);
    for (std::size_t at = 0; at < star.size(); ++at) {
        const Tet3* current = star[at];
        for (int i = 0; i < 4; ++i) {
            if (MeshAccess::corner(current, i) == centre) continue;
            const Tet3* next = MeshAccess::neighbour(current, i);
            if (next == nullptr || !seenTets.insert(next, nullptr)) continue;
            star.push_back(next);
            // Its other corners have been considered with the tetrahedron before.
            consider(MeshAccess::corner(next, MeshAccess::indexOfNeighbour(next, current)), point);
        }
    }
}

/// Takes a vertex into account.
void MeshSearch::consider(Point3* vertex, const Point3& point) {
    const double distance = squaredDistance(*vertex, point);
    if (!nearest.empty() && distance > nearestLimit) return;
    if (!seenVertices.insert(vertex, nullptr)) return;
    const int order =
        nearest.empty() ? -1 : predicates.compareDistances(vertex, nearest.front(), &point);
    if (order > 0) return;
    if (order < 0) {
        nearest.clear();
        // Both distances are off by less than 6 * 2^-53 of themselves and by little from underflow.
        nearestLimit = distance * (1.0 + 0x1p-48) + predicateStages::UNDERFLOW;
    }
    nearest.push_back(vertex);
}

// ---- Conflict region ---------------------------------------------------------------------------

/// The region is what the point sees: a segment from it into a tetrahedron in conflict passes only
/// through others in conflict. So all of it hangs together with the tetrahedron that holds the
/// point, or with those at the hull facets that it sees.
void MeshSearch::listConflicts(const Point3& point, std::vector<Tet3*>& region) {
    const Location place = locate(point);
    if (place.tet == nullptr || place.kind == LocationKind::AT_VERTEX) return;
    std::size_t next = region.size();
    seenTets.clear();
    const auto look = [&](Tet3* candidate) {
        if (candidate == nullptr || !seenTets.insert(candidate, nullptr)) return;
        if (predicates.sphereInclusionTest(candidate, &point) == SIC_INSIDE)
            region.push_back(candidate);
    };
    if (place.kind == LocationKind::OUTSIDE)
        for (const VisibleHull::Facet& facet : hull.list(&point, place.tet, place.opp3))
            look(facet.tet);
    else
        look(place.tet);
    for (; next < region.size(); ++next)
        for (int i = 0; i < 4; ++i) look(MeshAccess::neighbour(region[next], i));
}

}  // namespace VARN3D
