#pragma once

#include <vector>

#include "dt3Library/Tet3.h"

namespace VARN3D {

/// Appends the tetrahedra around a vertex; for one that is not in the mesh, prints an error and
/// appends nothing. O(their number).
void listStar(Point3* vertex, std::vector<Tet3*>& tets);

}  // namespace VARN3D
