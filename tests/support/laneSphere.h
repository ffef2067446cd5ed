// No include guard: part of LaneSpheres.h, inside the namespace of some lanes.

/// The sphere that the kernel's steps make, in the form in which they keep it.
LANE_TARGET inline CachedSphere makeInLanes(const double (&p)[3], const double (&a)[3],
                                            const double (&b)[3], const double (&c)[3],
                                            double reach) {
    const LaneSpheres spheres = makeLaneSpheres(positionOf(p), positionOf(a), positionOf(b),
                                                positionOf(c), allLanes(reach));
    CompactTet tets[4];
    constexpr Slot SLOTS[4] = {0, 1, 2, 3};
    storeSpheres(tets, SLOTS, spheres.centre, spheres.squaredRadius, {1, 2, 3, 4});
    const auto& [x, y, z] = tets[2].centre;
    return {x, y, z, tets[2].squaredRadius};
}

/// What the steps conclude from a look at a tetrahedron; 9 if the lanes disagree.
LANE_TARGET inline int sideInLanes(const CachedSphere& sphere, const double (&q)[3]) {
    const CompactTet tet{{sphere.x, sphere.y, sphere.z}, sphere.squaredRadius, {}, 0, {}};
    const Look look = lookAt(&tet, &tet, &tet, &tet, positionOf(q));
    const unsigned inside = whereLess(look.squaredDistance,
                                      look.squaredRadius * allLanes(1.0 - ProvedCertificate::ETA));
    const unsigned outside = whereLess(look.squaredRadius * allLanes(1.0 + ProvedCertificate::ETA),
                                       look.squaredDistance);
    if (inside % 15 != 0 || outside % 15 != 0) return 9;
    return (outside != 0 ? 1 : 0) - (inside != 0 ? 1 : 0);
}

/// The sign of the steps' determinant of a vertex, and of a tetrahedron or the hull facet of a
/// ghost; 9 where they are not certain of it.
LANE_TARGET inline int signInLanes(const BatchState& state, Slot slot, VertexNumber vertex) {
    const Slot slots[4] = {slot, slot, slot, slot};
    const LanePositions p = positionOf(state.mesh.vertices()[vertex].at);
    const bool bFinite = state.mesh.tets()[slot].cornerAtInfinity() == 4;
    const auto [negative, positive, zero] =
        bFinite ? testDeterminants(state, slots, p) : testHullFacets(state, slots, p);
    return negative == 15 ? -1 : positive == 15 ? 1 : zero == 15 ? 0 : 9;
}
