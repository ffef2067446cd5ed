#pragma once

#include "dt3Library/GeomTest3.h"
#include "dt3Library/kernel/CompactMesh.h"

namespace VARN3D {

/// Decisions about the compact mesh by the exact predicates.
///
/// A finite tetrahedron is in conflict with a point strictly inside its circumsphere; a ghost with
/// one strictly beyond its hull facet, or in that facet's plane and in conflict with the finite
/// neighbour.
class ExactTests {
  public:
    ExactTests(const GeomTest3& geomTest, const CompactMesh& compactMesh)
        : predicates(geomTest), mesh(compactMesh) {}

    bool isInConflict(Slot tet, VertexNumber point) const;
    /// Positive where the point lies strictly beyond a ghost's hull facet.
    Orientation3 sideOfHullFacet(Slot ghost, VertexNumber point) const;
    /// Whether a point lies strictly in the sphere of a finite tetrahedron; for those that plain
    /// determinants can't tell.
    bool isInSphere(Slot tet, VertexNumber point) const;

    /// A visibility walk to a tetrahedron in conflict with the point; counts the tetrahedra that it
    /// passes through. Ends on every mesh without faults; where it does not, prints "watchDog: bad
    /// point", and a check fails.
    Slot walk(Slot start, VertexNumber point, std::uint64_t& numSteps) const;

  private:
    Point3 pointOf(VertexNumber vertex) const;
    Orientation3 orientationWith(const CompactTet& tet, unsigned corner, VertexNumber point) const;

    const GeomTest3& predicates;
    const CompactMesh& mesh;
};

}  // namespace VARN3D
