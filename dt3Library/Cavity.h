#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "dt3Library/FacetGluing.h"
#include "dt3Library/FacetSphereTests.h"
#include "dt3Library/GeomTest3.h"
#include "dt3Library/TetRecycler.h"

namespace VARN3D {

/// The cavity of one insertion: the tetrahedra whose circumsphere strictly holds the new vertex
/// (the conflict region), and the fan of new tetrahedra that fills it again (Bowyer 1981,
/// Watson 1981).
///
/// For the time of an insertion every vertex that is met has a cavity number, and under it the
/// difference to the new vertex and that difference's squared length are kept. A sphere test is
/// then a determinant of four such rows, and one error bound, from the largest components of all
/// rows, serves the whole insertion; what that bound can't decide goes to the exact predicates. The
/// minors of a tetrahedron's sphere test are the orientations of its facets against the new vertex,
/// so the orientation check of a new tetrahedron costs a comparison.
///
/// The region is grown first, and the new tetrahedra are made and glued afterwards.
class Cavity {
  public:
    Cavity(const GeomTest3& geomTest, TetRecycler& recycler);

    /// Starts an insertion of p: recycles what the last insertion released.
    void begin(Point3* p);

    /// Whether the numbers of vertices are used up, as happens after some 50 million insertions.
    /// Then, before the next insertion begins, the caller has to reset all vertices'
    /// `cavityNumber` to NO_CAVITY_NUMBER and call `restartNumbers`.
    bool isOutOfNumbers() const { return firstNumber + numRows > lastFirstNumber; }
    void restartNumbers() { firstNumber = numRows = 0; }

    /// Grows the region from a tetrahedron that holds p (not on the hull's surface) and fills it
    /// with new tetrahedra. Returns the last one. O(size of the region).
    Tet3* refillFrom(Tet3* start);

    /// Splits the seeds into those that stay and those in conflict, and grows the region from the
    /// latter. `vDoomed` gets the region, the seeds first.
    void grow(const std::vector<Tet3*>& vSeeds, std::vector<Tet3*>& vStaying,
              std::vector<Tet3*>& vDoomed);

    /// Makes a tetrahedron with p over each hull facet of these tetrahedra that p sees from
    /// outside. Returns the last one, null for an empty list.
    Tet3* fanOverHull(const std::vector<Tet3*>& vStaying);

    /// Fills the doomed region's boundary, as far as p sees it from inside. Returns the last new
    /// tetrahedron; an empty list is an error.
    Tet3* retetrahedralise(const std::vector<Tet3*>& vDoomed);

    /// Links the new tetrahedra of the insertion with each other. Returns how many of their facets
    /// through p have no partner.
    std::size_t glue();

    /// A tetrahedron of four vertices without neighbours. Checks the orientation: a negative one is
    /// printed and refused, a flat one printed and kept.
    Tet3* createTet(Point3* a, Point3* b, Point3* c, Point3* d);

    static void registerTets(Tet3* fromTet, int ith, Tet3* toTet, int jth);

    /// For tests: cavities made from now on evaluate their sphere tests by the portable kernel. The
    /// mesh does not depend on it.
    static inline bool bPortableKernel = false;
    /// For tests: numbers count as used up from here on. An insertion may take as many again.
    static inline std::uint32_t lastFirstNumber = 0x7FFFFFFF;

  private:
    /// A tetrahedron of the region whose neighbours are still to be visited, with the cavity
    /// numbers of its corners.
    struct Doomed {
        Tet3* tet;
        int number[4];
    };
    /// A facet of the region's boundary: facet `ith` of `inner`, whose other side is `outer` (null
    /// on the hull), with the cavity numbers of its vertices as the new tetrahedron takes them.
    struct BoundaryFacet {
        Tet3* inner;
        Tet3* outer;
        double orientation;
        int number[3];
        int ith;
    };

    std::uint32_t numberIfMet(Point3* vertex) const;
    int numberOf(Point3* vertex);
    int addRow(Point3* vertex);
    Point3* vertexOf(int number) const { return vertices[static_cast<std::size_t>(number)]; }
    const SphereRow* rowOf(int number) const { return rows.data() + number; }
    SphereTest evaluate(Tet3* tet);
    bool isInConflict(Tet3* tet);
    unsigned decideConflicts(const Tet3* tet, unsigned candidates, const double conflict[4]) const;
    void updateBounds();
    void doom(Tet3* tet);
    void pushDoomed(Tet3* tet);
    void growRegionAndBoundary(Tet3* start);
    void visitNeighbours(const Doomed& current);
    Tet3* fillBoundary();
    void checkOrientation(Point3* a, Point3* b, Point3* c, Point3* d) const;
    Tet3* newTet(std::uint32_t label, Point3* b, Point3* c, Point3* d);

    const GeomTest3& predicates;
    TetRecycler& tets;
    const FacetSphereKernel evaluateFacets;
    FacetGluing gluing;

    Point3* newVertex = nullptr;
    /// The vertices met by this insertion, seen from p, by their cavity numbers.
    std::vector<SphereRow> rows;
    std::vector<Point3*> vertices;
    std::uint32_t numRows = 0;
    /// What a vertex holds is its cavity number plus this. All that earlier insertions left is
    /// less.
    std::uint32_t firstNumber = 0;
    double maxX = 0.0;
    double maxY = 0.0;
    double maxZ = 0.0;
    double maxLift = 0.0;
    /// A determinant beyond these in size has a certain sign.
    double sphereBound = 0.0;
    double orientationBound = 0.0;

    std::vector<Doomed> stack;
    /// The first numBoundary count, and there is always room for four more.
    std::vector<BoundaryFacet> boundary;
    std::size_t numBoundary = 0;
};

}  // namespace VARN3D
