// Natural neighbour interpolation (Laplace's weights: Belikov et al., The non-Sibsonian
// interpolation, 1997). A point's neighbours are the vertices that it would be connected to; each
// counts with the area of the Voronoi facet that the point would share with it, divided by the
// distance. Linear functions come out as they are, whatever the vertices.
//
// Output:
//   numPoints=1000
//   a linear function at 100 points: right to 12 digits
//   a paraboloid at 100 points: right to 2 digits

#include <dt3Library/Varn_3D.h>

#include <algorithm>
#include <cmath>
#include <iostream>
#include <map>
#include <set>
#include <vector>

using namespace VARN3D;

namespace {

Vector3 cross(const Vector3& u, const Vector3& v) {
    return {u.y * v.z - u.z * v.y, u.z * v.x - u.x * v.z, u.x * v.y - u.y * v.x};
}

double length(const Vector3& v) {
    return std::sqrt(v.x * v.x + v.y * v.y + v.z * v.z);
}

// The centre of the sphere through p and three vertices.
Point3 circumcenter(const Point3& p, const Point3* const (&corners)[3]) {
    const Vector3 b = *corners[0] - p, c = *corners[1] - p, d = *corners[2] - p;
    const auto dot = [](const Vector3& u, const Vector3& v) {
        return u.x * v.x + u.y * v.y + u.z * v.z;
    };
    const Vector3 cd = cross(c, d), db = cross(d, b), bc = cross(b, c);
    const double bb = dot(b, b), cc = dot(c, c), dd = dot(d, d), scale = 0.5 / dot(b, cd);
    return p + Vector3((bb * cd.x + cc * db.x + dd * bc.x) * scale,
                       (bb * cd.y + cc * db.y + dd * bc.y) * scale,
                       (bb * cd.z + cc * db.z + dd * bc.z) * scale);
}

// The weights of p's neighbours. At a vertex that vertex alone; none outside the hull or on it.
std::map<const Point3*, double> weightsAt(PointLocator& locator, const Point3& p) {
    const Location place = locator.locate(p);
    if (place.kind == LocationKind::AT_VERTEX) return {{place.vertex, 1.0}};
    if (place.kind == LocationKind::OUTSIDE) return {};
    std::vector<Tet3*> region;
    locator.conflictRegion(p, region);
    const std::set<Tet3*> inRegion(region.begin(), region.end());

    // An insertion of p would make a tetrahedron on each facet of the region's boundary. At the
    // edge from p to a neighbour their circumcentres are the corners of the Voronoi facet: each
    // tetrahedron spans it between the middle of the edge and the two circumcentres beside it.
    std::map<std::pair<const Point3*, const Point3*>, Point3> centreLeftOf;
    for (Tet3* tet : region) {
        for (int i = 0; i < 4; ++i) {
            if (inRegion.count(tet->getOppTet(i)) > 0) continue;
            int a, b, c;
            tet->getFacetIndices(i, a, b, c);
            const Point3* corners[3] = {tet->getCorner(a), tet->getCorner(b), tet->getCorner(c)};
            const Point3 centre = circumcenter(p, corners);
            for (int k = 0; k < 3; ++k)
                centreLeftOf.insert({{corners[k], corners[(k + 1) % 3]}, centre});
        }
    }
    std::map<const Point3*, Vector3> doubleArea;
    for (const auto& [edge, centre] : centreLeftOf) {
        const auto other = centreLeftOf.find({edge.second, edge.first});
        const Point3& q = *edge.first;
        const Point3 middle((p.x() + q.x()) / 2, (p.y() + q.y()) / 2, (p.z() + q.z()) / 2);
        const Vector3 part = cross(centre - middle, other->second - middle);
        Vector3& sum = doubleArea[&q];
        sum = {sum.x + part.x, sum.y + part.y, sum.z + part.z};
    }
    std::map<const Point3*, double> weights;
    double total = 0.0;
    for (const auto& [vertex, area] : doubleArea)
        total += weights[vertex] = length(area) / length(*vertex - p);
    for (auto& weight : weights) weight.second /= total;
    return weights;
}

template <class Function>
void tryOut(const char* name, PointLocator& locator, const std::vector<Point3>& places,
            Function function) {
    double worst = 0.0;
    for (const Point3& p : places) {
        double value = 0.0;
        for (const auto& [vertex, weight] : weightsAt(locator, p))
            value += weight * function(*vertex);
        worst = std::max(worst, std::fabs(value - function(p)));
    }
    std::cout << name << " at " << places.size() << " points: right to "
              << std::min(12, static_cast<int>(-std::log10(worst))) << " digits\n";
}

}  // namespace

int main() {
    std::vector<Point3> points, places;
    const auto fraction = [](int i, double step) { return std::fmod(i * step, 1.0); };
    for (int i = 1; i <= 1000; ++i)
        points.emplace_back(fraction(i, 0.8191725134), fraction(i, 0.6710436067),
                            fraction(i, 0.5497004779));
    for (int i = 1; i <= 100; ++i)
        places.emplace_back(0.25 + fraction(i, 0.7548776662) / 2,
                            0.25 + fraction(i, 0.5698402910) / 2, 0.25 + i / 200.0);
    Varn_3D mesh;
    mesh.insert(points);
    PointLocator locator(mesh);
    tryOut("a linear function", locator, places,
           [](const Point3& p) { return 3 * p.x() - 2 * p.y() + p.z() + 1; });
    tryOut("a paraboloid", locator, places,
           [](const Point3& p) { return p.x() * p.x() + p.y() * p.y() + p.z() * p.z(); });
}
