#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "dt3Library/Bbox3.h"
#include "dt3Library/InsertionOrder.h"
#include "dt3Library/Point3.h"

namespace VARN3D {

/// For each vertex of a batch, the vertices next to it in spatial order that will have been
/// inserted before it.
///
/// Usually the walk to a new vertex starts at the one inserted before it, and is short. Where the
/// insertion order says little about space (a box long or thin along one axis, one far outlier)
/// such walks would cross the whole mesh; then it starts at one of these neighbours. They are found
/// for the whole batch in linear time after sorting, by deleting the vertices from a linked list in
/// reverse insertion order.
class WalkStarts {
  public:
    bool isReady() const { return pVertices != nullptr; }

    /// Prepares for all positions that `order` has yet to give; from now on they come from here.
    /// The vertices must outlive this object. O(n log n), 20 bytes a vertex.
    void prepare(const std::vector<Point3*>& vVertices, InsertionOrder order, const Bbox3& box);

    /// The next position; false at the end. Such batches jump to and fro in the mesh, so it also
    /// has the processor load what the insertions after this one are going to read.
    bool next(std::size_t& position);

    /// A tetrahedron at the nearest of the neighbours and `current`, where to start the walk.
    Tet3* nearest(std::size_t position, Tet3* current) const;

  private:
    using Position = std::uint32_t;
    static constexpr Position NONE = 0xFFFFFFFF;

    struct Ranked {
        std::uint64_t cellCode;
        Position position;
    };

    void sortInSpace(Ranked* first, Ranked* last, const Bbox3& box) const;
    Point3* vertexAt(Position position) const { return (*pVertices)[position]; }
    template <class F>
    void forNeighbours(std::size_t position, F f) const;
    void fetchVertices(std::size_t position) const;
    void fetchTets(std::size_t position) const;
    void fetchStar(std::size_t position) const;
    void fetchSurroundings(std::size_t position) const;

    const std::vector<Point3*>* pVertices = nullptr;
    std::vector<Position> predecessors;
    std::vector<Position> successors;
    std::vector<Position> remaining;
    std::size_t cursor = 0;
};

}  // namespace VARN3D
