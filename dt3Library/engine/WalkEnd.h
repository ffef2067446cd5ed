#pragma once

#include "dt3Library/Tet3.h"

namespace VARN3D {

/// Where a walk towards a point has ended.
struct WalkEnd {
    enum class Place {
        INSIDE,      ///< the tetrahedron holds the point, which is no vertex and not on the hull
        AT_VERTEX,   ///< the point is the tetrahedron's corner `index`
        AT_HULL,     ///< the point lies on or beyond the tetrahedron's hull facet `index`
        ON_THE_WAY,  ///< nothing is known but that the point may be elsewhere
    };

    Place place;
    Tet3* tet;
    /// A corner or a facet, as the place says.
    int index = 0;
};

}  // namespace VARN3D
