#pragma once

#include <dt3Library/Varn_3D.h>
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

    /// vertices: the vertex of each input point, as the insertion has handed them out.
    IndexedMesh(PointSet input, const std::vector<VARN3D::Point3*>& vertices,
                const std::vector<VARN3D::Tet3*>& tets);

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
    /// The facets of the convex hull, counter-clockwise as seen from outside, sorted. Clipping
    /// leaves them as they are.
    std::vector<Facet> hull;
};

}  // namespace tool
