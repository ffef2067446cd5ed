#include "tools/IndexedMesh.h"

#include <algorithm>
#include <numeric>
#include <utility>

namespace tool {

namespace {

using Four = std::array<std::int32_t, 4>;
using Places = std::array<std::size_t, 4>;

/// A tetrahedron and its number in the library's order.
struct Row {
    Four corners;
    std::uint32_t number;

    bool operator<(const Row& other) const { return corners < other.corners; }
};

/// The places of the smallest corner, of the smallest of the others, and of the last two, such that
/// the orientation stays: two pairs are exchanged, or none, and three corners turned.
Places orderOf(const Four& t) {
    static const Places withFirst[4] = {{0, 1, 2, 3}, {1, 0, 3, 2}, {2, 3, 0, 1}, {3, 2, 1, 0}};
    Places order = withFirst[std::min_element(t.begin(), t.end()) - t.begin()];
    const auto isSmaller = [&](std::size_t a, std::size_t b) { return t[a] < t[b]; };
    std::rotate(order.begin() + 1, std::min_element(order.begin() + 1, order.end(), isSmaller),
                order.end());
    return order;
}

Four inOrder(const Four& t, const Places& order) {
    return {t[order[0]], t[order[1]], t[order[2]], t[order[3]]};
}

/// What is -1, beyond the hull, becomes the number for none.
template <std::size_t size>
std::array<std::uint32_t, size> asUnsigned(const std::array<std::int32_t, size>& numbers) {
    std::array<std::uint32_t, size> result;
    std::copy(numbers.begin(), numbers.end(), result.begin());
    return result;
}

IndexedMesh::Facet smallestFirst(IndexedMesh::Facet facet) {
    std::rotate(facet.begin(), std::min_element(facet.begin(), facet.end()), facet.end());
    return facet;
}

}  // namespace

IndexedMesh::IndexedMesh(PointSet input, VARN3D::IndexedMesh mesh)
    : points(std::move(input.points)), attributes(std::move(input.attributes)) {
    firstEqual.resize(points.size());
    std::iota(firstEqual.begin(), firstEqual.end(), 0U);
    for (const auto& [point, first] : mesh.duplicates)
        firstEqual[static_cast<std::size_t>(point)] = static_cast<std::uint32_t>(first);
    for (const auto& facet : mesh.hull) hull.push_back(smallestFirst(asUnsigned(facet)));
    std::sort(hull.begin(), hull.end());
    takeTetrahedra(mesh);
}

/// Frees what it has read before it asks for more memory.
void IndexedMesh::takeTetrahedra(VARN3D::IndexedMesh& mesh) {
    std::vector<Row> rows(mesh.tetrahedra.size());
    for (std::uint32_t t = 0; t < rows.size(); ++t) {
        const Places order = orderOf(mesh.tetrahedra[t]);
        rows[t] = {inOrder(mesh.tetrahedra[t], order), t};
        if (!mesh.neighbours.empty()) mesh.neighbours[t] = inOrder(mesh.neighbours[t], order);
    }
    std::vector<Four>().swap(mesh.tetrahedra);
    std::sort(rows.begin(), rows.end());
    std::vector<std::uint32_t> newNumbers(rows.size());
    tetrahedra.reserve(rows.size());
    for (std::uint32_t t = 0; t < rows.size(); ++t) {
        tetrahedra.push_back(asUnsigned(rows[t].corners));
        newNumbers[rows[t].number] = t;
    }
    neighbours.reserve(mesh.neighbours.size());
    for (std::size_t t = 0; t < mesh.neighbours.size(); ++t)
        neighbours.push_back(asUnsigned(mesh.neighbours[rows[t].number]));
    renumberNeighbours(newNumbers);
}

void IndexedMesh::renumberNeighbours(const std::vector<std::uint32_t>& newNumbers) {
    for (Tetrahedron& opposite : neighbours)
        for (std::uint32_t& neighbour : opposite)
            neighbour = neighbour == NONE ? NONE : newNumbers[neighbour];
}

IndexedMesh::Facet IndexedMesh::facetOpposite(const Tetrahedron& t, std::size_t corner) {
    static const std::size_t outward[4][3] = {{1, 2, 3}, {0, 3, 2}, {0, 1, 3}, {0, 2, 1}};
    const auto& o = outward[corner];
    return smallestFirst({t[o[0]], t[o[1]], t[o[2]]});
}

void IndexedMesh::clip(const ClipPlane& plane) {
    const auto isKept = [&](std::uint32_t corner) { return plane.contains(points[corner]); };
    std::vector<std::uint32_t> newNumbers(tetrahedra.size(), NONE);
    std::uint32_t numKept = 0;
    for (std::size_t t = 0; t < tetrahedra.size(); ++t) {
        if (!std::all_of(tetrahedra[t].begin(), tetrahedra[t].end(), isKept)) continue;
        tetrahedra[numKept] = tetrahedra[t];
        if (!neighbours.empty()) neighbours[numKept] = neighbours[t];
        newNumbers[t] = numKept++;
    }
    tetrahedra.resize(numKept);
    neighbours.resize(std::min<std::size_t>(neighbours.size(), numKept));
    renumberNeighbours(newNumbers);
}

}  // namespace tool
