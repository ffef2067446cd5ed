// What a host does with the library; built in each of the ways to link it. The points are one-ulp
// neighbours, so that a library built with anything but strict arithmetic makes other tetrahedra of
// them, whose numbers don't add up to the same sum.

#include <dt3Library/Varn_3D.h>

#include <cstdint>
#include <iostream>
#include <map>
#include <vector>

#if VARN3D_VERSION < 9900 || VARN3D_VERSION_MAJOR > 0
#error "Not the version that this host is written for"
#endif

int main() {
    std::uint32_t state = 1;
    const auto coordinate = [&state] {
        state = state * 1664525U + 1013904223U;
        return 1.0 + static_cast<double>(state >> 28) / static_cast<double>(std::int64_t{1} << 52);
    };
    std::vector<VARN3D::Point3> points;
    for (int i = 0; i < 60; ++i) {
        const double x = coordinate();
        const double y = coordinate();
        points.emplace_back(x, y, coordinate());
    }

    VARN3D::Varn_3D mesh;
    std::vector<VARN3D::Point3*> handles;
    mesh.insert(points, handles);
    std::map<const VARN3D::Point3*, std::uint64_t> numberOf;
    for (std::size_t i = 0; i < points.size(); ++i) numberOf[handles[i]] = i + 1;

    std::vector<VARN3D::Tet3*> tets;
    mesh.getTetrahedra(tets);
    std::uint64_t sum = 0;
    for (const VARN3D::Tet3* tet : tets) {
        std::uint64_t product = 1;
        for (int i = 0; i < 4; ++i) product *= 1000003 + numberOf.at(tet->getCorner(i));
        sum += product;
    }
    const bool bRight = sum == 5379931981841752474U;
    std::cout << VARN3D::getVarn3DVersion() << ": " << tets.size() << (bRight ? " right" : " WRONG")
              << " tetrahedra, sum " << sum << "\n";
    return bRight ? 0 : 1;
}
