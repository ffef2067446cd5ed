// The first steps: insert points, count tetrahedra, find the one that holds a point.
//
// Output:
//   numPoints=6
//   2 tetrahedra; points 1 and 5 are one vertex
//   the circumsphere around (0.5, 0.5, 0.5) has its centre in (1, 1, 1)

#include <dt3Library/Varn_3D.h>

#include <iostream>

int main() {
    std::vector<VARN3D::Point3> points = {{0, 0, 0}, {2, 0, 0}, {0, 2, 0},
                                          {0, 0, 2}, {3, 3, 3}, {2, 0, 0}};
    std::vector<VARN3D::Point3*> vertices;
    VARN3D::Varn_3D mesh;
    mesh.insert(points, vertices);

    std::vector<VARN3D::Tet3*> tets;
    mesh.getTetrahedra(tets);
    std::cout << tets.size() << " tetrahedra; points 1 and 5 are "
              << (vertices[1] == vertices[5] ? "one vertex\n" : "two vertices\n");
    if (const VARN3D::Tet3* tet = mesh.locate({0.5, 0.5, 0.5})) {  // null outside the hull
        const VARN3D::Point3 c = tet->getCircumcenter();
        std::cout << "the circumsphere around (0.5, 0.5, 0.5) has its centre in (" << c.x() << ", "
                  << c.y() << ", " << c.z() << ")\n";
    }
}
