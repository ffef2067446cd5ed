#pragma once

#include <vector>

#include "dt3Library/Export.h"
#include "dt3Library/Point3.h"

namespace VARN3D {

class Varn_3D;

/// What the Voronoi cells of two vertices have in common: a convex polygon.
struct VoronoiFacet {
    /// The vertex whose cell lies on the other side.
    Point3* neighbour;
    /// Whether the polygon is closed. An unbounded one goes on for ever beyond its first and its
    /// last corner, which may be the same.
    bool bBounded;
    /// The corners, counter-clockwise seen from the neighbour.
    std::vector<Point3> corners;
};

/// All points that are no farther from one vertex than from any other.
struct VoronoiCell {
    /// Whether it is bounded: exactly if the vertex does not lie on the convex hull's surface.
    bool bBounded;
    /// Infinite for an unbounded cell, and where it exceeds the range of doubles.
    double volume;
    /// Its facets.
    std::vector<VoronoiFacet> facets;
};

/// The Voronoi cell of a vertex of the mesh.
///
/// Which facets there are and how many corners they have is decided exactly: where more than four
/// vertices lie on a common empty sphere its centre is one corner, and neighbours in the mesh whose
/// cells share no area have no facet. Corners that are equal in exact arithmetic are equal in all
/// facets of the cell.
///
/// A corner is the exact one as seen from the vertex, each component rounded to within 2^-49 of
/// itself, added to the vertex's coordinates in plain doubles; it is infinite where it exceeds
/// their range. The volume is off by at most 1e-14 times the corners of all facets times the cube
/// of the largest distance of a corner; it overflows or underflows with that cube.
///
/// O(tetrahedra around the vertex times the most at one edge). Reads the mesh only, so several
/// threads may call it at once while nobody inserts. What is no vertex of the mesh, null included,
/// and a vertex that waits are failed checks and throw VarnException.
VARN3D_EXPORT VoronoiCell getVoronoiCell(const Varn_3D& mesh, const Point3* pVtx);

}  // namespace VARN3D
