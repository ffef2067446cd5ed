#include "dt3Library/FacetSphereTests.h"

#include "dt3Library/FloatingPoint.h"

#if defined(__GNUC__) && defined(__x86_64__) && defined(__has_builtin)
#if __has_builtin(__builtin_shufflevector)
#define VARN3D_HAS_LANES
#endif
#endif

namespace VARN3D {

SphereTest evaluateSphereTest(const SphereRow& a, const SphereRow& b, const SphereRow& c,
                              const SphereRow& d) {
    const double ab = a.x * b.y - b.x * a.y;
    const double bc = b.x * c.y - c.x * b.y;
    const double cd = c.x * d.y - d.x * c.y;
    const double da = d.x * a.y - a.x * d.y;
    const double ac = a.x * c.y - c.x * a.y;
    const double bd = b.x * d.y - d.x * b.y;
    const double abc = a.z * bc - b.z * ac + c.z * ab;
    const double bcd = b.z * cd - c.z * bd + d.z * bc;
    const double cda = c.z * da + d.z * ac + a.z * cd;
    const double dab = d.z * ab + a.z * bd + b.z * da;
    return {(d.lift * abc - c.lift * dab) + (b.lift * cda - a.lift * bcd), {bcd, -cda, dab, -abc}};
}

void testFacetsOneByOne(const SphereRow* const corner[4], const SphereRow* const beyond[4],
                        unsigned wanted, FacetSphereTests& result) {
    static constexpr int FROM_BEYOND[4][3] = {{1, 3, 2}, {0, 2, 3}, {0, 3, 1}, {0, 1, 2}};
    for (int i = 0; i < 4; ++i) {
        if ((wanted >> i & 1U) == 0) continue;
        const int* facet = FROM_BEYOND[i];
        const SphereTest test =
            evaluateSphereTest(*beyond[i], *corner[facet[0]], *corner[facet[1]], *corner[facet[2]]);
        result.conflict[i] = test.determinant;
        result.orientation[i] = -test.orientation[0];
    }
}

#ifdef VARN3D_HAS_LANES

// Facet i is taken as the corners i + 1, i + 2, i + 3, counted round. So the rows of all facets,
// and half of their minors, are the same numbers turned round, and each step of the determinant is
// one operation on all facets. In lanes 1 and 3 the corners run the other way; their signs are
// changed in the end.
__attribute__((target("avx2"))) void testFacetsAtOnce(const SphereRow* const corner[4],
                                                      const SphereRow* const beyond[4],
                                                      unsigned /*wanted*/,
                                                      FacetSphereTests& result) {
    using Half = double __attribute__((vector_size(16), may_alias));
    using Lanes = double __attribute__((vector_size(32), may_alias));
#define VARN3D_SHUFFLE(v, w, ...) __builtin_shufflevector(v, w, __VA_ARGS__)
#define VARN3D_TURN(v, by) \
    __builtin_shufflevector(v, v, (by) % 4, ((by) + 1) % 4, ((by) + 2) % 4, ((by) + 3) % 4)
    // From the rows of single vertices to lanes of x, y, z and lifts. Rows are read by halves: they
    // were written a moment ago, and a read wider than the writes would have to wait for them.
#define VARN3D_HALVES(row1, row2, member)                           \
    VARN3D_SHUFFLE(*reinterpret_cast<const Half*>(&(row1)->member), \
                   *reinterpret_cast<const Half*>(&(row2)->member), 0, 1, 2, 3)
    const Lanes xy02 = VARN3D_HALVES(corner[0], corner[2], x);
    const Lanes xy13 = VARN3D_HALVES(corner[1], corner[3], x);
    const Lanes zl02 = VARN3D_HALVES(corner[0], corner[2], z);
    const Lanes zl13 = VARN3D_HALVES(corner[1], corner[3], z);
    const Lanes axy02 = VARN3D_HALVES(beyond[0], beyond[2], x);
    const Lanes axy13 = VARN3D_HALVES(beyond[1], beyond[3], x);
    const Lanes azl02 = VARN3D_HALVES(beyond[0], beyond[2], z);
    const Lanes azl13 = VARN3D_HALVES(beyond[1], beyond[3], z);
    const Lanes x = VARN3D_SHUFFLE(xy02, xy13, 0, 4, 2, 6);
    const Lanes y = VARN3D_SHUFFLE(xy02, xy13, 1, 5, 3, 7);
    const Lanes z = VARN3D_SHUFFLE(zl02, zl13, 0, 4, 2, 6);
    const Lanes lift = VARN3D_SHUFFLE(zl02, zl13, 1, 5, 3, 7);
    const Lanes ax = VARN3D_SHUFFLE(axy02, axy13, 0, 4, 2, 6);
    const Lanes ay = VARN3D_SHUFFLE(axy02, axy13, 1, 5, 3, 7);
    const Lanes az = VARN3D_SHUFFLE(azl02, azl13, 0, 4, 2, 6);
    const Lanes liftA = VARN3D_SHUFFLE(azl02, azl13, 1, 5, 3, 7);

    const Lanes bx = VARN3D_TURN(x, 1), by = VARN3D_TURN(y, 1), bz = VARN3D_TURN(z, 1);
    const Lanes cx = VARN3D_TURN(x, 2), cy = VARN3D_TURN(y, 2), cz = VARN3D_TURN(z, 2);
    const Lanes dx = VARN3D_TURN(x, 3), dy = VARN3D_TURN(y, 3), dz = VARN3D_TURN(z, 3);
    const Lanes ab = ax * by - bx * ay;
    const Lanes bc = bx * cy - cx * by;
    const Lanes cd = VARN3D_TURN(bc, 1);
    const Lanes da = dx * ay - ax * dy;
    const Lanes ac = ax * cy - cx * ay;
    const Lanes bd = bx * dy - dx * by;
    const Lanes abc = az * bc - bz * ac + cz * ab;
    const Lanes bcd = bz * cd - cz * bd + dz * bc;
    const Lanes cda = cz * da + dz * ac + az * cd;
    const Lanes dab = dz * ab + az * bd + bz * da;
    const Lanes sphere = (liftA * bcd - VARN3D_TURN(lift, 1) * cda) +
                         (VARN3D_TURN(lift, 2) * dab - VARN3D_TURN(lift, 3) * abc);
    const Lanes sign = {1.0, -1.0, 1.0, -1.0};
    *reinterpret_cast<Lanes*>(result.conflict) = sphere * sign;
    *reinterpret_cast<Lanes*>(result.orientation) = bcd * sign;
#undef VARN3D_HALVES
#undef VARN3D_SHUFFLE
#undef VARN3D_TURN
}

FacetSphereKernel fastestFacetSphereKernel() {
    return __builtin_cpu_supports("avx2") ? testFacetsAtOnce : testFacetsOneByOne;
}

#else

FacetSphereKernel fastestFacetSphereKernel() {
    return testFacetsOneByOne;
}

#endif

}  // namespace VARN3D
