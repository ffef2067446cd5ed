#pragma once

#include <algorithm>
#include <cstddef>
#include <functional>
#include <utility>

#include "dt3Library/base/EngineCheck.h"
#include "dt3Library/base/MeshAccess.h"
#include "dt3Library/base/Profile.h"

namespace VARN3D {

/// Notices when a way through the mesh repeats itself, by a milestone that it keeps moving on
/// (Brent, An improved Monte Carlo factorization algorithm, 1980).
class LoopWatch {
  public:
    explicit LoopWatch(const Tet3* start) : milestone(start) {}

    bool isBackAt(const Tet3* tet) {
        if (tet == milestone) return true;
        if (++numSteps == 2 * numStepsThen) {
            milestone = tet;
            numStepsThen = numSteps;
        }
        return false;
    }

  private:
    const Tet3* milestone;
    std::size_t numStepsThen = 1;
    std::size_t numSteps = 0;
};

/// The edge of a tetrahedron opposite corners opp3 and opp2, to be turned around through the
/// tetrahedra at it until the hull: it has been reached through facet opp3, and goes on across
/// facet opp2. A small twin of `Edge3` and `TetAroundEdgeIterator`, since whole hulls are walked
/// over with it. On a mesh with faults a turn ends in a failed check.
struct HullEdge {
    /// Both ends, in the order of their addresses.
    std::pair<const Point3*, const Point3*> ends() const {
        int k = 0;
        while (k == opp3 || k == opp2) ++k;
        const Point3* a = MeshAccess::corner(tet, k);
        const Point3* b = MeshAccess::corner(tet, 6 - k - opp3 - opp2);
        return std::minmax(a, b, std::less<const Point3*>());
    }

    /// Whether facet opp2 lies on the hull.
    bool isAtHull() const { return MeshAccess::neighbour(tet, opp2) == nullptr; }

    /// Goes on to the tetrahedron across facet opp2. The corner beside the edge that both
    /// tetrahedra share is the one to be left next.
    void crossFacet() {
        const Point3* const shared = MeshAccess::corner(tet, opp3);
        Tet3* const next = MeshAccess::neighbour(tet, opp2);
        opp3 = MeshAccess::indexOfNeighbour(next, tet);
        opp2 = 0;
        while (opp2 < 4 && MeshAccess::corner(next, opp2) != shared) ++opp2;
        requireHull(opp2 < 4 && opp2 != opp3);
        tet = next;
    }

    /// Goes on until a facet lies on the hull. Returns through how many facets.
    std::size_t turnToNextHullFacet() {
        LoopWatch loop(tet);
        std::size_t numSteps = 0;
        while (!isAtHull()) {
            crossFacet();
            requireHull(!loop.isBackAt(tet));
            ++numSteps;
        }
        VARN3D_COUNT(facetsTurned, numSteps);
        return numSteps;
    }

    /// To be called with false where wrong links keep a turn from ever coming to the hull.
    static void requireHull(bool bMayCome) { engineCheck(bMayCome, checks::EDGE_COMES_TO_HULL); }

    Tet3* tet;
    int opp3;
    int opp2;
};

}  // namespace VARN3D
