// The Voronoi cell of a vertex. In the body-centred cubic lattice it is a truncated octahedron.
//
// Output:
//   numPoints=15
//   a bounded cell of volume 4 with 14 facets
//     4 corners towards (-2, 0, 0)
//     6 corners towards (-1, -1, -1)
//     6 corners towards (-1, -1, 1)
//     6 corners towards (-1, 1, -1)
//     6 corners towards (-1, 1, 1)
//     4 corners towards (0, -2, 0)
//     4 corners towards (0, 0, -2)
//     4 corners towards (0, 0, 2)
//     4 corners towards (0, 2, 0)
//     6 corners towards (1, -1, -1)
//     6 corners towards (1, -1, 1)
//     6 corners towards (1, 1, -1)
//     6 corners towards (1, 1, 1)
//     4 corners towards (2, 0, 0)

#include <dt3Library/Varn_3D.h>

#include <algorithm>
#include <iostream>
#include <vector>

using namespace VARN3D;

int main() {
    std::vector<Point3> points = {{0, 0, 0}};
    for (const double s : {-1.0, 1.0}) {
        for (const double t : {-1.0, 1.0})
            for (const double u : {-1.0, 1.0}) points.emplace_back(s, t, u);
        points.emplace_back(2 * s, 0, 0);
        points.emplace_back(0, 2 * s, 0);
        points.emplace_back(0, 0, 2 * s);
    }

    Varn_3D mesh;
    std::vector<Point3*> handles;
    mesh.insert(points, handles);

    VoronoiCell cell = getVoronoiCell(mesh, handles[0]);
    std::cout << (cell.bBounded ? "a bounded" : "an unbounded") << " cell of volume " << cell.volume
              << " with " << cell.facets.size() << " facets\n";
    std::sort(
        cell.facets.begin(), cell.facets.end(),
        [](const VoronoiFacet& a, const VoronoiFacet& b) { return *a.neighbour < *b.neighbour; });
    for (const VoronoiFacet& facet : cell.facets) {
        const Point3& p = *facet.neighbour;
        std::cout << "  " << facet.corners.size() << " corners towards (" << p.x() << ", " << p.y()
                  << ", " << p.z() << ")\n";
    }
}
