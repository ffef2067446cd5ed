#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "dt3Library/MeshAccess.h"

namespace VARN3D {

/// Makes neighbours of the new tetrahedra of one insertion.
///
/// Every new tetrahedron has the new vertex as corner 0; each of its other three facets holds the
/// new vertex and one edge of the cavity's boundary. Two of these facets are the same facet exactly
/// when they hold the same edge, once in either direction, for all new tetrahedra are positively
/// oriented. Cavity vertices have small numbers, so an edge is a place in a square table: all
/// tetrahedra write themselves under their directed edges, and then each reads its partners under
/// the opposite ones. What an earlier insertion left in the table gives itself away by not having
/// the edge that was looked for, so nothing is ever cleared. Cavities with too many vertices use a
/// hash table instead.
class FacetGluing {
  public:
    FacetGluing();

    /// Forgets the tetrahedra of the last insertion.
    void begin() { fans.clear(); }

    /// Takes a tetrahedron whose corners 1, 2, 3 have these cavity numbers.
    void add(Tet3* tet, int number1, int number2, int number3) {
        fans.push_back({tet, {number1, number2, number3, number1, number2}});
    }

    std::size_t size() const { return fans.size(); }

    /// Links all partners. Returns how many facets found none: they are left without neighbour.
    /// `numVertices` bounds the cavity numbers. Expected time O(n).
    std::size_t glue(std::size_t numVertices);

  private:
    struct Fan {
        Tet3* tet;
        /// The numbers of corners 1, 2, 3, 1, 2: facet k + 1 holds the edge from [k + 1] to [k +
        /// 2].
        std::int32_t number[5];
    };

    /// Tetrahedron and facet in one number: 4 * position in fans + k.
    using Code = std::uint32_t;

    static constexpr std::size_t TABLE_SIDE = 128;

    bool hasEdge(Code code, std::int32_t source, std::int32_t target) const {
        const std::size_t position = code >> 2;
        if (position >= fans.size()) return false;
        const std::int32_t* number = fans[position].number + (code & 3);
        return number[1] == source && number[2] == target;
    }
    void link(Fan& fan, int k, Code partner) {
        MeshAccess::neighbour(fan.tet, k + 1) = fans[partner >> 2].tet;
    }
    std::size_t glueByTable();
    std::size_t glueByHash();

    std::vector<Fan> fans;
    std::vector<std::uint16_t> table;
    /// Open addressing; 1 + code, 0 is an empty place.
    std::vector<Code> hash;
};

}  // namespace VARN3D
