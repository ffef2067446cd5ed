#pragma once

#include <cstddef>
#include <iterator>
#include <optional>
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

    /// The edge between the ends at a tetrahedron's hull facet; nothing if that has none there, or
    /// is no longer in the mesh.
    static std::optional<HullEdge> findEnd(const Ends& ends, Tet3* tet) {
        if (MeshAccess::visited(tet)) return std::nullopt;
        int beside[4];
        int numBeside = 0;
        for (int i = 0; i < 4; ++i) {
            const Point3* corner = MeshAccess::corner(tet, i);
            if (corner != ends.first && corner != ends.second) beside[numBeside++] = i;
        }
        if (numBeside != 2) return std::nullopt;
        for (int i = 0; i < 2; ++i) {
            const HullEdge edge{tet, beside[1 - i], beside[i]};
            if (edge.isAtHull()) return edge;
        }
        return std::nullopt;
    }

    bool isRemembered(HullEdge& edge) {
        if (lastTets.empty()) return false;
        const auto found = lastTets.find(edge.ends());
        // The tetrahedron to begin with has the hull facet to be left, which is not the end.
        if (found == lastTets.end() || found->second == edge.tet) return false;
        const auto end = findEnd(found->first, found->second);
        if (end) edge = *end;
        return end.has_value();
    }

    void remember(const HullEdge& edge) {
        if (lastTets.size() >= maxTurns) forgetOldTurns();
        lastTets[edge.ends()] = edge.tet;
    }

    /// Keeps what is remembered within twice what is of use.
    void forgetOldTurns() {
        for (auto turn = lastTets.begin(); turn != lastTets.end();)
            turn = findEnd(turn->first, turn->second) ? std::next(turn) : lastTets.erase(turn);
        maxTurns = FEW_TURNS + 2 * lastTets.size();
    }

    std::unordered_map<Ends, Tet3*, HashOfEnds> lastTets;
    std::size_t maxTurns = FEW_TURNS;
};

}  // namespace VARN3D
