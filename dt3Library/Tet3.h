#pragma once

#include <atomic>
#include <cstdint>
#include <iosfwd>
#include <utility>

#include "dt3Library/Export.h"
#include "dt3Library/Point3.h"

namespace VARN3D {

class Edge3;
class Facet3;

/// A tetrahedron of the mesh: four corners and the four neighbours across its facets.
class VARN3D_EXPORT Tet3 {
  public:
    /// The label that the next tetrahedron of the process takes.
    static std::atomic<std::int32_t> runningLabel;

    Tet3();
    ~Tet3() = default;
    Tet3& operator=(const Tet3& other);

    /// Makes this record a fresh tetrahedron with these corners, a new label and no neighbours.
    void setProperties(Point3* pI, Point3* pJ, Point3* pK, Point3* pL);

    Point3* getCorner(int ith) const;
    void setCorner(int ith, Point3* p);
    void getCorners(Point3*& p0, Point3*& p1, Point3*& p2, Point3*& p3) const;
    int getIntraTetIndex(const Point3* pp) const;
    bool hasVertex(const Point3* p) const;
    bool hasVertex(const Point3& p) const;
    Point3 getCircumcenter() const;

    Tet3* getOppTet(int ith) const;
    Tet3* getOppTet(const Point3* p) const;
    void setOppTet(int ith, Tet3* pC);
    int getIntraTetIndex(const Tet3* pNeig) const;
    int getIntraTetIndexInOppTet(int ith) const;
    Point3* getOppVtxInOppTet(int ith, bool bNullAllowed) const;
    int getIntraTetIndexInOppTetForReg(const Tet3* pOther, int ith) const;
    static bool haveCommonFacet(Tet3* pT0, int opp0, Tet3* pT1, int opp1);
    int debug_getOppTetIndex(int ith) const;

    Facet3 getFacet(int ith);
    void getFacetIndices(int opp3, int& a, int& b, int& c) const;
    Edge3 getEdge(int opp3ICI, int opp2ICI);
    static std::pair<int, int> getEdgeIndices(int i, int j);

    int getCustomIndex() const { return customIndex; }
    void setCustomIndex(int value) { customIndex = value; }

  private:
    friend struct MeshAccess;
    friend VARN3D_EXPORT std::ostream& operator<<(std::ostream& out, const Tet3& tet);

    Tet3(const Tet3& other);

    bool hasBeenVisited = false;
    std::int32_t label;
    Point3* aVertexPointer[4] = {};
    Tet3* aOppTets[4] = {};
    std::int32_t customIndex = -1;
};

VARN3D_EXPORT std::ostream& operator<<(std::ostream& out, const Tet3& tet);

}  // namespace VARN3D
