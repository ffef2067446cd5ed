#pragma once

#include "dt3Library/GeomTest3.h"
#include "dt3Library/engine/WalkEnd.h"

namespace VARN3D {

/// Finds points in the mesh, by walks across facets. It changes nothing, so several threads may use
/// one on a mesh at rest.
class Locator {
  public:
    explicit Locator(const GeomTest3& geomTest) : predicates(geomTest) {}

    /// Walks from a tetrahedron of the mesh to where the point lies. `OnTheWay` means that a
    /// watchdog has stopped the walk, and has said so; only a mesh broken from outside makes it do
    /// so, or a check fail.
    WalkEnd locate(const Point3* point, Tet3* start) const;

    /// The same by at most so many facet tests. `OnTheWay` means that these were too few.
    WalkEnd walk(const Point3* point, Tet3* start, int maxSteps) const;

  private:
    WalkEnd lookAroundNearestVertex(const Point3& point, Tet3* start) const;
    WalkEnd lookInPlane(const Point3* point, Tet3* tet, int facet) const;
    void checkEntry(const Tet3* tet, int entry, const Point3* point, const FacetSides& sides) const;

    const GeomTest3& predicates;
};

}  // namespace VARN3D
