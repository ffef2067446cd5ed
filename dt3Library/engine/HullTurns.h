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
    void forgetAll() { lastTurns.clear(); }

  private:
    using Ends = std::pair<const Point3*, const Point3*>;

    struct HashOfEnds {
        std::size_t operator()(const Ends& ends) const {
            return static_cast<std::size_t>(hashPointers(ends.first, ends.second) >> 32);
        }
    };

    static constexpr std::size_t LONG_TURN = 32;
    static constexpr std::size_t FEW_TURNS = 1024;

    /// Whether an edge still has these ends, and is at the hull.
    static bool isEnd(const HullEdge& edge, const Ends& ends) {
        return !MeshAccess::visited(edge.tet) && edge.ends() == ends && edge.isAtHull();
    }

    bool isRemembered(HullEdge& edge) {
        if (lastTurns.empty()) return false;
        const auto found = lastTurns.find(edge.ends());
        if (found == lastTurns.end() || !isEnd(found->second, found->first)) return false;
        // The tetrahedron to begin with has the hull facet to be left, which is not the end.
        if (found->second.tet == edge.tet) return false;
        edge = found->second;
        return true;
    }

    void remember(const HullEdge& edge) {
        if (lastTurns.size() >= maxTurns) forgetOldTurns();
        lastTurns[edge.ends()] = edge;
    }

    /// Keeps what is remembered within twice what is of use.
    void forgetOldTurns() {
        for (auto turn = lastTurns.begin(); turn != lastTurns.end();)
            turn = isEnd(turn->second, turn->first) ? std::next(turn) : lastTurns.erase(turn);
        maxTurns = FEW_TURNS + 2 * lastTurns.size();
    }

    std::unordered_map<Ends, HullEdge, HashOfEnds> lastTurns;
    std::size_t maxTurns = FEW_TURNS;
};

}  // namespace VARN3D
