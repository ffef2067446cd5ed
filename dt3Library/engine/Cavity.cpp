#include "dt3Library/engine/Cavity.h"

#include <cmath>
#include <iomanip>
#include <limits>

#include "dt3Library/base/EngineCheck.h"
#include "dt3Library/base/Profile.h"
#include "dt3Library/base/facets.h"
#include "dt3Library/base/messages.h"
#include "dt3Library/base/prefetch.h"
#include "dt3Library/predicates/FloatingPoint.h"

namespace VARN3D {

namespace {

constexpr double MAX_LIFT = GeomTest3::MAX_DIFFERENCE * GeomTest3::MAX_DIFFERENCE;

inline double larger(double a, double b) {
    return a < b ? b : a;
}

/// A vertex seen from the new one: its row in the sphere test's determinant.
struct Row {
    Row(const Point3* vertex, const Point3* p)
        : x(vertex->x() - p->x()),
          y(vertex->y() - p->y()),
          z(vertex->z() - p->z()),
          lift(x * x + y * y + z * z) {}

    double x, y, z;
    double lift;  ///< the squared length of (x, y, z)
};

/// The largest components of some rows in size.
struct Extent {
    void add(const Row& row) {
        x = larger(x, std::fabs(row.x));
        y = larger(y, std::fabs(row.y));
        z = larger(z, std::fabs(row.z));
        lift = larger(lift, row.lift);
    }

    double x = 0.0, y = 0.0, z = 0.0, lift = 0.0;
};

/// The determinant of a facet seen from the new vertex: negative where that lies on the side from
/// which a, b, c run counter-clockwise.
inline double orientationOf(const Row& a, const Row& b, const Row& c) {
    return a.z * (b.x * c.y - c.x * b.y) - b.z * (a.x * c.y - c.x * a.y) +
           c.z * (a.x * b.y - b.x * a.y);
}

/// The determinant of a sphere test: negative where the new vertex lies inside the sphere.
inline double sphereTest(const Row& a, const Row& b, const Row& c, const Row& d) {
    const double ab = a.x * b.y - b.x * a.y;
    const double bc = b.x * c.y - c.x * b.y;
    const double cd = c.x * d.y - d.x * c.y;
    const double da = d.x * a.y - a.x * d.y;
    const double ac = a.x * c.y - c.x * a.y;
    const double bd = b.x * d.y - d.x * b.y;
    const double abc = a.z * bc - b.z * ac + c.z * ab;
    const double bcd = b.z * cd - c.z * bd + d.z * bc;
    const double cda = c.z * da + d.z * ac + a.z * cd;
    const double dab = d.z * ab + a.z * bd + b.z * da;
    return (d.lift * abc - c.lift * dab) + (b.lift * cda - a.lift * bcd);
}

/// Bounds the rounding of sphereTest: the determinant is Shewchuk's first stage, so his bound holds
/// with each of the permanent's 24 terms replaced by the product of the largest components.
/// Differences too large for that leave everything to the predicates.
double sphereBound(const Extent& extent, const GeomTest3& predicates) {
    const double bound = 32.0 * predicates.getConstants().isperrboundA *
                             (extent.x * extent.y * extent.z) * extent.lift +
                         GeomTest3::UNDERFLOW_GUARD;
    return extent.lift < MAX_LIFT ? bound : std::numeric_limits<double>::infinity();
}

/// The same for orientationOf.
double orientationBound(const Extent& extent, const GeomTest3& predicates) {
    return extent.lift < MAX_LIFT ? predicates.getOrientationBound(extent.x, extent.y, extent.z)
                                  : std::numeric_limits<double>::infinity();
}

/// Prefetches the vertices beyond the facets of a doomed tetrahedron, from neighbours that were
/// prefetched when it was doomed.
inline void prefetchBeyond(const Tet3* tet) {
    for (int i = 0; i < 4; ++i) {
        const Tet3* outer = MeshAccess::neighbour(tet, i);
        if (outer != nullptr)
            prefetchRecord(MeshAccess::corner(outer, MeshAccess::indexOfNeighbour(outer, tet)));
    }
}

}  // namespace

/// A tetrahedron seen from the new vertex.
struct Cavity::View {
    View(const Tet3* aTet, const Point3* p)
        : tet(aTet),
          rows{{MeshAccess::corner(tet, 0), p},
               {MeshAccess::corner(tet, 1), p},
               {MeshAccess::corner(tet, 2), p},
               {MeshAccess::corner(tet, 3), p}} {
        for (const Row& row : rows) extent.add(row);
    }

