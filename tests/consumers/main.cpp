// What a host does with the library; built in each of the ways to link it. The points are one-ulp
// neighbours, so that a library built with anything but strict arithmetic gets them wrong; integers
// tell whether the mesh is right, whatever options this file is compiled with.

#include <dt3Library/Varn_3D.h>

#include <cstdint>
#include <iostream>
#include <map>
#include <vector>

namespace {

using Wide = __int128;
constexpr double ULP = 1.0 / (std::int64_t{1} << 52);

struct Row {
    Wide x, y, z, square;
};

Row rowOf(const std::int64_t a[3], const std::int64_t origin[3]) {
    const Wide x = a[0] - origin[0], y = a[1] - origin[1], z = a[2] - origin[2];
    return {x, y, z, x * x + y * y + z * z};
}

Wide volume(const Row& a, const Row& b, const Row& c) {
    return a.x * (b.y * c.z - b.z * c.y) - a.y * (b.x * c.z - b.z * c.x) +
           a.z * (b.x * c.y - b.y * c.x);
}

// Whether the origin of the four rows lies strictly inside their sphere.
bool holdsOrigin(const Row& a, const Row& b, const Row& c, const Row& d) {
    const Wide orientation = volume(b, c, d) - volume(a, c, d) + volume(a, b, d) - volume(a, b, c);
    const Wide sphere = a.square * volume(b, c, d) - b.square * volume(a, c, d) +
                        c.square * volume(a, b, d) - d.square * volume(a, b, c);
    return orientation > 0 ? sphere > 0 : sphere < 0;
}

}  // namespace

int main() {
    std::vector<VARN3D::Point3> points;
    std::vector<std::int64_t> steps;
    std::uint32_t state = 1;
    for (int i = 0; i < 3 * 60; ++i) {
        state = state * 1664525U + 1013904223U;
        steps.push_back(state >> 28);
    }
    for (std::size_t i = 0; i < steps.size(); i += 3)
        points.emplace_back(1.0 + static_cast<double>(steps[i]) * ULP,
                            1.0 + static_cast<double>(steps[i + 1]) * ULP,
                            1.0 + static_cast<double>(steps[i + 2]) * ULP);

    VARN3D::Varn_3D mesh;
    std::vector<VARN3D::Point3*> handles;
    mesh.insert(points, handles);
    std::map<const VARN3D::Point3*, const std::int64_t*> stepsOf;
    for (std::size_t i = 0; i < points.size(); ++i) stepsOf[handles[i]] = &steps[3 * i];

    std::vector<VARN3D::Tet3*> tets;
    mesh.getTetrahedra(tets);
    for (const VARN3D::Tet3* tet : tets) {
        for (const auto& [vertex, origin] : stepsOf) {
            Row rows[4];
            for (int k = 0; k < 4; ++k) rows[k] = rowOf(stepsOf.at(tet->getCorner(k)), origin);
            if (holdsOrigin(rows[0], rows[1], rows[2], rows[3])) {
                std::cout << "A vertex lies inside the sphere of " << *tet;
                return 1;
            }
        }
    }
    std::cout << VARN3D::getVarn3DVersion() << ": " << tets.size() << " right tetrahedra\n";
    return tets.size() > 100 ? 0 : 1;
}
