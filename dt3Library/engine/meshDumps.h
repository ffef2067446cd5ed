#pragma once

#include <string>
#include <vector>

#include "dt3Library/Tet3.h"

namespace VARN3D {

/// Prints all tetrahedra under a label.
void printMesh(const std::string& label, const std::vector<Tet3*>& tets);

/// Writes all tetrahedra to a Geomview file, and marks a vertex unless it is null.
void showMesh(const std::string& filename, const std::vector<Tet3*>& tets, const Point3* vertex);

}  // namespace VARN3D
