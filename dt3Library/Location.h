#pragma once

#include "dt3Library/Tet3.h"

namespace VARN3D {

/// The smallest element of the mesh on which a point lies.
enum class LocationKind {
    OUTSIDE,    ///< strictly outside the convex hull
    INSIDE,     ///< strictly inside a tetrahedron
    ON_FACET,   ///< on a facet, not on an edge
    ON_EDGE,    ///< on an edge, not at an end
    AT_VERTEX,  ///< at a vertex
};

/// Where a point lies in the mesh; the convex hull's surface belongs to the mesh. Owns nothing, and
/// means nothing any more after the next insertion. A plain value.
struct Location {
    LocationKind kind = LocationKind::OUTSIDE;
    /// A tetrahedron that holds the point; outside, one with a hull facet that the point lies
    /// strictly beyond, or null while there are no tetrahedra.
    Tet3* tet = nullptr;
    /// On a facet: its index. On an edge: with opp2 the corners of `tet` that are not on the edge,
    /// which is `tet->getEdge(opp3, opp2)`. Outside: the index of that hull facet. Else -1.
    int opp3 = -1;
    /// See above; -1 unless on an edge.
    int opp2 = -1;
    /// The vertex with the point's coordinates; null unless at one.
    Point3* vertex = nullptr;
};

}  // namespace VARN3D
