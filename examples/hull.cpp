// The convex hull: its facets are those across which a tetrahedron has no neighbour.
//
// Output:
//   numPoints=12
//   10 of 12 points on the hull, 16 facets, area 292, roof 80

#include <dt3Library/Varn_3D.h>

#include <cmath>
#include <iostream>
#include <set>
#include <vector>

using namespace VARN3D;

namespace {

double triangleArea(const Point3& p, const Point3& q, const Point3& r) {
    const Vector3 a = q - p;
    const Vector3 b = r - p;
    return std::hypot(a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x) / 2;
}

}  // namespace

int main() {
    // A house: the corners of a box, the two ends of the ridge, and something inside.
    std::vector<Point3> points = {{0, 0, 0}, {8, 0, 0}, {8, 6, 0}, {0, 6, 0}, {0, 0, 5}, {8, 0, 5},
                                  {8, 6, 5}, {0, 6, 5}, {0, 3, 9}, {8, 3, 9}, {4, 2, 1}, {3, 3, 7}};

    Varn_3D mesh;
    mesh.insert(points);
    std::vector<Tet3*> tets;
    mesh.getTetrahedra(tets);

    std::set<const Point3*> hullVertices;
    int facets = 0;
    double area = 0;
    double roofArea = 0;
    for (const Tet3* tet : tets) {
        for (int i = 0; i < 4; ++i) {
            if (tet->getOppTet(i) != nullptr) continue;
            // The facet's corners run counter-clockwise seen from outside.
            int a = 0, b = 0, c = 0;
            tet->getFacetIndices(i, a, b, c);
            const Point3* p = tet->getCorner(a);
            const Point3* q = tet->getCorner(b);
            const Point3* r = tet->getCorner(c);
            hullVertices.insert({p, q, r});
            ++facets;
            area += triangleArea(*p, *q, *r);
            if (getNormalVector(*p, *q, *r).z > 0) roofArea += triangleArea(*p, *q, *r);
        }
    }
    std::cout << hullVertices.size() << " of " << points.size() << " points on the hull, " << facets
              << " facets, area " << area << ", roof " << roofArea << "\n";
}
