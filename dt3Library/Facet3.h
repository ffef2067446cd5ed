#pragma once

#include "dt3Library/Export.h"
#include "dt3Library/Tet3.h"

namespace VARN3D {

/// The handle of a facet: a tetrahedron that has it, and the index of the corner opposite.
/// A value that owns nothing and means nothing any more once the mesh changes. It is read, as the
/// mesh is, by several threads at most while nobody inserts.
class VARN3D_EXPORT Facet3 {
  public:
    /// The facet opposite corner opp3; one outside 0..3 throws VarnException.
    Facet3(Tet3* pTheTet, int opp3);

    /// The tetrahedron through which the facet was named.
    Tet3* getTet() const { return pTet; }
    /// The index of the corner opposite the facet.
    int getOpp3Index() const { return opp3ICI; }

    /// The corner index of the facet's ith corner (0 to 2): the tetrahedron's corners (1,3,2),
    /// (0,2,3), (0,3,1), (0,1,2) for the facets 0 to 3. Another ith throws VarnException, here and
    /// below.
    ///
    /// Mind the sense: these corners run clockwise seen from outside, those of
    /// `Tet3::getFacetIndices` counter-clockwise. A surface of outward triangles takes the latter.
    int getIntraTetIndex(int ith) const;
    /// The facet's edge opposite its ith corner.
    Edge3 getEdge(int ith) const;

    /// The same facet, from the same or from the other side.
    bool operator==(const Facet3& other) const;
    /// The opposite of `==`.
    bool operator!=(const Facet3& other) const { return !(*this == other); }

  private:
    Tet3* pTet;
    int opp3ICI;
};

}  // namespace VARN3D
