// The Voronoi cell of a vertex: its corners are the circumcentres of the tetrahedra around the
// vertex. (The cell of a vertex on the convex hull is unbounded.) In the body-centred cubic lattice
// it is a truncated octahedron.
//
// Output:
//   numPoints=15
//   a cell with 24 corners
//     (-1, -0.5, 0)
//     (-1, 0, -0.5)
//     (-1, 0, 0.5)
//     (-1, 0.5, 0)
//     (-0.5, -1, 0)
//     (-0.5, 0, -1)
//     (-0.5, 0, 1)
//     (-0.5, 1, 0)
//     (0, -1, -0.5)
//     (0, -1, 0.5)
//     (0, -0.5, -1)
//     (0, -0.5, 1)
//     (0, 0.5, -1)
//     (0, 0.5, 1)
//     (0, 1, -0.5)
//     (0, 1, 0.5)
//     (0.5, -1, 0)
//     (0.5, 0, -1)
//     (0.5, 0, 1)
//     (0.5, 1, 0)
//     (1, -0.5, 0)
//     (1, 0, -0.5)
//     (1, 0, 0.5)
//     (1, 0.5, 0)

#include <dt3Library/Varn_3D.h>

#include <iostream>
#include <set>
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

    std::vector<Tet3*> star;
    mesh.getTetsAroundVertex(handles[0], star);
    std::set<Point3> corners;
    for (const Tet3* tet : star) corners.insert(tet->getCircumcenter());

    std::cout << "a cell with " << corners.size() << " corners\n";
    for (const Point3& corner : corners)
        std::cout << "  (" << corner.x() << ", " << corner.y() << ", " << corner.z() << ")\n";
}
