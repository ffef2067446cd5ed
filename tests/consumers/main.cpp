// What a host does with the library; built in each of the ways to link it. The points are one-ulp
// neighbours, so that a library built with anything but strict arithmetic makes other tetrahedra of
// them, whose numbers don't add up to the same sum.

#include <dt3Library/Varn_3D.h>

#include <cstdint>
#include <iostream>
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
    const VARN3D::IndexedMesh indexed = mesh.getIndexedMesh();
    std::uint64_t sum = 0;
    for (const auto& corners : indexed.tetrahedra) {
        std::uint64_t product = 1;
        for (const std::int32_t corner : corners)
            product *= 1000004 + static_cast<std::uint64_t>(corner);
        sum += product;
    }
    VARN3D::PointLocator locator(mesh);
    const bool bRight = sum == 5496429778931765576U &&
                        locator.nearestVertex(points[7]) == handles[7] &&
                        locator.locate({0, 0, 0}).kind == VARN3D::LocationKind::OUTSIDE &&
                        !VARN3D::getVoronoiCell(mesh, handles[7]).facets.empty();
    std::cout << VARN3D::getVarn3DVersion() << ": " << indexed.tetrahedra.size()
              << (bRight ? " right" : " WRONG") << " tetrahedra, sum " << sum << "\n";
    return bRight ? 0 : 1;
}
