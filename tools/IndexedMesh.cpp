#include "tools/IndexedMesh.h"

#include <algorithm>
#include <unordered_map>
#include <utility>

namespace tool {

using VARN3D::Point3;
using VARN3D::Tet3;

namespace {

/// Moves the smallest corner to the front and the smallest of the others behind it, by exchanging
/// two pairs or turning three corners: neither changes the orientation.
void bringIntoOrder(IndexedMesh::Tetrahedron& t) {
    const auto smallest = std::min_element(t.begin(), t.end()) - t.begin();
    if (smallest == 1)
        t = {t[1], t[0], t[3], t[2]};
    else if (smallest == 2)
        t = {t[2], t[3], t[0], t[1]};
    else if (smallest == 3)
        t = {t[3], t[2], t[1], t[0]};
    std::rotate(t.begin() + 1, std::min_element(t.begin() + 1, t.end()), t.end());
}

}  // namespace

IndexedMesh::IndexedMesh(PointSet input, const std::vector<Point3*>& vertices,
                         const std::vector<Tet3*>& tets)
    : points(std::move(input.points)), attributes(std::move(input.attributes)) {
    std::unordered_map<const Point3*, std::uint32_t> firstOfVertex;
    firstOfVertex.reserve(vertices.size());
    firstEqual.reserve(vertices.size());
    for (std::uint32_t i = 0; i < vertices.size(); ++i)
        firstEqual.push_back(firstOfVertex.emplace(vertices[i], i).first->second);
    tetrahedra.reserve(tets.size());
    for (const Tet3* tet : tets) {
        Tetrahedron corners = {};
        for (int i = 0; i < 4; ++i)
            corners[static_cast<std::size_t>(i)] = firstOfVertex.at(tet->getCorner(i));
        for (int i = 0; i < 4; ++i)
            if (!tet->getOppTet(i))
                hull.push_back(facetOpposite(corners, static_cast<std::size_t>(i)));
        bringIntoOrder(corners);
        tetrahedra.push_back(corners);
    }
    std::sort(tetrahedra.begin(), tetrahedra.end());
    std::sort(hull.begin(), hull.end());
}

IndexedMesh::Facet IndexedMesh::facetOpposite(const Tetrahedron& t, std::size_t corner) {
    static const std::size_t outward[4][3] = {{1, 2, 3}, {0, 3, 2}, {0, 1, 3}, {0, 2, 1}};
    const auto& o = outward[corner];
    Facet facet = {t[o[0]], t[o[1]], t[o[2]]};
    std::rotate(facet.begin(), std::min_element(facet.begin(), facet.end()), facet.end());
    return facet;
}

void IndexedMesh::clip(const ClipPlane& plane) {
    const auto isCut = [&](const Tetrahedron& corners) {
        return std::any_of(corners.begin(), corners.end(),
                           [&](std::uint32_t corner) { return !plane.contains(points[corner]); });
    };
    tetrahedra.erase(std::remove_if(tetrahedra.begin(), tetrahedra.end(), isCut), tetrahedra.end());
}

}  // namespace tool
