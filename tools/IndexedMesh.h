#pragma once

#include <dt3Library/IndexedMesh.h>
#include <array>
#include <cstdint>
#include <vector>

#include "tools/ClipPlane.h"
#include "tools/PointSet.h"

namespace tool {

/// A triangulation in terms of the input: corners are numbers of input points, counted from 0.
///
/// Every input point has its entry, in input order. Among points with equal coordinates only the
/// first is a corner of tetrahedra.
///
/// The corners of a tetrahedron keep its positive orientation (corners 0, 1, 2 run
/// counter-clockwise seen from corner 3), begin with the two smallest numbers, and the tetrahedra
/// are sorted: the same mesh gives the same list, wherever the library has put it in memory.
struct IndexedMesh {
    using Tetrahedron = std::array<std::uint32_t, 4>;
    using Facet = std::array<std::uint32_t, 3>;

    /// What has no number: beyond the mesh.
    static constexpr std::uint32_t NONE = UINT32_MAX;

    /// mesh: that of the input, in the library's order. Its neighbours may be left out. O(n log n).
    IndexedMesh(PointSet input, VARN3D::IndexedMesh mesh);

    /// Keeps the tetrahedra that lie wholly on the plane's side; the points stay.
    void clip(const ClipPlane& plane);

    bool isDuplicate(std::uint32_t point) const { return firstEqual[point] != point; }

    /// The facet opposite a corner, counter-clockwise as seen from that corner's far side, its
    /// smallest number first.
    static Facet facetOpposite(const Tetrahedron& corners, std::size_t corner);

    std::vector<VARN3D::Point3> points;
    std::vector<Attribute> attributes;
    /// For each point the first one with the same coordinates, often the point itself.
    std::vector<std::uint32_t> firstEqual;
    std::vector<Tetrahedron> tetrahedra;
    /// For each tetrahedron those opposite its corners, or none; nothing where they were left out.
    std::vector<Tetrahedron> neighbours;
    /// The facets of the convex hull, counter-clockwise as seen from outside, sorted. Clipping
    /// leaves them as they are.
    std::vector<Facet> hull;

  private:
    void takeTetrahedra(VARN3D::IndexedMesh& mesh);
    void renumberNeighbours(const std::vector<std::uint32_t>& newNumbers);
};

}  // namespace tool
