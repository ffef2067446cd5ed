#pragma once

#include <cstddef>
#include <vector>

#include "dt3Library/GeomTest3.h"
#include "dt3Library/engine/FacetGluing.h"
#include "dt3Library/engine/TetRecycler.h"
#include "dt3Library/engine/VisibleHull.h"
#include "dt3Library/engine/WalkEnd.h"

namespace VARN3D {

/// The cavity of one insertion: the tetrahedra whose circumsphere strictly holds the new vertex
/// (the conflict region), and the fan of new tetrahedra that fills it again (Bowyer 1981,
/// Watson 1981).
///
/// The region is grown first, breadth first, so that what one step asks of memory arrives while
/// others are being taken. Every facet on which a new tetrahedron will stand is noted on the way.
/// Then all memory that the filling needs is reserved, and only then does the mesh change: an
/// insertion that throws std::bad_alloc leaves it as it was.
class Cavity {
  public:
    Cavity(const GeomTest3& geomTest, TetRecycler& recycler);

    /// Inserts a vertex where it has been found to lie, INSIDE or AT_HULL. Returns the last new
    /// tetrahedron. O(size of the region, and of the hull that the vertex sees).
    Tet3* insert(Point3* p, const WalkEnd& place);

    /// To be called when tetrahedra's records have gone.
    void forgetAll() { hull.forgetAll(); }

    /// A tetrahedron of four vertices without neighbours. Checks the orientation: a negative one is
    /// printed and refused, a flat one printed and kept.
    Tet3* createTet(Point3* a, Point3* b, Point3* c, Point3* d);

  private:
    /// A facet to carry a new tetrahedron: corners 1 to 3 of that, and the tetrahedron on its other
    /// side with its index there, null on the hull.
    struct Base {
        Point3* corners[3];
        Tet3* outer;
        int index;
    };

    struct View;

    void prepare(const WalkEnd& place);
    void startRegion(const WalkEnd& place);
    bool isInConflict(const Tet3* tet) const;
    bool isInConflict(const View& seen, int ith, const Tet3* outer, int index) const;
    void growRegion();
    void visitNeighbours(const Tet3* tet);
    void addBase(const View& seen, int ith, Tet3* outer, int index);
    void coverHullFacet(Tet3* tet, int ith);
    void doom(Tet3* tet);
    Tet3* fill();
    void checkOrientation(Point3* a, Point3* b, Point3* c, Point3* d) const;

    const GeomTest3& predicates;
    TetRecycler& tets;
    VisibleHull hull;
    FacetGluing gluing;
    Point3* newVertex = nullptr;
    /// The doomed tetrahedra in the order of their finding, and the facets that will carry new
    /// ones.
    std::vector<Tet3*> region;
    std::vector<Base> bases;
    std::vector<Tet3*> created;
};

}  // namespace VARN3D
