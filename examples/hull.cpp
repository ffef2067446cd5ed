// The convex hull, as triangles of input points.
//
// Output:
//   numPoints=12
//   10 of 12 points on the hull, 16 facets, area 292, roof 80

#include <dt3Library/Varn_3D.h>

#include <cmath>
#include <cstddef>
#include <cstdint>
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
    const std::vector<Point3> points = {{0, 0, 0}, {8, 0, 0}, {8, 6, 0}, {0, 6, 0},
                                        {0, 0, 5}, {8, 0, 5}, {8, 6, 5}, {0, 6, 5},
                                        {0, 3, 9}, {8, 3, 9}, {4, 2, 1}, {3, 3, 7}};

    Varn_3D mesh;
    mesh.insert(points);
    const IndexedMesh indexed = mesh.getIndexedMesh();

    std::set<std::int32_t> hullVertices;
    double area = 0;
    double roofArea = 0;
    for (const auto& [a, b, c] : indexed.hull) {
        hullVertices.insert({a, b, c});
        const auto point = [&](std::int32_t i) { return points[static_cast<std::size_t>(i)]; };
        const double facetArea = triangleArea(point(a), point(b), point(c));
        area += facetArea;
        // The corners run counter-clockwise seen from outside, so the normal points outwards.
        if (getNormalVector(point(a), point(b), point(c)).z > 0) roofArea += facetArea;
    }
    std::cout << hullVertices.size() << " of " << points.size() << " points on the hull, "
              << indexed.hull.size() << " facets, area " << area << ", roof " << roofArea << "\n";
}
