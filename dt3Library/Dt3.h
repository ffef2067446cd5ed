#pragma once

#include <string>
#include <vector>

#include "dt3Library/Facet3.h"
#include "dt3Library/GeomTest3.h"
#include "dt3Library/HC3.h"
#include "dt3Library/engine/AffineSpan.h"
#include "dt3Library/engine/Cavity.h"
#include "dt3Library/engine/HullEdge.h"
#include "dt3Library/engine/HullTurns.h"
#include "dt3Library/engine/PointerPairSet.h"
#include "dt3Library/engine/TetRecycler.h"
#include "dt3Library/engine/indexMesh.h"
#include "dt3Library/kernel/BatchState.h"

namespace VARN3D {

class Varn_3D;

/// The triangulation engine behind `Varn_3D`: incremental insertion by conflict regions.
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
    /// Location results besides the facet indices 0 to 3.
    enum LocationResult {
        LOCATED_INSIDE = -1,
        LOCATED_VERTEX = -2,
        LOCATION_STOPPED = -99,
    };

    /// The mesh doesn't depend on the kernel's steps.
    explicit Dt3(Varn_3D* pOwner, const KernelSteps& steps = fastestSteps());
    Dt3(const Dt3&) = delete;
    Dt3& operator=(const Dt3&) = delete;

    Varn_3D* getOwner() const { return pOwner; }
    bool is3D() const { return bFullDimensional; }
    void setVerbosity(bool bOn) { bVerbose = bOn; }

    // Insertion

    /// Batch insertion: one handle for each input point, in input order. Prints "numPoints=" and
    /// the count. A coordinate that is not finite is refused before anything is stored.
    void insert(const InputPoints& vInputPoints, std::vector<Point3*>& vUserHandles);
    /// Single insertion.
    Point3* insert(const Point3& point);
    /// Inserts the listed vertices, starting at a tetrahedron of the mesh. A vertex that equals one
    /// of the mesh is replaced by it in the list.
    void triangulate(std::vector<Point3*>& vVertices, Tet3* pLastTet);
    /// Inserts one vertex. Returns the tetrahedron from which the next walk should start.
    Tet3* insertVertex(Point3*& pVtx, Tet3* pCurTet);

    // Location

    /// Walks from pStartTet to the tetrahedron that holds the point and leaves it there. Returns
    /// one of the location results, or the index of a hull facet that the point lies beyond or on.
    int locateConflictTet(const Point3* pVtx, Tet3*& pStartTet) const;
    /// The tetrahedron that holds the point; null outside the hull and on its surface.
    Tet3* locate(const Point3& point);

    // Queries

    void getVertices(std::vector<Point3*>& vVertices) const { store.getVertices(vVertices); }
    std::size_t getNumVertices() const { return store.getNumVertices(); }
    std::size_t getNumTetrahedra() const { return tets.getNumLive(); }
    /// How many vertices are in no tetrahedron.
    std::size_t getNumWaiting() const { return store.getNumVertices() - numInMesh; }
    void getAllTetrahedra(std::vector<Tet3*>& vTet) const;
    void getHullFacets(std::vector<Facet3>& vFacets) const;
    IndexedMesh getIndexedMesh() const { return indexMesh(tets, store.getNumbers()); }
    static void getTetsAroundVertex(Point3* pVtx, std::vector<Tet3*>& vTets);

    // Diagnostics

    bool checkValidity(const std::string& location, bool checkVisited, bool checkSphereInc) const;
    void show(const std::string& filename, Point3* pVertex) const;
    void print(const std::string& label) const;

  private:
    // Start-up
    Tet3* startUp();
    bool findStartUpSimplex(const std::vector<Point3*>& vVertices, Point3* simplex[4]) const;
    bool spansSpace(const std::vector<Point3*>& vNew);

    // Insertion steps
    void insertFirstBatch(std::vector<Point3*>& vNew, std::size_t numPoints);
    void insertLaterBatch(std::vector<Point3*>& vNew);
    void insertAtOnce(std::vector<Point3*>& vVertices, const Tet3* pStart);
    void takeInLeftOver(std::vector<Point3*>& vNew) const;
    Tet3* startTetNear(const Point3& point);
    Tet3* insertLocated(Point3*& pVtx, Tet3* pCurTet, int locateResult);
    Tet3* insertDuplicate(Point3*& pVtx, Tet3* pCurTet, int locateResult) const;

    // Walk
    static constexpr int MAX_STEPS = 10000;
    int walk(const Point3* pVtx, Tet3*& pStartTet, int maxSteps) const;
    int locateAtNearestVertex(const Point3& point, Tet3*& pTet) const;
    static void findNearestStar(const Point3& point, Tet3* pTet, const Point3*& pNearest,
                                std::vector<Tet3*>& star);
    static void stopWalk(Tet3*& pTet);
    void checkEntry(const Tet3* pStartTet, int entry, const Point3* pVtx,
                    const FacetSides& sides) const;
    int examineCoplanar(const Point3* pVtx, Tet3*& pStartTet, int facet) const;
    static int circulateToHull(Tet3*& pStartTet, int opp3ICI, int opp2ICI);

    // Outside the hull
    Tet3* insertOutsideHull(Point3* pVtx, Tet3* pCurTet, int opp3ICI);
    void collectVisibleHullTets(const Point3* pVtx, Tet3* pCurTet, int opp3ICI);

    // Faults
    bool checkTet(const std::string& location, Tet3* pTet, bool checkSphereInc) const;
    void reportNegativeSide(const std::string& location, Tet3* pTet, int ith, Point3* pVtx,
                            Orientation3 orientation) const;
    static void reportSphere(Tet3* pTet, Point3* pVtx);

    GeomTest3 predicates;
    TetRecycler tets;
    Cavity cavity;
    bool bFullDimensional = false;
    HC3 store;
    /// How many vertices are corners of tetrahedra.
    std::size_t numInMesh = 0;
    AffineSpan span;
    Varn_3D* pOwner;
    const KernelSteps& kernelSteps;
    bool bVerbose = false;
    /// Whether an insertion has failed and no batch has come to its end since.
    bool bFailed = false;
    /// A tetrahedron of the mesh: where the last insertion ended.
    Tet3* pRecentTet = nullptr;

    // Lists of one insertion outside the hull, kept for their memory.
    std::vector<Tet3*> vVisible;
    std::vector<HullEdge> hullEdges;
    HullTurns hullTurns;
    PointerPairSet seenEdges;
    PointerPairSet seenTets;
};

}  // namespace VARN3D
