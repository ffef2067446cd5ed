#pragma once

#include <array>
#include <cstdint>
#include <vector>

namespace VARN3D {

/// A mesh in plain numbers, as `Varn_3D::getIndexedMesh` gives it. It is the host's own and doesn't
/// follow later insertions. Each vector is one block of 32-bit numbers.
///
/// Points are named by the numbers that the library has given them: input points are counted from
/// 0 over all insertions, and a vertex is named by the first that has its coordinates. What a host
/// has set by `Point3::setIndex` doesn't count.
struct IndexedMesh {
    /// The corners of each tetrahedron, positively oriented (see `Tet3`). The order is that of
    /// `Varn_3D::getTetrahedra`, in which addresses play no part.
    std::vector<std::array<std::int32_t, 4>> tetrahedra;
    /// For each tetrahedron the positions of its neighbours in the list; neighbour i lies opposite
    /// corner i, and -1 stands for the outside of the convex hull.
    std::vector<std::array<std::int32_t, 4>> neighbours;
    /// The facets of the convex hull, counter-clockwise seen from outside.
    std::vector<std::array<std::int32_t, 3>> hull;
    /// The points with the coordinates of an earlier one, ascending, each with the first that has
    /// them.
    std::vector<std::array<std::int32_t, 2>> duplicates;
};

}  // namespace VARN3D
