#pragma once

#include <cstddef>
#include <limits>
#include <vector>

#include "dt3Library/geom_tools/SimplePool.h"
#include "dt3Library/store/SpatialOrder.h"

namespace VARN3D {

/// All vertices in spatial order, to find a point again and the vertices near it.
///
/// The entries lie in sorted blocks of bounded size, and the blocks' first entries in an array of
/// their own: a look-up is two binary searches in contiguous memory, an insertion moves at most one
/// block's entries (and the array when a block splits).
class VertexTable {
  public:
    /// A place in the table; it means nothing after the next change.
    struct Place {
        std::size_t block;
        std::size_t index;
    };
    static constexpr std::size_t EVERYTHING = std::numeric_limits<std::size_t>::max();

    /// Makes the table anew from every `stride`th vertex of the pool. O(n log n) for n of them.
    void build(const SimplePool<Point3>& vertices, const Bbox3& box, std::size_t stride = 1);

    /// Where the point stands or would stand: the first entry that does not precede it.
    Place lowerBound(const Point3& point) const;

    /// The vertex at this place if it has the point's coordinates, else null.
    Point3* vertexAt(Place place, const Point3& point) const;

    /// Enters a vertex at its lower bound.
    void insert(Place place, Point3* vertex);

    /// The incident tetrahedron of a vertex near the point: of the nearest among the first few
    /// vertices of the mesh on either side of the place, within so many entries. Null if there is
    /// none.
    Tet3* findTet(Place place, const Point3& point, std::size_t entriesASide) const;

  private:
    using Entry = SpatialOrder::Entry;
    using Block = std::vector<Entry>;

    static constexpr std::size_t BLOCK_CAPACITY = 256;

    bool stepForward(Place& place) const;
    bool stepBackward(Place& place) const;
    void splitBlock(std::size_t block);

    SpatialOrder order;
    std::vector<Block> blocks;
    std::vector<Entry> firstEntries;
};

}  // namespace VARN3D
