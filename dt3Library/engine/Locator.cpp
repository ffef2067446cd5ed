#include "dt3Library/engine/Locator.h"

#include <cstdlib>
#include <vector>

#include "dt3Library/base/EngineCheck.h"
#include "dt3Library/base/MeshAccess.h"
#include "dt3Library/base/Profile.h"
#include "dt3Library/base/bits.h"
#include "dt3Library/base/messages.h"
#include "dt3Library/base/prefetch.h"
#include "dt3Library/base/vectors.h"
#include "dt3Library/engine/HullEdge.h"
#include "dt3Library/engine/star.h"

namespace VARN3D {

using Place = WalkEnd::Place;

namespace {

/// After so many facets the watchdog stops a walk.
constexpr int MAX_STEPS = 10000;

/// How many of the next `untested` facets, counted round from `facet`, certainly have the point on
/// their inner side before the first that may not.
int countInnerFacets(const FacetSides& sides, int facet, int untested) {
    const unsigned others =
        (sides.notInner << 4 | sides.notInner) >> facet & ((1U << untested) - 1U);
    return static_cast<int>(lowestBit(others | 1U << untested));
}

/// Goes from vertex to neighbouring vertex as long as that comes nearer to the point; in a Delaunay
/// mesh this ends at the vertex nearest of all. Yields the tetrahedra around it.
const Point3* findNearestStar(const Point3& point, const Tet3* tet, std::vector<Tet3*>& star) {
    const Point3* nearest = nullptr;
    Point3* centre = MeshAccess::corner(tet, 0);
    double distance = squaredDistance(*centre, point);
    while (nearest != centre) {
        nearest = centre;
        star.clear();
        listStar(centre, star);
        for (const Tet3* around : star) {
            for (int i = 0; i < 4; ++i) {
                Point3* corner = MeshAccess::corner(around, i);
                const double cornerDistance = squaredDistance(*corner, point);
                if (!(cornerDistance < distance)) continue;
                distance = cornerDistance;
                centre = corner;
            }
        }
    }
    return nearest;
}

/// The point lies on the edge opposite two corners: looks for a hull facet at that edge.
WalkEnd lookAroundEdge(Tet3* tet, int opp3, int opp2) {
    HullEdge edge{tet, opp3, opp2};
    LoopWatch loop(tet);
    while (!edge.isAtHull()) {
        edge.crossFacet();
        if (edge.tet == tet) return {Place::INSIDE, tet};
        HullEdge::requireHull(!loop.isBackAt(edge.tet));
    }
    return {Place::AT_HULL, edge.tet, edge.opp2};
}

/// The watchdog's report. It also moves one step at random, for a caller who tries again.
WalkEnd stopWalk(Tet3* tet) {
    Tet3* const neighbour = MeshAccess::neighbour(tet, std::rand() % 4);
    messageStream() << "watchDog: bad point" << std::endl;
    return {Place::ON_THE_WAY, neighbour != nullptr ? neighbour : tet};
}

}  // namespace

/// A walk that grows long (flat tetrahedra can lead it astray, mostly along the hull of elongated
/// sets) begins anew beside the point before the watchdog would stop it.
WalkEnd Locator::locate(const Point3* point, Tet3* start) const {
    if (start == nullptr) goToHell("locateConflictTet");
    WalkEnd end = walk(point, start, MAX_STEPS / 10);
    if (end.place == Place::ON_THE_WAY) end = lookAroundNearestVertex(*point, end.tet);
    if (end.place == Place::ON_THE_WAY) end = walk(point, end.tet, MAX_STEPS);
    return end.place == Place::ON_THE_WAY ? stopWalk(end.tet) : end;
}

/// Finds the point if it lies beyond a hull facet at the vertex nearest to it. Else the end is a
/// tetrahedron at that vertex to walk from.
WalkEnd Locator::lookAroundNearestVertex(const Point3& point, Tet3* start) const {
    std::vector<Tet3*> star;
    const Point3* const nearest = findNearestStar(point, start, star);
    Tet3* facing = star.front();
    for (Tet3* tet : star) {
        bool bFacing = true;  // the point lies in the tetrahedron as seen from the vertex
        for (int i = 0; i < 4; ++i) {
            if (MeshAccess::corner(tet, i) == nearest) continue;
            if (predicates.getOrientation3(tet, i, &point) != ORIENTATION3_NEGATIVE) continue;
            bFacing = false;
            if (MeshAccess::neighbour(tet, i) == nullptr) return {Place::AT_HULL, tet, i};
        }
        if (bFacing) facing = tet;
    }
    return {Place::ON_THE_WAY, facing};
}

/// A visibility walk (Devillers, Pion and Teillaud, Walking in a triangulation, 2002): it crosses
/// the first facet that has the point on its outer side. After maxSteps facets it gives up.
WalkEnd Locator::walk(const Point3* point, Tet3* tet, int maxSteps) const {
    VARN3D_TIME(secondsWalk);
    FacetSides sides = predicates.seeFacets(tet, point);
    int facet = 0;
    int untested = 4;
    bool bEntered = false;
    int steps = 0;
    WalkEnd end{Place::ON_THE_WAY, tet};
    while (end.place == Place::ON_THE_WAY) {
        const int numInner = countInnerFacets(sides, facet, untested);
        facet = (facet + numInner) % 4;
        untested -= numInner;
        steps += numInner + (untested > 0 ? 1 : 0);
        if (steps > maxSteps) break;
        if (untested == 0) {
            if (bEntered) checkEntry(end.tet, facet, point, sides);
            end.place = Place::INSIDE;
            break;
        }
        const Orientation3 side = sides.orientation[facet] < -sides.bound
                                      ? ORIENTATION3_NEGATIVE
                                      : predicates.getOrientation3(end.tet, facet, point);
        if (side == ORIENTATION3_NEGATIVE) {
            Tet3* const next = MeshAccess::neighbour(end.tet, facet);
            if (next == nullptr) {
                end = {Place::AT_HULL, end.tet, facet};
                break;
            }
            facet = (MeshAccess::indexOfNeighbour(next, end.tet) + 1) % 4;
            end.tet = next;
            // One of them comes next, and which one takes as long to find out as to fetch it.
            for (int i = 0; i < 4; ++i) prefetchRecord(MeshAccess::neighbour(next, i));
            sides = predicates.seeFacets(next, point);
            bEntered = true;
            untested = 3;  // the facet just crossed has the point on its inner side
            continue;
        }
        if (side == ORIENTATION3_COPLANAR) end = lookInPlane(point, end.tet, facet);
        facet = (facet + 1) % 4;
        --untested;
    }
    VARN3D_COUNT_WALK(steps);
    return end;
}

/// What must hold where a walk ends inside; only a mesh broken from outside violates it. The walk
/// has tested all facets but the one it came in by; that the sphere holds the point is left to
/// those who go on from here.
void Locator::checkEntry(const Tet3* tet, int entry, const Point3* point,
                         const FacetSides& sides) const {
    if (sides.orientation[entry] > sides.bound) return;
    const Orientation3 side = predicates.getOrientation3(tet, entry, point);
    engineCheck(side == ORIENTATION3_POSITIVE, checks::INSIDE_OF_FACET[entry]);
}

/// The point lies in the plane of a facet: finds out whether it lies in the tetrahedron. If it does
/// not, the walk must go on.
WalkEnd Locator::lookInPlane(const Point3* point, Tet3* tet, int facet) const {
    for (int i = 0; i < 4; ++i)
        if (*point == *MeshAccess::corner(tet, i)) return {Place::AT_VERTEX, tet, i};

    int numPositive = 0;
    WalkEnd end{Place::INSIDE, tet};
    int secondCoplanar = facet;
    for (int k = 0; k < 4; ++k) {
        const Orientation3 side = predicates.getOrientation3(tet, k, point);
        if (side == ORIENTATION3_NEGATIVE) return {Place::ON_THE_WAY, tet};
        if (side == ORIENTATION3_POSITIVE) {
            ++numPositive;
            continue;
        }
        if (MeshAccess::neighbour(tet, k) == nullptr) end = {Place::AT_HULL, tet, k};
        if (k != facet) secondCoplanar = k;
    }
    if (numPositive == 3) return end;
    engineCheck(numPositive == 2, checks::AT_MOST_ON_AN_EDGE);
    return lookAroundEdge(tet, facet, secondCoplanar);
}

}  // namespace VARN3D