    const Tet3* tet;
    Row rows[4];
    Extent extent;
};

Cavity::Cavity(const GeomTest3& geomTest, TetRecycler& recycler)
    : predicates(geomTest), tets(recycler), hull(geomTest) {}

// ---- Insertion ---------------------------------------------------------------------------------

Tet3* Cavity::insert(Point3* p, const WalkEnd& place) {
    newVertex = p;
    prepare(place);
    VARN3D_TIME(secondsCreation);
    Tet3* last = fill();
    const std::size_t numStoredTCS = gluing.glue(created);
    // Outside, the facets between the new vertex and the horizon find no partner: the new hull.
    const bool bClosed = numStoredTCS == 0 || place.place == WalkEnd::Place::AT_HULL;
    if (!bClosed)
        messageStream() << "numStoredTCS after insertVertex: " << numStoredTCS << std::endl;
    engineCheck(bClosed, checks::CAVITY_IS_CLOSED);
    return last;
}

/// Searches region and bases, and reserves what the filling needs. If any of it throws, the mesh is
/// as it was.
void Cavity::prepare(const WalkEnd& place) {
    VARN3D_TIME(secondsConflict);
    region.clear();
    bases.clear();
    try {
        startRegion(place);
        growRegion();
        engineCheck(!bases.empty(), checks::CAVITY_HAS_FACETS);
        tets.reserve(bases.size(), region.size());
        gluing.reserve(bases.size());
        created.reserve(bases.size());
    } catch (...) {
        for (Tet3* tet : region) MeshAccess::visited(tet) = false;
        throw;
    }
}

// ---- Search ------------------------------------------------------------------------------------

bool Cavity::isInConflict(const Tet3* tet) const {
    VARN3D_COUNT(sphereTests, 1);
    return predicates.sphereInclusionTest(tet, newVertex) != SIC_OUTSIDE;
}

/// Inside, the region begins with the tetrahedron that holds the new vertex; outside, with what
/// lies behind the hull facets that it sees.
void Cavity::startRegion(const WalkEnd& place) {
    if (place.place == WalkEnd::Place::INSIDE) {
        engineCheck(isInConflict(place.tet), checks::START_IN_CONFLICT);
        doom(place.tet);
        return;
    }
    VARN3D_COUNT(hullInsertions, 1);
    for (const VisibleHull::Facet& facet : hull.list(newVertex, place.tet, place.index))
        coverHullFacet(facet.tet, facet.index);
}

inline void Cavity::doom(Tet3* tet) {
    VARN3D_COUNT(doomed, 1);
    region.push_back(tet);
    MeshAccess::visited(tet) = true;
    for (int i = 0; i < 4; ++i) prefetchRecord(MeshAccess::neighbour(tet, i));
}

/// Breadth first: what is prefetched for one tetrahedron arrives while those before it are visited.
void Cavity::growRegion() {
    for (std::size_t i = 0; i < region.size(); ++i) {
        if (i + 2 < region.size()) prefetchBeyond(region[i + 2]);
        visitNeighbours(region[i]);
    }
}

inline void Cavity::visitNeighbours(const Tet3* tet) {
    const View seen(tet, newVertex);
    for (int i = 3; i >= 0; --i) {
        Tet3* outer = MeshAccess::neighbour(tet, i);
        if (outer == nullptr) {
            addBase(seen, i, nullptr, 0);
            continue;
        }
        if (MeshAccess::visited(outer)) continue;
        const int index = MeshAccess::indexOfNeighbour(outer, tet);
        if (isInConflict(seen, i, outer, index))
            doom(outer);
        else
            addBase(seen, i, outer, index);
    }
}

/// Whether the tetrahedron across facet ith is in conflict.
inline bool Cavity::isInConflict(const View& seen, int ith, const Tet3* outer, int index) const {
    VARN3D_COUNT(sphereTests, 1);
    const auto& facet = OUTER_FACET[ith];
    const Row beyond(MeshAccess::corner(outer, index), newVertex);
    Extent extent = seen.extent;
    extent.add(beyond);
    const double bound = sphereBound(extent, predicates);
    const double determinant =
        sphereTest(beyond, seen.rows[facet[0]], seen.rows[facet[1]], seen.rows[facet[2]]);
    if (determinant > bound) return false;
    if (determinant < -bound) return true;
    VARN3D_COUNT(sphereTestsBeyondBound, 1);
    return predicates.sphereInclusionTest(outer, newVertex) != SIC_OUTSIDE;
}

/// Notes facet ith, which belongs to the region's boundary. A hull facet that the new vertex does
/// not see from inside is none to build on.
inline void Cavity::addBase(const View& seen, int ith, Tet3* outer, int index) {
    const auto& facet = INNER_FACET[ith];
    const double orientation =
        orientationOf(seen.rows[facet[0]], seen.rows[facet[1]], seen.rows[facet[2]]);
    Point3* const a = MeshAccess::corner(seen.tet, facet[0]);
    Point3* const b = MeshAccess::corner(seen.tet, facet[1]);
    Point3* const c = MeshAccess::corner(seen.tet, facet[2]);
    if (!(orientation > orientationBound(seen.extent, predicates))) {
        if (outer != nullptr)
            checkOrientation(newVertex, a, b, c);
        else if (predicates.getOrientation3(seen.tet, ith, newVertex) != ORIENTATION3_POSITIVE)
            return;
    }
    bases.push_back({{a, b, c}, outer, index});
}

/// Takes in what lies behind a hull facet that the new vertex sees: the tetrahedron if that is in
/// conflict, else the facet is one to build on.
void Cavity::coverHullFacet(Tet3* tet, int ith) {
    if (MeshAccess::visited(tet)) return;
    if (isInConflict(tet)) {
        doom(tet);
        return;
    }
    const auto& facet = OUTER_FACET[ith];
    bases.push_back({{MeshAccess::corner(tet, facet[0]), MeshAccess::corner(tet, facet[1]),
                      MeshAccess::corner(tet, facet[2])},
                     tet,
                     ith});
}

// ---- Filling -----------------------------------------------------------------------------------

/// Replaces the region by a tetrahedron on each base. Allocates nothing, throws nothing.
Tet3* Cavity::fill() {
    VARN3D_COUNT(created, bases.size());
    std::uint32_t label = MeshAccess::reserveLabels(bases.size());
    Tet3* last = nullptr;
    created.clear();
    for (const Base& base : bases) {
        last = tets.take();
        MeshAccess::fill(last, label++, newVertex, base.corners[0], base.corners[1],
                         base.corners[2]);
        MeshAccess::neighbour(last, 0) = base.outer;
        if (base.outer != nullptr) MeshAccess::neighbour(base.outer, base.index) = last;
        created.push_back(last);
    }
    for (Tet3* tet : region) tets.release(tet);
    return last;
}

void Cavity::checkOrientation(Point3* a, Point3* b, Point3* c, Point3* d) const {
    const Orientation3 orientation = predicates.getOrientation3(a, b, c, d);
    if (orientation == ORIENTATION3_POSITIVE) return;
    const bool negative = orientation == ORIENTATION3_NEGATIVE;
    messageStream() << "Dt3::createTet(), ERROR: "
                    << (negative ? "ORIENTATION3_NEGATIVE" : "ORIENTATION3_COPLANAR")
                    << " ORIENTATION OF: " << std::endl;
    messageStream() << std::setprecision(15);
    for (const Point3* corner : {a, b, c, d}) messageStream() << *corner << std::endl;
    engineCheck(!negative, checks::NOT_NEGATIVE);
    messageStream() << "..probably a legal situaion but observe!" << std::endl;
}

Tet3* Cavity::createTet(Point3* a, Point3* b, Point3* c, Point3* d) {
    checkOrientation(a, b, c, d);
    tets.reserve(1, 0);
    Tet3* tet = tets.take();
    tet->setProperties(a, b, c, d);
    return tet;
}

}  // namespace VARN3D
