#include "dt3Library/kernel/ExactTests.h"

#include "dt3Library/base/EngineCheck.h"
#include "dt3Library/base/messages.h"
#include "dt3Library/predicates/FloatingPoint.h"

namespace VARN3D {

Point3 ExactTests::pointOf(VertexNumber vertex) const {
    const auto& at = mesh.vertices()[vertex].at;
    return {at[0], at[1], at[2]};
}

/// The orientation of a tetrahedron with the point in place of one corner.
Orientation3 ExactTests::orientationWith(const CompactTet& tet, unsigned corner,
                                         VertexNumber point) const {
    VertexNumber vertices[4] = {tet.vertex[0], tet.vertex[1], tet.vertex[2], tet.vertex[3]};
    vertices[corner] = point;
    const Point3 a = pointOf(vertices[0]);
    const Point3 b = pointOf(vertices[1]);
    const Point3 c = pointOf(vertices[2]);
    const Point3 d = pointOf(vertices[3]);
    return predicates.getOrientation3(&a, &b, &c, &d);
}

Orientation3 ExactTests::sideOfHullFacet(Slot ghost, VertexNumber point) const {
    const CompactTet& tet = mesh.tets()[ghost];
    return orientationWith(tet, tet.cornerAtInfinity(), point);
}

bool ExactTests::isInSphere(Slot slot, VertexNumber point) const {
    const CompactTet& tet = mesh.tets()[slot];
    const Point3 a = pointOf(tet.vertex[0]);
    const Point3 b = pointOf(tet.vertex[1]);
    const Point3 c = pointOf(tet.vertex[2]);
    const Point3 d = pointOf(tet.vertex[3]);
    const Point3 p = pointOf(point);
    return predicates.isStrictlyInSphere(&a, &b, &c, &d, &p);
}

bool ExactTests::isInConflict(Slot slot, VertexNumber point) const {
    const CompactTet& tet = mesh.tets()[slot];
    const unsigned atInfinity = tet.cornerAtInfinity();
    if (atInfinity == 4) return isInSphere(slot, point);
    const Orientation3 side = orientationWith(tet, atInfinity, point);
    if (side != ORIENTATION3_COPLANAR) return side == ORIENTATION3_POSITIVE;
    return isInSphere(slotOf(tet.link[atInfinity]), point);
}

Slot ExactTests::walk(Slot start, VertexNumber point, std::uint64_t& numSteps) const {
    constexpr unsigned NOT_ENTERED = 4;
    const CompactTet* const tets = mesh.tets();
    Slot slot = start;
    const unsigned atInfinity = tets[slot].cornerAtInfinity();
    if (atInfinity < 4) slot = slotOf(tets[slot].link[atInfinity]);
    unsigned entry = NOT_ENTERED;
    // A visibility walk meets no tetrahedron of a Delaunay mesh twice (Edelsbrunner, An acyclicity
    // theorem for cell complexes, 1990).
    for (std::size_t steps = 0; steps <= mesh.numSlots(); ++steps) {
        const CompactTet& tet = tets[slot];
        ++numSteps;
        if (tet.cornerAtInfinity() < 4) return slot;
        unsigned facet = 0;
        while (facet < 4 &&
               (facet == entry || orientationWith(tet, facet, point) != ORIENTATION3_NEGATIVE))
            ++facet;
        if (facet == 4) return slot;
        entry = facetOf(tet.link[facet]);
        slot = slotOf(tet.link[facet]);
    }
    messageStream() << "watchDog: bad point" << std::endl;
    engineCheck(false, "locateResult!=-99", 802);
    return slot;
}

}  // namespace VARN3D
