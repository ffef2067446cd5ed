#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

#include "dt3Library/kernel/CompactMesh.h"

namespace VARN3D {

/// The cavity numbers of a boundary facet's corners, as the new tetrahedron's corners 1, 2, 3.
struct CavityFacet {
    std::uint32_t number[3];
};

/// Finds, for the new tetrahedra of one insertion, what lies across their facets through the new
/// vertex.
///
/// Each such facet holds one edge of the cavity's boundary, and its partner holds the same edge in
/// the other direction, for all new tetrahedra are positively oriented. The vertices of the cavity
/// have small numbers, so an edge is a place in a square table; nothing is ever cleared, for every
/// edge that is asked for has been entered in the same insertion. Cavities of very many vertices
/// use hashing instead.
class EdgeTable {
  public:
    /// Up to so many vertices an edge is a place in the table.
    static constexpr std::size_t MAX_SIDE = 256;

    /// The table for one cavity.
    class Square {
      public:
        /// Whether the cavity has few enough vertices.
        bool fits() const { return table != nullptr; }
        /// Enters the three edges of the new tetrahedron's facet.
        void enter(const CavityFacet& facet, Slot slot) {
            const auto& number = facet.number;
            table[place(number[0], number[1])] = facetCode(slot, 3);
            table[place(number[1], number[2])] = facetCode(slot, 1);
            table[place(number[2], number[0])] = facetCode(slot, 2);
        }
        /// Writes links 1 to 3, when all edges have been entered.
        void link(const CavityFacet& facet, CompactTet& tet) const {
            const auto& number = facet.number;
            tet.link[1] = table[place(number[2], number[1])];
            tet.link[2] = table[place(number[0], number[2])];
            tet.link[3] = table[place(number[1], number[0])];
        }

      private:
        friend class EdgeTable;
        Square(FacetCode* edges, unsigned log2OfSide) : table(edges), shift(log2OfSide) {}
        std::size_t place(std::uint32_t from, std::uint32_t to) const {
            return std::size_t{from} << shift | to;
        }

        FacetCode* table;
        unsigned shift;
    };

    /// For a cavity of so many vertices; all numbers will be below eight times as many, and more
    /// than so many are never read. Throws std::bad_alloc.
    Square square(std::size_t numVertices) {
        if (numVertices > MAX_SIDE) return {nullptr, 0};
        if (numVertices > std::size_t{1} << shift || table == nullptr) grow(numVertices);
        return {table.get(), shift};
    }

    /// For cavities of any size: writes links 1 to 3 of the tetrahedra in these slots, in expected
    /// linear time. Returns how many facets have no partner.
    std::size_t linkByHashing(const std::vector<CavityFacet>& facets, std::size_t numFacets,
                              const Slot* slots, CompactTet* tets);

  private:
    struct Entry {
        std::uint64_t edge;
        FacetCode code;
    };

    struct Free {
        void operator()(FacetCode* memory) const;
    };

    void grow(std::size_t numVertices);

    std::unique_ptr<FacetCode[], Free> table;
    unsigned shift = 6;
    std::vector<Entry> hash;
};

}  // namespace VARN3D
