#pragma once

#include <vector>

#include "dt3Library/base/BatchProgress.h"
#include "dt3Library/engine/TetRecycler.h"
#include "dt3Library/geom_tools/PoolIndex.h"
#include "dt3Library/kernel/BatchState.h"

namespace VARN3D {

/// Takes a mesh of records over into a compact mesh. Record i of the pool becomes slot i + 1, free
/// records become free slots, and ghosts follow after them.
class MeshLoader {
  public:
    /// `numbers` holds the numbers of the mesh's vertices by their places in the store; all
    /// vertices are in the state already.
    MeshLoader(const TetRecycler& recycler, const PoolIndex<Tet3>& recordIndex,
               const PoolIndex<Point3>& vertexIndex, const std::vector<VertexNumber>& numbers,
               BatchState& batchState)
        : tets(recycler),
          records(recordIndex),
          vertices(vertexIndex),
          numberOfVertex(numbers),
          state(batchState) {}

    /// O(n). Throws std::bad_alloc, and what the host's function throws, which can't stop it
    /// otherwise.
    void load(const KernelSteps& steps, BatchProgress& progress);

    Slot slotOfRecord(const Tet3* record) const {
        return static_cast<Slot>(records.indexOf(record)) + 1;
    }

  private:
    void loadRecord(const Tet3* record, Slot slot);
    void addGhosts();

    const TetRecycler& tets;
    const PoolIndex<Tet3>& records;
    const PoolIndex<Point3>& vertices;
    const std::vector<VertexNumber>& numberOfVertex;
    BatchState& state;
    /// Hull facets, as codes.
    std::vector<FacetCode> hull;
};

}  // namespace VARN3D
