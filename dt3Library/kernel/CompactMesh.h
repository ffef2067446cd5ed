#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

#include "dt3Library/Tet3.h"
#include "dt3Library/base/bits.h"
#include "dt3Library/base/facets.h"
#include "dt3Library/geom_tools/SimplePool.h"

namespace VARN3D {

/// The number of a vertex in a batch's compact mesh. 0 is the vertex at infinity.
using VertexNumber = std::uint32_t;
/// The place of a tetrahedron in the compact mesh.
using Slot = std::uint32_t;
/// A facet of a tetrahedron, as 4 * slot + the corner opposite.
using FacetCode = std::uint32_t;

constexpr VertexNumber AT_INFINITY = 0;

constexpr FacetCode facetCode(Slot slot, unsigned facet) {
    return 4 * slot + facet;
}
constexpr Slot slotOf(FacetCode code) {
    return code >> 2;
}
constexpr unsigned facetOf(FacetCode code) {
    return code & 3U;
}

/// A vertex in the batch's order of insertion, so that neighbours in space are neighbours in
/// memory.
struct alignas(32) CompactVertex {
    double at[3];
    /// How many finite tetrahedra had been made when this vertex was inserted.
    std::uint32_t firstLabel;
    /// Where it is first among the corners of the facets of a cavity's boundary, as 3 * facet +
    /// corner: of the last cavity that had it.
    std::uint32_t firstListed;
};

/// A tetrahedron in one cache line: whoever asks whether a point lies in its circumsphere reads
/// nothing else, and no search is needed to come back through a facet.
///
/// Ghosts, which have the vertex at infinity among their corners, close the mesh beyond the hull.
/// Their other three corners are a hull facet, seen from outside as the finite neighbour lists it.
/// A slot without a tetrahedron has only the vertex at infinity as corners.
struct alignas(64) CompactTet {
    double centre[3];
    /// NaN where the sphere is not certified: every comparison with it fails.
    float squaredRadius;
    VertexNumber vertex[4];
    /// The last insertion that met this tetrahedron, by its vertex. It is written shortly before
    /// the sphere is read again, so it lies outside the half line that is then loaded at once.
    std::uint32_t mark;
    /// What lies across facet i: the facet's code on the other side.
    FacetCode link[4];

    /// The corner at infinity, 4 if there is none.
    unsigned cornerAtInfinity() const {
        const auto bit = [this](unsigned i) { return vertex[i] == AT_INFINITY ? 1U << i : 0U; };
        return lowestBit(bit(0) | bit(1) | bit(2) | bit(3) | 1U << 4);
    }
    bool isEmpty() const { return (vertex[0] | vertex[1] | vertex[2] | vertex[3]) == AT_INFINITY; }
};
static_assert(sizeof(CompactTet) == 64, "a tetrahedron is one cache line");

/// The mesh during a batch: all links are numbers, and the tetrahedra lie in one block of memory,
/// which is large enough to be turned into the mesh's records in place.
///
/// Slot 0 is a dummy: it lies outside every sphere test, so that loops over several slots at once
/// may run past their end.
class CompactMesh {
  public:
    static constexpr Slot DUMMY = 0;
    /// Facet codes have 32 bits.
    static constexpr std::size_t MAX_SLOTS = std::size_t{1} << 30;

    /// Room for so many vertices, the one at infinity not counted, and for so many tetrahedra at
    /// first. Throws std::bad_alloc.
    CompactMesh(std::size_t numVertices, std::size_t expectedTets);
    CompactMesh(const CompactMesh&) = delete;
    CompactMesh& operator=(const CompactMesh&) = delete;

    CompactVertex* vertices() { return vertexArray.get(); }
    const CompactVertex* vertices() const { return vertexArray.get(); }
    /// The one at infinity included.
    std::size_t numVertices() const { return verticesUsed; }
    CompactTet* tets() { return tetArray; }
    const CompactTet* tets() const { return tetArray; }
    /// All slots below this one have been in use, the dummy included.
    std::size_t numSlots() const { return slotsUsed; }

    /// Makes room for so many more tetrahedra; the array may move. Throws std::bad_alloc.
    void reserve(std::size_t more) {
        if (slotsUsed + more > slotsReady) makeReady(slotsUsed + more);
    }
    /// A slot to be filled; there must be room.
    Slot take() {
        if (freeSlots.empty()) return static_cast<Slot>(slotsUsed++);
        const Slot slot = freeSlots.back();
        freeSlots.pop_back();
        return slot;
    }
    void release(Slot slot);

    std::size_t numFreeSlots() const { return freeSlots.size(); }

    /// Makes the dummy what it must be.
    void resetDummy();

    /// Gives up the vertices' memory.
    void dropVertices() { vertexArray.reset(); }

    /// Gives the block to a pool, of which each slot is a record in use. The tetrahedra remain
    /// where they are. Throws std::bad_alloc, and then the block is not given.
    void giveTo(SimplePool<Tet3>& pool);

  private:
    struct Free {
        void operator()(void* memory) const;
    };

    /// A slot's share of the block: the larger of a tetrahedron and a record.
    static constexpr std::size_t BYTES_PER_SLOT = sizeof(Tet3) > sizeof(CompactTet)
                                                      ? sizeof(Tet3)
                                                      : sizeof(CompactTet);

    static std::size_t checkedCount(std::size_t numVertices);
    void makeReady(std::size_t needed);
    void grow(std::size_t needed);
    void alignTets();

    std::size_t verticesUsed;
    std::unique_ptr<CompactVertex[]> vertexArray;
    std::unique_ptr<void, Free> block;
    CompactTet* tetArray = nullptr;
    std::size_t capacity = 0;
    /// Those whose pages have been asked for.
    std::size_t slotsReady = 0;
    std::size_t slotsUsed = 0;
    std::vector<Slot> freeSlots;
};

}  // namespace VARN3D
