#include "tools/MeshStatistics.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <unordered_map>
#include <utility>

namespace tool {

using VARN3D::Point3;
using VARN3D::Tet3;

namespace {

using Vec = std::array<double, 3>;

Vec operator-(const Vec& a, const Vec& b) {
    return {a[0] - b[0], a[1] - b[1], a[2] - b[2]};
}

Vec operator+(const Vec& a, const Vec& b) {
    return {a[0] + b[0], a[1] + b[1], a[2] + b[2]};
}

Vec operator*(double s, const Vec& a) {
    return {s * a[0], s * a[1], s * a[2]};
}

double dot(const Vec& a, const Vec& b) {
    return a[0] * b[0] + a[1] * b[1] + a[2] * b[2];
}

Vec cross(const Vec& a, const Vec& b) {
    return {a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]};
}

double length(const Vec& a) {
    return std::sqrt(dot(a, a));
}

/// The corners with corner 0 in the origin, in units of the largest coordinate difference: shapes
/// come out the same for meshes of atoms and of galaxies.
std::array<Vec, 4> scaledCorners(const Tet3& tet) {
    std::array<Vec, 4> corners = {};
    for (int i = 0; i < 4; ++i) {
        const Point3& p = *tet.getCorner(i);
        // Half of each coordinate: the difference of two large ones must not overflow.
        corners[static_cast<std::size_t>(i)] = {p.x() / 2, p.y() / 2, p.z() / 2};
    }
    const Vec origin = corners[0];
    double largest = 0;
    for (Vec& corner : corners) {
        corner = corner - origin;
        for (const double coordinate : corner) largest = std::max(largest, std::fabs(coordinate));
    }
    for (Vec& corner : corners)
        for (double& coordinate : corner) coordinate /= largest;
    return corners;
}

/// The angle at the edge from a to b between the half planes through c and d.
double dihedralAngle(const Vec& a, const Vec& b, const Vec& c, const Vec& d) {
    const double degreesPerRadian = 57.295779513082321;
    const Vec edge = b - a;
    const Vec m = cross(edge, c - a);
    const Vec n = cross(edge, d - a);
    return std::atan2(length(cross(m, n)), dot(m, n)) * degreesPerRadian;
}

double circumradius(const std::array<Vec, 4>& p) {
    const Vec u = p[1] - p[0];
    const Vec v = p[2] - p[0];
    const Vec w = p[3] - p[0];
    const Vec sum = dot(u, u) * cross(v, w) + dot(v, v) * cross(w, u) + dot(w, w) * cross(u, v);
    return length(sum) / std::fabs(2 * dot(u, cross(v, w)));
}

}  // namespace

Histogram::Histogram(std::vector<double> binBounds)
    : bounds(std::move(binBounds)), counts(bounds.size() - 1) {}

void Histogram::add(double value) {
    const auto above = std::upper_bound(bounds.begin() + 1, bounds.end() - 1, value);
    ++counts[static_cast<std::size_t>(above - bounds.begin()) - 1];
    smallest = total == 0 ? value : std::min(smallest, value);
    largest = total == 0 ? value : std::max(largest, value);
    ++total;
}

void Histogram::print(const std::string& title, std::FILE* out) const {
    std::fprintf(out, "\n%s: smallest %.4g, largest %.4g\n", title.c_str(), smallest, largest);
    const std::uint64_t highest = *std::max_element(counts.begin(), counts.end());
    const double barLength = 40;
    for (std::size_t bin = 0; bin < counts.size(); ++bin) {
        const auto number = static_cast<double>(counts[bin]);
        const auto numMarks =
            static_cast<std::size_t>(std::ceil(barLength * number / static_cast<double>(highest)));
        const std::string bar(numMarks, '#');
        const double share = 100 * number / static_cast<double>(total);
        std::fprintf(out, "%8g -%5g %12llu %6.2f %%%s%s\n", bounds[bin], bounds[bin + 1],
                     static_cast<unsigned long long>(counts[bin]), share, bar.empty() ? "" : "  ",
                     bar.c_str());
    }
}

MeshStatistics::MeshStatistics(const std::vector<Tet3*>& tets)
    : dihedralAngles(
          {0, 10, 20, 30, 40, 50, 60, 70, 80, 90, 100, 110, 120, 130, 140, 150, 160, 170, 180}),
      radiusEdgeRatios(
          {0.6, 0.7, 0.8, 1, 1.25, 1.5, 2, 3, 5, 10, 100, std::numeric_limits<double>::infinity()}),
      degrees({3, 4, 5, 6, 8, 10, 12, 14, 16, 18, 20, 25, 30, 40, 60, 100,
               std::numeric_limits<double>::infinity()}) {
    for (const Tet3* tet : tets) addShape(*tet);
    addDegrees(tets);
}

void MeshStatistics::print(std::FILE* out) const {
    dihedralAngles.print("dihedral angles (degrees, six a tetrahedron)", out);
    radiusEdgeRatios.print("circumradius by shortest edge", out);
    degrees.print("vertex degrees (edges at a vertex)", out);
}

void MeshStatistics::addShape(const Tet3& tet) {
    const std::array<Vec, 4> p = scaledCorners(tet);
    static const std::size_t edges[6][4] = {{0, 1, 2, 3}, {0, 2, 1, 3}, {0, 3, 1, 2},
                                            {1, 2, 0, 3}, {1, 3, 0, 2}, {2, 3, 0, 1}};
    double shortest = std::numeric_limits<double>::infinity();
    for (const auto& e : edges) {
        dihedralAngles.add(dihedralAngle(p[e[0]], p[e[1]], p[e[2]], p[e[3]]));
        shortest = std::min(shortest, length(p[e[1]] - p[e[0]]));
    }
    radiusEdgeRatios.add(circumradius(p) / shortest);
}

void MeshStatistics::addDegrees(const std::vector<Tet3*>& tets) {
    struct Star {
        std::uint64_t numTets = 0;
        std::uint64_t numHullFacets = 0;
    };
    std::unordered_map<const Point3*, Star> stars;
    for (const Tet3* tet : tets) {
        for (int i = 0; i < 4; ++i) {
            Star& star = stars[tet->getCorner(i)];
            ++star.numTets;
            for (int facet = 0; facet < 4; ++facet)
                star.numHullFacets += facet != i && !tet->getOppTet(facet) ? 1 : 0;
        }
    }
    // The facets of a star that lie opposite its vertex form a triangulated sphere, or a disk when
    // the vertex is on the hull; Euler's formula turns their number into that of its vertices.
    for (const auto& [vertex, star] : stars) {
        const std::uint64_t constant = star.numHullFacets == 0 ? 4 : 2;
        const std::uint64_t degree = (star.numTets + star.numHullFacets + constant) / 2;
        degrees.add(static_cast<double>(degree));
    }
}

}  // namespace tool
