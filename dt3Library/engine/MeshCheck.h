#pragma once

#include <string>
#include <vector>

#include "dt3Library/GeomTest3.h"

namespace VARN3D {

/// Checks a mesh as the library's users ask for it: marks, orientations and, if wanted, spheres.
/// What it finds is printed and dumped to a Geomview file.
class MeshCheck {
  public:
    /// The list must outlive the check.
    MeshCheck(const GeomTest3& geomTest, const std::vector<Tet3*>& tetrahedra)
        : predicates(geomTest), tets(tetrahedra) {}

    /// Whether all is well. Stops at the first fault; a mark left behind is a failed check. O(n).
    bool run(const std::string& location, bool bSpheres) const;

  private:
    bool isSound(const std::string& location, Tet3* tet, bool bSpheres) const;
    void reportSide(const std::string& location, const Tet3* tet, int ith, const Point3* vertex,
                    Orientation3 orientation) const;

    const GeomTest3& predicates;
    const std::vector<Tet3*>& tets;
};

}  // namespace VARN3D
