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

/// A tetrahedron of the mesh: four corners, and the four neighbours across its facets.
///
/// Index conventions, binding everywhere: corners have the indices 0 to 3 (messages call such an
/// index ICI, intra-tetrahedron corner index). Facet i is the one opposite corner i, and neighbour
/// i lies across it; it is null where the facet lies on the convex hull. Every tetrahedron of the
/// mesh is positively oriented: seen from corner 3 the corners 0, 1, 2 run counter-clockwise.
///
///              3
///             /|\          facet 0: corners 1, 2, 3
///            / | \         facet 1: corners 0, 3, 2
///           /  |  \        facet 2: corners 0, 1, 3
///          0---|---2       facet 3: corners 0, 2, 1
///           \  |  /        (each counter-clockwise
///            \ | /          seen from outside)
///             \|/
///              1           edge (i, j): the edge without corners i and j
///
/// The engine owns all tetrahedra. A pointer to one is good until the next insertion, which may
/// destroy the tetrahedron and use its record again.
///
/// An index outside 0..3 is reported on standard output and throws VarnException. All operations
/// take constant time. Thread rule: reading is safe from several threads while nobody inserts.
class VARN3D_EXPORT Tet3 {
  public:
    /// The label that the next tetrahedron of the process takes. Labels are not used again, apart
    /// from the counter's wrapping around after 2^32 of them.
    static std::atomic<std::int32_t> runningLabel;

    /// For completeness; the engine fills records by `setProperties`. Prints a line saying so.
    Tet3();
    ~Tet3() = default;
    /// Copies every field, the label included.
    Tet3& operator=(const Tet3& other);

    /// Makes this record a fresh tetrahedron with these corners, a new label and no neighbours, and
    /// the corners' incident tetrahedron this one. None may be null.
    void setProperties(Point3* pI, Point3* pJ, Point3* pK, Point3* pL);

    /// Corner ith.
    Point3* getCorner(int ith) const {
        if (ith < 0 || ith > 3) failRange03(ith);
        return aVertexPointer[ith];
    }
    /// Replaces a corner; the point's incident tetrahedron stays as it is.
    void setCorner(int ith, Point3* p);
    /// Writes out all four corners.
    void getCorners(Point3*& p0, Point3*& p1, Point3*& p2, Point3*& p3) const;
    /// The index of a corner, by address. If pp is none: a failed check, VarnException.
    int getIntraTetIndex(const Point3* pp) const;
    /// Whether p is a corner, by address.
    bool hasVertex(const Point3* p) const;
    /// Whether a corner has p's coordinates; a corner that is null has none.
    bool hasVertex(const Point3& p) const;
    /// The centre of the sphere through the corners, none of which may be null: VarnException. In
    /// plain floating point, so a flat tetrahedron gives infinite, NaN or meaningless coordinates.
    /// Fourth powers of the edges occur: below 1e-76 or above 1e76 they leave a double's range.
    Point3 getCircumcenter() const;

    /// The neighbour opposite corner ith; null on the hull.
    Tet3* getOppTet(int ith) const {
        if (ith < 0 || ith > 3) failRange03(ith);
        return aOppTets[ith];
    }
    /// The neighbour opposite corner p; throws VarnException if p is no corner.
    Tet3* getOppTet(const Point3* p) const;
    /// Sets neighbour ith. The other side is the caller's business; the tetrahedron itself is
    /// refused with a warning and VarnException.
    void setOppTet(int ith, Tet3* pC);
    /// The index of a neighbour. If pNeig is none, prints both and ends the process with code 1.
    int getIntraTetIndex(const Tet3* pNeig) const;
    /// The index that this tetrahedron has in its neighbour ith, which must exist: VarnException.
    int getIntraTetIndexInOppTet(int ith) const;
    /// The corner of neighbour ith that lies opposite the shared facet. Without neighbour: null if
    /// that is allowed, else an error and VarnException.
    Point3* getOppVtxInOppTet(int ith, bool bNullAllowed) const;
    /// The index of the first corner that is not on facet ith of pOther: the way to match two
    /// tetrahedra across a facet while their neighbour links are still being set.
    int getIntraTetIndexInOppTetForReg(const Tet3* pOther, int ith) const;
    /// Whether facet opp0 of pT0 and facet opp1 of pT1 have the same corners. If not, prints both
    /// and ends the process with code 1.
    static bool haveCommonFacet(Tet3* pT0, int opp0, Tet3* pT1, int opp1);
    /// -1 without neighbour ith, else a message and 0.
    int debug_getOppTetIndex(int ith) const;

    /// The handle of facet ith.
    Facet3 getFacet(int ith);
    /// The corners of facet opp3, counter-clockwise seen from outside (see the drawing). Mind that
    /// `getEdgeIndices` and `Facet3::getIntraTetIndex` go round clockwise.
    void getFacetIndices(int opp3, int& a, int& b, int& c) const;
    /// The handle of the edge without these two corners, which must differ.
    Edge3 getEdge(int opp3ICI, int opp2ICI);
    /// The corners (first, second) of edge j (0 to 2) of facet i; the three run clockwise seen from
    /// outside. The arguments are not checked.
    static std::pair<int, int> getEdgeIndices(int i, int j);

    /// A tag for the host: -1 in a new tetrahedron, never read by the library.
    int getCustomIndex() const { return customIndex; }
    /// Sets that tag.
    void setCustomIndex(int value) { customIndex = value; }

  private:
    friend struct MeshAccess;
    friend VARN3D_EXPORT std::ostream& operator<<(std::ostream& out, const Tet3& tet);

    /// A record to be filled, without a label.
    struct Blank {};
    explicit Tet3(Blank) {}
    Tet3(const Tet3& other);
    [[noreturn]] static void failRange03(int ith);

    bool hasBeenVisited = false;
    std::int32_t label = 0;
    Point3* aVertexPointer[4] = {};
    Tet3* aOppTets[4] = {};
    std::int32_t customIndex = -1;
};

/// Prints label, address, visited mark and exact orientation ("none" while a corner is null), then
/// a line for each corner with the neighbour opposite.
VARN3D_EXPORT std::ostream& operator<<(std::ostream& out, const Tet3& tet);

}  // namespace VARN3D
