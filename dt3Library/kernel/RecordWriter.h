#pragma once

#include <cstdint>
#include <vector>

#include "dt3Library/base/BatchProgress.h"
#include "dt3Library/engine/TetRecycler.h"
#include "dt3Library/geom_tools/PoolIndex.h"
#include "dt3Library/kernel/BatchState.h"

namespace VARN3D {

/// Turns a compact mesh into records. They are written over the compact tetrahedra, in the memory
/// that these lie in, so that there are never two meshes at once: slot i becomes record i.
class RecordWriter {
  public:
    /// `points` holds the vertices by their numbers, `firstNew` is the number of the first that
    /// this batch has inserted, and `oldRecords` are the records that the mesh was loaded from.
    RecordWriter(BatchState& batchState, const std::vector<Point3*>& points, VertexNumber firstNew,
                 const PoolIndex<Tet3>& oldRecords, BatchProgress& batchProgress)
        : state(batchState),
          vertices(points),
          firstNewVertex(firstNew),
          loaded(oldRecords),
          progress(batchProgress) {}

    /// Replaces the recycler's records. Tetrahedra that were loaded and are still there keep label
    /// and custom index; the new ones get labels in the order of insertion. Throws std::bad_alloc,
    /// and what the host's function throws; records and vertices are then as they were. Returns a
    /// tetrahedron of the mesh. O(n).
    Tet3* writeTo(TetRecycler& tets);

  private:
    std::vector<Tet3*> listTetsOfVertices() const;
    void writeAll();
    /// What a record needs of a compact tetrahedron.
    struct Topology {
        VertexNumber vertex[4];
        FacetCode link[4];

        explicit Topology(const CompactTet* tet);
    };

    void prefetchBefore(Slot slot) const;
    void writeNext(Slot slot, const Topology& tet);
    void write(Slot slot, const Topology& tet);
    void writeFree(Slot slot, const Topology& tet);

    BatchState& state;
    const std::vector<Point3*>& vertices;
    const VertexNumber firstNewVertex;
    const PoolIndex<Tet3>& loaded;
    BatchProgress& progress;

    Tet3* records = nullptr;
    Slot numSlots = 0;
    std::uint32_t firstLabel = 0;
    /// How many tetrahedra have been made before the next one of each new vertex.
    std::vector<std::uint32_t> nextLabels;
    std::vector<Tet3*> freeRecords;
    /// The hull facets.
    std::vector<FacetCode> hull;
    Tet3* anyRecord = nullptr;
};

}  // namespace VARN3D
