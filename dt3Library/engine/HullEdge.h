#pragma once

#include <cstddef>
#include <functional>

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

/// An edge, to be turned around through the tetrahedra at it until the hull: a small twin of
/// `Edge3` and `TetAroundEdgeIterator`, since whole hulls are walked over with it. On a mesh with
/// faults a turn ends in a failed check.
struct HullEdge {
    /// The edge opposite corners opp3 and opp2. The turn begins at facet opp3 and goes on across
    /// facet opp2.
    HullEdge(Tet3* pTet, int opp3ICI, int opp2ICI) : tet(pTet), opp2(opp2ICI) {
        int k = 0;
        while (k == opp3ICI || k == opp2ICI) ++k;
        endA = MeshAccess::corner(tet, k);
        endB = MeshAccess::corner(tet, 6 - k - opp3ICI - opp2ICI);
    }

    const Point3* low() const { return std::less<const Point3*>()(endA, endB) ? endA : endB; }
    const Point3* high() const { return low() == endA ? endB : endA; }

    /// Whether facet opp2 lies on the hull.
    bool isAtHull() const { return MeshAccess::neighbour(tet, opp2) == nullptr; }

    /// Goes on to the tetrahedron across facet opp2. The next facet to cross lies opposite the
    /// corner that neither belongs to the edge nor lies beyond the facet just crossed.
    void crossFacet() {
        Tet3* const next = MeshAccess::neighbour(tet, opp2);
        int nextOpp2 = 0;
        while (nextOpp2 < 4 && (MeshAccess::neighbour(next, nextOpp2) == tet ||
                                MeshAccess::corner(next, nextOpp2) == endA ||
                                MeshAccess::corner(next, nextOpp2) == endB))
            ++nextOpp2;
        requireHull(nextOpp2 < 4);
        tet = next;
        opp2 = nextOpp2;
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
    int opp2;
    const Point3* endA;
    const Point3* endB;
};

}  // namespace VARN3D
