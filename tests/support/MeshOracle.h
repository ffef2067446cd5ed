#pragma once

#include <string>
#include <vector>

#include "dt3Library/Varn_3D.h"

namespace support {

/// Looks for a fault of a mesh by brute force in exact arithmetic, given all points inserted so far
/// and the handles they got. `numPending` is how many vertices are expected to be in no tetrahedron
/// although there are tetrahedra. Returns what is wrong first; empty if nothing is.
///
/// Checks: handles and coordinates; no tetrahedron exactly if all points are coplanar; positive
/// tetrahedra; mutual neighbours across every shared facet; a convex hull; empty circumspheres
/// against all vertices; the stars of all vertices; the library's own check.
/// O(vertices * tetrahedra) exact tests.
std::string findMeshFault(VARN3D::Varn_3D& mesh, const std::vector<VARN3D::Point3>& points,
                          const std::vector<VARN3D::Point3*>& handles, std::size_t numPending = 0);

/// Whether all points lie in one plane, exactly.
bool areCoplanar(const std::vector<VARN3D::Point3>& points);

}  // namespace support
