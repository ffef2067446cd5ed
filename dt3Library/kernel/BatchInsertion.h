#pragma once

#include <cstddef>
#include <memory>
#include <vector>

#include "dt3Library/GeomTest3.h"
#include "dt3Library/HC3.h"
#include "dt3Library/base/BatchProgress.h"
#include "dt3Library/engine/TetRecycler.h"
#include "dt3Library/geom_tools/PoolIndex.h"
#include "dt3Library/kernel/BatchState.h"
#include "dt3Library/kernel/ExactFrame.h"

namespace VARN3D {

/// Inserts a batch of vertices into a mesh of records: takes the mesh over into a compact one, of
/// numbers instead of pointers and with cached circumspheres, inserts there, and writes the records
/// anew in the end. While a batch is inserted nobody sees the mesh, so it may have the form in
/// which insertion is fastest.
///
/// It makes the same mesh as insertions one by one in the same order would: the same tetrahedra,
/// with the same order of corners and neighbours, and labels in the order of insertion. Nothing of
/// the records, vertices and labels changes until all memory has been found, so a batch that throws
/// is as if it had never been. Serves one batch.
class BatchInsertion {
  public:
    /// Whether a batch is large enough against the mesh to pay for taking over the mesh.
    static bool pays(std::size_t numNew, std::size_t numInMesh) { return numNew >= numInMesh; }

    BatchInsertion(const GeomTest3& geomTest, const KernelSteps& kernelSteps, TetRecycler& recycler,
                   const HC3& vertexStore, BatchProgress& batchProgress);

    /// Inserts the vertices of the list that are not in the mesh, in the order of InsertionOrder,
    /// beginning at a tetrahedron of the mesh, as long as the host wants it to go on. Returns a
    /// tetrahedron of the new mesh; all pointers to tetrahedra from before are void. Throws
    /// std::bad_alloc and, on a mesh with faults, VarnException.
    Tet3* run(std::vector<Point3*>& vVertices, const Tet3* pStart);

    /// How many vertices the mesh has.
    std::size_t getNumVertices() const { return points.size() - 1; }

  private:
    void listMeshVertices();
    void listNewVertices(std::vector<Point3*>& vVertices);
    void prefetchAhead(std::size_t i) const;
    ExactFrame frameOfAll() const;
    void setUpState();
    bool goesOnAt(VertexNumber vertex);
    void insertAlongOrder(VertexNumber& vertex, Slot start);
    void insertBesideEarlier(VertexNumber& vertex);

    const GeomTest3& predicates;
    const KernelSteps& steps;
    TetRecycler& tets;
    BatchProgress& progress;

    const PoolIndex<Tet3> records;
    const PoolIndex<Point3> storeIndex;
    /// The vertices by their numbers: those of the mesh, then the new ones in the order of their
    /// insertion.
    std::vector<Point3*> points;
    VertexNumber firstNew = 0;
    /// Of all vertices of the store.
    Bbox3 box;
    /// The numbers of the mesh's vertices by their places in the store.
    std::vector<VertexNumber> numberInStore;
    std::unique_ptr<BatchState> state;
};

}  // namespace VARN3D
