// An alpha shape: the surface around the tetrahedra whose circumsphere is small, written as a PLY
// file. The mesh as numbers is all that is needed.
//
// Output:
//   numPoints=96
//   alpha_shape.ply: 192 triangles, Euler characteristic 0

#include <dt3Library/Varn_3D.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <fstream>
#include <iostream>
#include <set>
#include <vector>

using namespace VARN3D;

namespace {

using Triangle = std::array<std::int32_t, 3>;

/// Two layers of a lattice without the points in the middle: a ring.
std::vector<Point3> ringOfPoints() {
    std::vector<Point3> points;
    for (int x = 0; x <= 6; ++x)
        for (int y = 0; y <= 6; ++y)
            for (int z = 0; z <= 1; ++z)
                if (x != 3 || y != 3) points.emplace_back(x, y, z);
    return points;
}

double squaredLength(const Vector3& v) {
    return v.x * v.x + v.y * v.y + v.z * v.z;
}

/// The facets between a tetrahedron of a circumradius up to alpha and one that isn't, or none.
std::vector<Triangle> alphaShape(const Varn_3D& mesh, double alpha) {
    const IndexedMesh indexed = mesh.getIndexedMesh();
    std::vector<Tet3*> tets;
    mesh.getTetrahedra(tets);  // in the same order
    std::vector<bool> isInside;
    for (const Tet3* tet : tets) {
        const Vector3 radius = tet->getCircumcenter() - *tet->getCorner(0);
        isInside.push_back(squaredLength(radius) <= alpha * alpha);
    }
    static constexpr std::size_t FACETS[4][3] = {{1, 2, 3}, {0, 3, 2}, {0, 1, 3}, {0, 2, 1}};
    std::vector<Triangle> shape;
    for (std::size_t t = 0; t < tets.size(); ++t) {
        for (std::size_t i = 0; i < 4 && isInside[t]; ++i) {
            const std::int32_t beyond = indexed.neighbours[t][i];
            if (beyond >= 0 && isInside[static_cast<std::size_t>(beyond)]) continue;
            const auto& corners = indexed.tetrahedra[t];
            shape.push_back({corners[FACETS[i][0]], corners[FACETS[i][1]], corners[FACETS[i][2]]});
        }
    }
    return shape;
}

void writePly(std::ostream& out, const std::vector<Point3>& points,
              const std::vector<Triangle>& triangles) {
    out << "ply\nformat ascii 1.0\nelement vertex " << points.size()
        << "\nproperty double x\nproperty double y\nproperty double z\nelement face "
        << triangles.size() << "\nproperty list uchar int vertex_indices\nend_header\n";
    for (const Point3& p : points) out << p.x() << " " << p.y() << " " << p.z() << "\n";
    for (const auto& [a, b, c] : triangles) out << "3 " << a << " " << b << " " << c << "\n";
}

int eulerCharacteristic(const std::vector<Triangle>& triangles) {
    std::set<std::int32_t> vertices;
    std::set<std::array<std::int32_t, 2>> edges;
    for (const auto& [a, b, c] : triangles) {
        vertices.insert({a, b, c});
        edges.insert({{std::min(a, b), std::max(a, b)},
                      {std::min(b, c), std::max(b, c)},
                      {std::min(c, a), std::max(c, a)}});
    }
    return static_cast<int>(vertices.size() + triangles.size()) - static_cast<int>(edges.size());
}

}  // namespace

int main() {
    const std::vector<Point3> points = ringOfPoints();
    Varn_3D mesh;
    mesh.insert(points);
    // A sphere around a cube of the lattice has the radius 0.87, one across the hole 1.1.
    const std::vector<Triangle> shape = alphaShape(mesh, 1);
    std::ofstream file("alpha_shape.ply");
    writePly(file, points, shape);
    std::cout << "alpha_shape.ply: " << shape.size() << " triangles, Euler characteristic "
              << eulerCharacteristic(shape) << "\n";
}
