#pragma once

#include <cstddef>
#include <iterator>
#include <unordered_map>
#include <utility>

#include "dt3Library/base/hashPointers.h"
#include "dt3Library/engine/HullEdge.h"

namespace VARN3D {

/// Turns hull edges to the next hull facet, and remembers where long turns ended: the edges of a
/// moment curve have as many tetrahedra as the curve has points, and every new point turns around
/// all of them.
///
/// What is remembered is checked before it is used, so insertions need not keep it up to date: a
/// tetrahedron of the mesh with a hull facet at the edge, other than the one to be left, is the end
/// of the turn, for an edge has no third hull facet. A tetrahedron that is no longer in the mesh
/// has its visited mark set until its record becomes another one.
class HullTurns {
  public:
    /// Turns the edge. O(1) if the turn is remembered, else O(tetrahedra at the edge).
    void turn(HullEdge& edge) {
        if (isRemembered(edge)) return;
        if (edge.turnToNextHullFacet() >= LONG_TURN) remember(edge);
    }

    /// To be called when tetrahedra's records have gone.
    void forgetAll() { lastTets.clear(); }

  private:
    using Ends = std::pair<const Point3*, const Point3*>;

    struct HashOfEnds {
        std::size_t operator()(const Ends& ends) const {
            return static_cast<std::size_t>(hashPointers(ends.first, ends.second) >> 32);
        }
    };

    static constexpr std::size_t LONG_TURN = 32;
    static constexpr std::size_t FEW_TURNS = 1024;

    /// A hull facet of the tetrahedron at the edge between the ends; -1 if it has none, or is no
    /// longer in the mesh.
    static int hullFacetAt(const Ends& ends, const Tet3* tet) {
        if (MeshAccess::visited(tet)) return -1;
        int numEnds = 0;
        int facet = -1;
        for (int i = 0; i < 4; ++i) {
            const Point3* corner = MeshAccess::corner(tet, i);
            if (corner == ends.first || corner == ends.second)
                ++numEnds;
            else if (MeshAccess::neighbour(tet, i) == nullptr)
                facet = i;
        }
        return numEnds == 2 ? facet : -1;
    }

    bool isRemembered(HullEdge& edge) {
        if (lastTets.empty()) return false;
        const auto found = lastTets.find({edge.low(), edge.high()});
        if (found == lastTets.end()) return false;
        // The tetrahedron to begin with has the hull facet to be left, which is not the end.
        Tet3* tet = found->second;
        if (tet == edge.tet) return false;
        const int facet = hullFacetAt(found->first, tet);
        if (facet < 0) return false;
        edge.tet = tet;
        edge.opp2 = facet;
        return true;
    }

    void remember(const HullEdge& edge) {
        if (lastTets.size() >= maxTurns) forgetOldTurns();
        lastTets[{edge.low(), edge.high()}] = edge.tet;
    }

    /// Keeps what is remembered within twice what is of use.
    void forgetOldTurns() {
        for (auto turn = lastTets.begin(); turn != lastTets.end();)
            turn =
                hullFacetAt(turn->first, turn->second) < 0 ? lastTets.erase(turn) : std::next(turn);
        maxTurns = FEW_TURNS + 2 * lastTets.size();
    }

    std::unordered_map<Ends, Tet3*, HashOfEnds> lastTets;
    std::size_t maxTurns = FEW_TURNS;
};

}  // namespace VARN3D
