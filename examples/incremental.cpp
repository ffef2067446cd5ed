// Points one at a time: where each lies in the mesh so far, and how many tetrahedra it gets.
//
// Output:
//   (0, 0, 0): no tetrahedra yet
//   (8, 0, 0): no tetrahedra yet
//   (0, 9, 0): no tetrahedra yet
//   (0, 0, 7): no tetrahedra yet; now a corner of 1
//   (2, 1, 1): inside; now a corner of 4
//   (6, 6, 6): outside the convex hull, or on it; now a corner of 3
//   (3, 4, 2): inside; now a corner of 8
//   (2, 1, 1): at a vertex; now a corner of 8
//   (4, 4, 0): outside the convex hull, or on it; now a corner of 7

#include <dt3Library/Varn_3D.h>

#include <iostream>
#include <vector>

using namespace VARN3D;

namespace {

const char* describePlace(Varn_3D& mesh, const Point3& p) {
    if (!mesh.is3D()) return "no tetrahedra yet";
    const Tet3* tet = mesh.locate(p);
    if (tet == nullptr) return "outside the convex hull, or on it";
    return tet->hasVertex(p) ? "at a vertex" : "inside";
}

}  // namespace

int main() {
    std::vector<Point3> points = {{0, 0, 0}, {8, 0, 0}, {0, 9, 0}, {0, 0, 7}, {2, 1, 1},
                                  {6, 6, 6}, {3, 4, 2}, {2, 1, 1}, {4, 4, 0}};

    Varn_3D mesh;
    for (Point3& p : points) {
        std::cout << "(" << p.x() << ", " << p.y() << ", " << p.z()
                  << "): " << describePlace(mesh, p);
        Point3* vertex = mesh.insert(p);
        if (mesh.is3D()) {
            std::vector<Tet3*> star;
            mesh.getTetsAroundVertex(vertex, star);
            std::cout << "; now a corner of " << star.size();
        }
        std::cout << "\n";
    }
}
