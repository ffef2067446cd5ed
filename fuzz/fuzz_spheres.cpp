// Takes from the bytes a tetrahedron whose cached sphere is only just certified, and points just
// beyond the sphere's undecided band, and compares its answers with the exact predicate.

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <utility>

#include "dt3Library/GeomTest3.h"
#include "dt3Library/Tet3.h"
#include "tests/support/LaneSpheres.h"

namespace {

using namespace VARN3D;
using support::Coordinates;

void compare(const Coordinates (&corner)[4], const Coordinates& query, int side) {
    static const GeomTest3 predicates;
    Point3 p[4] = {pointAt(corner[0]), pointAt(corner[1]), pointAt(corner[2]), pointAt(corner[3])};
    if (predicates.getOrientation3(&p[0], &p[1], &p[2], &p[3]) == ORIENTATION3_NEGATIVE)
        std::swap(p[0], p[1]);
    // On the heap and never destroyed: constructing a tetrahedron by itself prints a line.
    alignas(Tet3) static unsigned char storage[sizeof(Tet3)];
    Tet3* tet = reinterpret_cast<Tet3*>(storage);
    tet->setProperties(&p[0], &p[1], &p[2], &p[3]);
    const Point3 q = pointAt(query);
    for (const Point3& vertex : p)
        if (vertex == q) std::abort();
    if ((predicates.sphereInclusionTest(tet, &q) == SIC_INSIDE) != (side < 0)) std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    // Two bytes a number, then zeros.
    const auto unit = [&data, &size] {
        if (size < 2) return 0.0;
        const unsigned value = data[0] * 256U + data[1];
        data += 2;
        size -= 2;
        return value * 0x1p-16;
    };
    const std::uint8_t* const begin = data;
    const std::size_t all = size;
    for (const support::Spheres& spheres : support::kernelSpheres()) {
        data = begin;
        size = all;
        support::SphereAttack(spheres, unit).run(compare);
    }
    return 0;
}
