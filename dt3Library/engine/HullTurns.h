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

    /// Takes the edge to a tetrahedron, if that is one of the mesh with a hull facet at the edge.
    static bool jump(const Ends& ends, Tet3* tet, HullEdge& edge) {
        if (MeshAccess::visited(tet)) return false;
        int beside[2] = {-1, -1};
        int numBeside = 0;
        for (int i = 0; i < 4; ++i) {
            const Point3* corner = MeshAccess::corner(tet, i);
            if (corner == ends.first || corner == ends.second) continue;
            if (numBeside == 2) return false;
            beside[numBeside++] = i;
        }
        const bool bFirst = MeshAccess::neighbour(tet, beside[0]) == nullptr;
        edge = {tet, beside[bFirst ? 1 : 0], beside[bFirst ? 0 : 1]};
        return edge.isAtHull();
    }

    bool isRemembered(HullEdge& edge) {
        if (lastTets.empty()) return false;
        const auto found = lastTets.find(edge.ends());
        if (found == lastTets.end()) return false;
        // The tetrahedron to begin with has the hull facet to be left, which is not the end.
        HullEdge end = edge;
        if (found->second == edge.tet || !jump(found->first, found->second, end)) return false;
        edge = end;
        return true;
    }

    void remember(const HullEdge& edge) {
        if (lastTets.size() >= maxTurns) forgetOldTurns();
        lastTets[edge.ends()] = edge.tet;
    }

    /// Keeps what is remembered within twice what is of use.
    void forgetOldTurns() {
        HullEdge end{};
        for (auto turn = lastTets.begin(); turn != lastTets.end();)
            turn = jump(turn->first, turn->second, end) ? std::next(turn) : lastTets.erase(turn);
        maxTurns = FEW_TURNS + 2 * lastTets.size();
    }

    std::unordered_map<Ends, Tet3*, HashOfEnds> lastTets;
    std::size_t maxTurns = FEW_TURNS;
};

}  // namespace VARN3D
