#pragma once

#include "dt3Library/IndexedMesh.h"
#include "dt3Library/engine/TetRecycler.h"
#include "dt3Library/store/PointNumbers.h"

namespace VARN3D {

/// The mesh of these records in numbers. More points or tetrahedra than 32 bits count are a failed
/// check. O(n); throws std::bad_alloc.
IndexedMesh indexMesh(const TetRecycler& tets, const PointNumbers& numbers);

}  // namespace VARN3D
