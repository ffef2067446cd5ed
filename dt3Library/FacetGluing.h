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
/// oriented. Cavity vertices have small numbers, so an edge is a place in a square table: every
/// tetrahedron writes itself under its directed edges when it is added, and in the end each reads
/// its partners under the opposite ones. What an earlier insertion left in the table gives itself
/// away by not having the edge that was looked for, so nothing is ever cleared. Cavities with too
/// many vertices use a hash table instead.
class FacetGluing {
  public:
    FacetGluing();

    /// Forgets the tetrahedra of the last insertion. All numbers will be below `numVertices`.
    void begin(std::size_t numVertices) {
        numFans = 0;
        bTable = numVertices <= TABLE_SIDE;
    }

    /// Takes a tetrahedron whose corners 1, 2, 3 have these cavity numbers.
    void add(Tet3* tet, std::int32_t number1, std::int32_t number2, std::int32_t number3) {
        if (numFans == fans.size()) grow();
        fans[numFans] = {tet, {number1, number2, number3}};
        if (bTable) {
            const std::size_t code = 4 * numFans;
            put(code, edgeOf(number1, number2));
            put(code + 1, edgeOf(number2, number3));
            put(code + 2, edgeOf(number3, number1));
        }
        ++numFans;
    }

    /// Links all partners. Returns how many facets found none: they are left without neighbour.
    /// Expected time O(n).
    std::size_t glue();

  private:
    struct Fan {
        Tet3* tet;
        /// The numbers of corners 1, 2, 3. Edge k runs from the k-th to the next one; the corner
        /// opposite its facet is 1 + (k + 2) % 3.
        std::int32_t number[3];
    };

    static constexpr std::size_t TABLE_SIDE = 128;
    /// The most tetrahedra whose codes, 4 * position + k, fit in the table.
    static constexpr std::size_t MAX_TABLE_FANS = 0x4000;

    /// A directed edge as a place in the table.
    static std::uint16_t edgeOf(std::int32_t source, std::int32_t target) {
        return static_cast<std::uint16_t>(static_cast<std::uint32_t>(source) * TABLE_SIDE +
                                          static_cast<std::uint32_t>(target));
    }
    void put(std::size_t code, std::uint16_t edge) {
        edges[code] = edge;
        table[edge] = static_cast<std::uint16_t>(code);
    }
    static void link(const Fan& fan, std::size_t k, const Fan& partner) {
        static constexpr int OPPOSITE[3] = {3, 1, 2};
        MeshAccess::neighbour(fan.tet, OPPOSITE[k]) = partner.tet;
    }
    void grow();
    std::size_t glueByTable();
    std::size_t glueByHash();

    std::size_t numFans = 0;
    bool bTable = true;
    std::vector<Fan> fans;
    /// The edge of each code.
    std::vector<std::uint16_t> edges;
    /// The code that was last written under each edge.
    std::vector<std::uint16_t> table;
    /// Open addressing; 1 + code, 0 is an empty place.
    std::vector<std::size_t> hash;
};

}  // namespace VARN3D
