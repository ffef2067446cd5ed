// Takes the coordinates of five points from the bytes, as doubles of any size or as lattice points,
// and compares the predicates with exact arithmetic.

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>

#include "dt3Library/GeomTest3.h"
#include "dt3Library/Tet3.h"
#include "tests/support/Exact.h"

namespace {

using namespace VARN3D;

double takeDouble(const std::uint8_t*& data) {
    double value;
    std::memcpy(&value, data, sizeof value);
    data += sizeof value;
    return std::isfinite(value) ? value : 0.0;
}

/// A lattice of one byte, now and then moved by one unit in the last place.
double takeLattice(const std::uint8_t*& data) {
    const int byte = *data++;
    const double value = 0.1 * (byte % 8);
    return byte < 224 ? value : std::nextafter(value, byte % 2 == 0 ? 9.0 : -9.0);
}

void require(bool bHolds) {
    if (!bHolds) std::abort();
}

void compare(Point3 (&p)[5]) {
    static const GeomTest3 predicates;
    const int orientation = support::exactOrientation(p[0], p[1], p[2], p[3]);
    const Orientation3 expected[3] = {ORIENTATION3_NEGATIVE, ORIENTATION3_COPLANAR,
                                      ORIENTATION3_POSITIVE};
    require(predicates.getOrientation3(&p[0], &p[1], &p[2], &p[3]) == expected[orientation + 1]);
    require(predicates.areCollinear(&p[0], &p[1], &p[2]) ==
            support::exactlyCollinear(p[0], p[1], p[2]));
    if (orientation == 0) return;
    if (orientation < 0) std::swap(p[0], p[1]);
    // On the heap and never destroyed: constructing a tetrahedron by itself prints a line.
    alignas(Tet3) static unsigned char storage[sizeof(Tet3)];
    Tet3* tet = reinterpret_cast<Tet3*>(storage);
    tet->setProperties(&p[0], &p[1], &p[2], &p[3]);
    bool bInside = support::exactInSphere(p[0], p[1], p[2], p[3], p[4]) > 0;
    for (int i = 0; i < 4; ++i) bInside = bInside || p[i] == p[4];
    require((predicates.sphereInclusionTest(tet, &p[4]) == SIC_INSIDE) == bInside);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const bool bLattice = size < 15 * sizeof(double);
    if (size < 15) return 0;
    Point3 p[5];
    for (Point3& point : p) {
        const double x = bLattice ? takeLattice(data) : takeDouble(data);
        const double y = bLattice ? takeLattice(data) : takeDouble(data);
        point.exchange(x, y, bLattice ? takeLattice(data) : takeDouble(data));
    }
    compare(p);
    return 0;
}
