#pragma once

#include <array>

#include "dt3Library/Tet3.h"

namespace varn3d_python {

/// The weights of a tetrahedron's corners whose weighted mean a point is that lies in it or on its
/// surface: none is negative, their sum is 1. They are good to about 15 digits also in nearly flat
/// tetrahedra, of which grids with rounded coordinates are full, down to volumes of 1e-15 times the
/// size cubed.
std::array<double, 4> affineWeights(const VARN3D::Tet3& tet, const VARN3D::Point3& point);

}  // namespace varn3d_python
