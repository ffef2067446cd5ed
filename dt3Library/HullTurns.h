#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "dt3Library/HullEdge.h"

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

  private:
    struct Place {
        const Point3* low = nullptr;
        const Point3* high = nullptr;
        Tet3* tet = nullptr;
    };

    static constexpr std::size_t LONG_TURN = 32;
    /// A place holds the last edge that came there.
    static constexpr std::size_t NUM_PLACES = std::size_t{1} << 14;

    Place& placeOf(const HullEdge& edge) {
        const std::uint64_t hash =
            (reinterpret_cast<std::uintptr_t>(edge.low()) * 0x9E3779B97F4A7C15U ^
             reinterpret_cast<std::uintptr_t>(edge.high())) *
            0xC2B2AE3D27D4EB4FU;
        return places[static_cast<std::size_t>(hash >> 32) % NUM_PLACES];
    }

    bool isRemembered(HullEdge& edge) {
        if (places.empty()) return false;
        const Place& place = placeOf(edge);
        if (place.low != edge.low() || place.high != edge.high()) return false;
        if (MeshAccess::visited(place.tet)) return false;
        int numEnds = 0;
        int end = -1;
        for (int i = 0; i < 4; ++i) {
            const Point3* corner = MeshAccess::corner(place.tet, i);
            if (corner == place.low || corner == place.high)
                ++numEnds;
            else if (MeshAccess::neighbour(place.tet, i) == nullptr &&
                     (place.tet != edge.tet || i == edge.opp2))
                end = i;
        }
        if (numEnds != 2 || end < 0) return false;
        edge.tet = place.tet;
        edge.opp2 = end;
        return true;
    }

    void remember(const HullEdge& edge) {
        if (places.empty()) places.resize(NUM_PLACES);
        placeOf(edge) = {edge.low(), edge.high(), edge.tet};
    }

    std::vector<Place> places;
};

}  // namespace VARN3D
