#pragma once

#include <cstddef>
#include <functional>

#include "dt3Library/base/MeshAccess.h"
#include "dt3Library/base/Profile.h"

namespace VARN3D {

/// An edge of a hull facet, to be turned around through the tetrahedra at the edge until the next
/// hull facet: an unchecked, small twin of `Edge3` and `TetAroundEdgeIterator`, since whole hulls
/// are walked over with it.
struct HullEdge {
    /// The edge opposite corners opp3 and opp2, on the hull facet opposite opp3.
    HullEdge(Tet3* pTet, int opp3ICI, int opp2ICI) : tet(pTet), opp2(opp2ICI) {
        int k = 0;
        while (k == opp3ICI || k == opp2ICI) ++k;
        endA = MeshAccess::corner(tet, k);
        endB = MeshAccess::corner(tet, 6 - k - opp3ICI - opp2ICI);
    }

    const Point3* low() const { return std::less<const Point3*>()(endA, endB) ? endA : endB; }
    const Point3* high() const { return low() == endA ? endB : endA; }

    /// Goes on through tetrahedra at the edge until facet opp2 of one lies on the hull. Returns
    /// through how many facets.
    std::size_t turnToNextHullFacet() {
        std::size_t numSteps = 0;
        while (Tet3* next = MeshAccess::neighbour(tet, opp2)) {
            // The facet to leave by lies opposite the corner that belongs neither to the edge nor
            // lies beyond the facet just crossed.
            int nextOpp2 = 0;
            while (MeshAccess::neighbour(next, nextOpp2) == tet ||
                   MeshAccess::corner(next, nextOpp2) == endA ||
                   MeshAccess::corner(next, nextOpp2) == endB)
                ++nextOpp2;
            tet = next;
            opp2 = nextOpp2;
            ++numSteps;
        }
        VARN3D_COUNT(facetsTurned, numSteps);
        return numSteps;
    }

    Tet3* tet;
    int opp2;
    const Point3* endA;
    const Point3* endB;
};

}  // namespace VARN3D
