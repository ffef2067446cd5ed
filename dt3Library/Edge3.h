#pragma once

#include <iosfwd>

#include "dt3Library/Export.h"
#include "dt3Library/Tet3.h"

namespace VARN3D {

/// The handle of an edge: a tetrahedron that has it, and the indices of the two corners that are
/// not on it. The edge lies on facet opp3ICI, opposite that facet's corner opp2ICI, and runs from
/// source to target the way that facet runs counter-clockwise seen from outside; exchanging the two
/// indices reverses it. A value that owns nothing and means nothing any more once the mesh changes.
/// It is read, as the mesh is, by several threads at most while nobody inserts.
class VARN3D_EXPORT Edge3 {
  public:
    /// Indices outside 0..3 throw VarnException.
    Edge3(Tet3* pTheTet, int opp3, int opp2);

    /// The tetrahedron through which the edge was named.
    Tet3* getTet() const { return pTet; }
    /// The index of the corner opposite the facet on which the edge lies.
    int getOpp3Index() const { return opp3ICI; }
    /// The index of that facet's corner opposite the edge.
    int getOpp2Index() const { return opp2ICI; }
    /// @{
    /// The corner index, 0 to 3, of an end of the edge.
    int getSourceIndex() const;
    int getTargetIndex() const;
    /// @}
    /// @{
    /// The vertex at an end of the edge.
    Point3* getSourceVtx() const { return pTet->getCorner(getSourceIndex()); }
    Point3* getTargetVtx() const { return pTet->getCorner(getTargetIndex()); }
    /// @}

    /// The same end points in either direction; the tetrahedra may differ.
    bool operator==(const Edge3& other) const;
    /// The opposite of `==`.
    bool operator!=(const Edge3& other) const { return !(*this == other); }
    /// By the addresses of the end points, so that sets identify an edge however it was named.
    bool operator<(const Edge3& other) const;

  private:
    Tet3* pTet;
    int opp3ICI;
    int opp2ICI;
    Point3* pLowVtx;
    Point3* pHighVtx;
};

/// Prints the tetrahedron and the four corners by their roles, a line each.
VARN3D_EXPORT std::ostream& operator<<(std::ostream& out, const Edge3& edge);

}  // namespace VARN3D
