#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "dt3Library/Facet3.h"
#include "dt3Library/GeomTest3.h"
#include "dt3Library/HC3.h"
#include "dt3Library/base/BatchProgress.h"
#include "dt3Library/engine/AffineSpan.h"
#include "dt3Library/engine/Cavity.h"
#include "dt3Library/engine/Locator.h"
#include "dt3Library/engine/TetRecycler.h"
#include "dt3Library/engine/indexMesh.h"
#include "dt3Library/kernel/BatchState.h"

namespace VARN3D {

/// The triangulation engine behind `Varn_3D`: incremental insertion by conflict regions. It owns
/// vertices and tetrahedra and drives those who do the work.
///
/// Between insertions the mesh satisfies:
///  (I1) every tetrahedron is positively oriented;
///  (I2) neighbour i of a tetrahedron lies across the facet opposite corner i, has that tetrahedron
///       as a neighbour in turn, and is null exactly where the facet lies on the convex hull;
///  (I3) no vertex lies strictly inside the circumsphere of a tetrahedron;
///  (I4) no tetrahedron of the mesh has its visited mark set;
///  (I5) a vertex's tetrahedron is a tetrahedron of the mesh that has it as a corner; a vertex that
///       is stored but not in the mesh has none.
///
/// There are no infinite tetrahedra. Vertices live as long as the engine; tetrahedra until an
/// insertion dooms them. Not thread-safe: one engine is used by one thread at a time; engines in
/// different threads don't disturb each other.
///
/// Where memory runs out in an insertion, the mesh is what the vertices inserted before have made
/// it, and the engine can be used on: the vertices that were not reached may be stored and wait.
/// Each is taken in when it is inserted again, and all are by the next batch. After a failed check
/// in an insertion the engine can only be destroyed; its vertices can still be read.
class Dt3 {
  public:
    /// The mesh doesn't depend on the kernel's steps.
    explicit Dt3(const KernelSteps& steps = fastestSteps());
    Dt3(const Dt3&) = delete;
    Dt3& operator=(const Dt3&) = delete;

    bool is3D() const { return bFullDimensional; }
    int getDimension() const { return span.getDimension(); }
    void setVerbosity(bool bOn) { bVerbose = bOn; }

    // Insertion

    /// Batch insertion: one handle for each input point, in input order. Prints "numPoints=" and
    /// the count. A coordinate that is not finite is refused before anything is stored.
    void insert(const InputPoints& vInputPoints, std::vector<Point3*>& vUserHandles);
    /// Single insertion.
    Point3* insert(const Point3& point);
    /// Takes the vertices that wait into the mesh. Returns how many.
    std::size_t insertWaiting();
    BatchProgress& getProgress() { return progress; }
    /// Inserts the listed vertices, starting at a tetrahedron of the mesh. A vertex that equals one
    /// of the mesh is replaced by it in the list.
    void triangulate(std::vector<Point3*>& vVertices, Tet3* pLastTet);
    /// Inserts one vertex; one that equals a vertex of the mesh is replaced by it. Returns the
    /// tetrahedron from which the next walk should start.
    Tet3* insertVertex(Point3*& pVtx, Tet3* pCurTet);

    // Queries

    const HC3& getStore() const { return store; }
    /// A tetrahedron of the mesh; null while there is none.
    Tet3* getRecentTet() const { return pRecentTet; }
    /// Another number after each call that may change vertices or mesh.
    std::uint64_t getRevision() const { return revision; }
    /// The tetrahedron that holds the point; null outside the hull and on its surface.
    Tet3* locate(const Point3& point);
    void getVertices(std::vector<Point3*>& vVertices) const { store.getVertices(vVertices); }
    std::size_t getNumVertices() const { return store.getNumVertices(); }
    std::size_t getNumTetrahedra() const { return tets.getNumLive(); }
    /// How many vertices are in no tetrahedron.
    std::size_t getNumWaiting() const { return store.getNumVertices() - numInMesh; }
    void getAllTetrahedra(std::vector<Tet3*>& vTet) const;
    void getHullFacets(std::vector<Facet3>& vFacets) const;
    IndexedMesh getIndexedMesh() const { return indexMesh(tets, store.getNumbers()); }

    // Diagnostics

    bool checkValidity(const std::string& location, bool checkSphereInc) const;
    void show(const std::string& filename, const Point3* pVertex) const;
    void print(const std::string& label) const;

  private:
    std::vector<Tet3*> listTetrahedra() const;
    Tet3* startUp();
    bool spansSpace(const std::vector<Point3*>& vNew);
    void insertFirstBatch(std::vector<Point3*>& vNew, std::size_t numPoints);
    void insertLaterBatch(std::vector<Point3*>& vNew);
    void insertAtOnce(std::vector<Point3*>& vVertices, const Tet3* pStart);
    std::vector<Point3*> listWaiting() const;
    void insertOneByOne(std::vector<Point3*>& vNew);
    Tet3* startTetNear(const Point3& point);

    GeomTest3 predicates;
    Locator locator;
    TetRecycler tets;
    Cavity cavity;
    bool bFullDimensional = false;
    HC3 store;
    /// How many vertices are corners of tetrahedra.
    std::size_t numInMesh = 0;
    AffineSpan span;
    const KernelSteps& kernelSteps;
    bool bVerbose = false;
    BatchProgress progress;
    std::uint64_t revision = 0;
    /// Whether an insertion has failed and no batch has come to its end since.
    bool bFailed = false;
    /// A tetrahedron of the mesh: where the last insertion ended.
    Tet3* pRecentTet = nullptr;
};

}  // namespace VARN3D
