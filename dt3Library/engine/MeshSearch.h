#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "dt3Library/GeomTest3.h"
#include "dt3Library/Location.h"
#include "dt3Library/engine/Locator.h"
#include "dt3Library/engine/PointerPairSet.h"
#include "dt3Library/engine/VisibleHull.h"
#include "dt3Library/store/VertexTable.h"

namespace VARN3D {

class Dt3;

/// Queries to a mesh that remember where the last one ended. They read the mesh only, not even its
/// visited marks are used, so any number of searches go on at once.
class MeshSearch {
  public:
    explicit MeshSearch(const Dt3& theEngine)
        : engine(theEngine), locator(predicates), hull(predicates) {}
    MeshSearch(const MeshSearch&) = delete;
    MeshSearch& operator=(const MeshSearch&) = delete;

    Location locate(const Point3& point);

    /// The nearest vertex, of several the one with the lowest number. Null if there is none.
    Point3* findNearest(const Point3& point);

    /// Appends the tetrahedra that an insertion of the point would replace.
    void listConflicts(const Point3& point, std::vector<Tet3*>& region);

  private:
    void noticeChanges();
    int walkTo(const Point3& point);
    void startNear(const Point3& point);
    Location classify(const Point3& point, int walkEnd) const;

    void listWaiting();
    void descend(const Point3& point);
    void considerNeighbours(const Point3* centre, const Point3& point);
    void consider(Point3* vertex, const Point3& point);

    const Dt3& engine;
    GeomTest3 predicates;
    Locator locator;
    /// Of the mesh as this search knows it.
    std::uint64_t revision = ~std::uint64_t{0};
    /// Where the last query ended; null while there are no tetrahedra.
    Tet3* tet = nullptr;
    /// Whether the last query's point was far from the one before.
    bool bScattered = false;
    /// Some of the vertices, and whether they have been taken.
    VertexTable sample;
    bool bSampled = false;
    /// The vertices that are in no tetrahedron, and whether they have been listed.
    std::vector<Point3*> waiting;
    bool bWaitingListed = false;

    VisibleHull hull;

    // Of one query, kept for their memory.
    /// The nearest vertices so far, all at the same distance.
    std::vector<Point3*> nearest;
    /// In plain floating point, a vertex at a larger squared distance is certainly farther.
    double nearestLimit = 0.0;
    PointerPairSet seenVertices;
    PointerPairSet seenTets;
    std::vector<const Tet3*> star;
};

}  // namespace VARN3D
