#pragma once

namespace VARN3D {

/// A vertex seen from the new one: its row in the sphere test's determinant.
struct alignas(32) SphereRow {
    double x, y, z;
    double lift;  ///< the squared length of (x, y, z)
};

/// What the sphere tests across the four facets of a tetrahedron yield, seen from the new vertex p.
struct alignas(32) FacetSphereTests {
    /// The determinant of p against the sphere through facet i and the vertex beyond it: negative
    /// where p lies inside.
    double conflict[4];
    /// The determinant of p and facet i, positive where p lies on the facet's inner side.
    double orientation[4];
};

/// The determinants of one tetrahedron's sphere test and of its facets.
struct SphereTest {
    double determinant;
    double orientation[4];
};

/// The test of the tetrahedron with these corners: Shewchuk's determinant in plain doubles.
SphereTest evaluateSphereTest(const SphereRow& a, const SphereRow& b, const SphereRow& c,
                              const SphereRow& d);

/// Evaluates the sphere tests across the facets of a tetrahedron: at least of those whose bit is
/// set in `wanted`. `beyond[i]` is the vertex beyond facet i. The roundings of two kernels may
/// differ; the error bound of Shewchuk's first stage holds for all.
using FacetSphereKernel = void (*)(const SphereRow* const corner[4],
                                   const SphereRow* const beyond[4], unsigned wanted,
                                   FacetSphereTests& result);

/// The portable kernel.
void testFacetsOneByOne(const SphereRow* const corner[4], const SphereRow* const beyond[4],
                        unsigned wanted, FacetSphereTests& result);

/// The best that this processor can: where it has four lanes of doubles, all facets at once.
FacetSphereKernel fastestFacetSphereKernel();

}  // namespace VARN3D
