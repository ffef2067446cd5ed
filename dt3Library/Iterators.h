#pragma once

#include "dt3Library/Edge3.h"
#include "dt3Library/Export.h"
#include "dt3Library/Tet3.h"

namespace VARN3D {

/// A circulator around an edge: goes from tetrahedron to tetrahedron across the facets at the edge.
///
/// Around an interior edge it comes back to its first tetrahedron after as many steps as there are
/// tetrahedra at the edge; at the hull `nextIsNull` becomes true. It carries a payload, a slot for
/// a tetrahedron and an index that the caller wants to remember. It owns nothing and means nothing
/// any more once the mesh changes. One thread uses it; others may have their own on the same mesh.
class VARN3D_EXPORT TetAroundEdgeIterator {
  public:
    /// Starts at the tetrahedron through which the edge is named.
    explicit TetAroundEdgeIterator(const Edge3& edge);
    /// Copies edge and payload, but not the payload's index.
    TetAroundEdgeIterator(const TetAroundEdgeIterator& other);
    /// Copies everything, the payload's index included.
    TetAroundEdgeIterator& operator=(const TetAroundEdgeIterator& other) = default;

    /// The current tetrahedron.
    Tet3* operator*() const { return current.getTet(); }
    /// The tetrahedron that a step would lead to; null at the hull.
    Tet3* previewNextTet() const { return current.getTet()->getOppTet(current.getOpp2Index()); }
    /// Whether a step would leave the mesh.
    bool nextIsNull() const { return previewNextTet() == nullptr; }
    /// Goes on to the next tetrahedron, which must exist.
    TetAroundEdgeIterator& operator++();

    /// The edge, named through the current tetrahedron.
    Edge3 getEdge() const { return current; }
    /// The facet of the current tetrahedron across which the circulator came.
    int getOpp3Index() const { return current.getOpp3Index(); }
    /// The facet across which the next step leads.
    int getOpp2Index() const { return current.getOpp2Index(); }

    /// The same edge and the same current tetrahedron.
    bool operator==(const TetAroundEdgeIterator& other) const;
    /// The opposite of `==`.
    bool operator!=(const TetAroundEdgeIterator& other) const { return !(*this == other); }

    /// @{
    /// The payload. Setting it twice, or reading it when it is not set, is a failed check and
    /// throws VarnException.
    void setPayload(Tet3* pTet);
    Tet3* getPayload() const;
    void setPayloadICI(int ici);
    int getPayloadICI() const;
    /// @}

    /// Prints the current edge on standard output.
    void debug() const;

  private:
    Edge3 current;
    Tet3* storedPayload = nullptr;
    int storedPayloadICI = -1;
};

}  // namespace VARN3D
