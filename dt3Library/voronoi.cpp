#include "dt3Library/voronoi.h"

#include <cmath>
#include <cstddef>
#include <limits>
#include <unordered_map>
#include <vector>

#include "dt3Library/Dt3.h"
#include "dt3Library/GeomTest3.h"
#include "dt3Library/Varn_3D.h"
#include "dt3Library/base/EngineCheck.h"
#include "dt3Library/base/MeshAccess.h"
#include "dt3Library/base/facets.h"
#include "dt3Library/base/vectors.h"
#include "dt3Library/engine/HullEdge.h"
#include "dt3Library/engine/PointerPairSet.h"
#include "dt3Library/engine/hostCalls.h"
#include "dt3Library/engine/star.h"
#include "dt3Library/predicates/FloatingPoint.h"
#include "dt3Library/predicates/circumcentre.h"

namespace VARN3D {

namespace {

/// Makes the cell of a vertex from the tetrahedra around it.
class CellMaker {
  public:
    explicit CellMaker(Point3* theVertex) : vertex(theVertex) {
        listStar(vertex, star);
        for (const Tet3* tet : star) spheres.emplace(tet, UNKNOWN);
        for (const Tet3* tet : star)
            if (spheres[tet] == UNKNOWN) addSphere(tet);
    }

    VoronoiCell make() {
        VoronoiCell cell{true, 0.0, {}};
        PointerPairSet seen;
        for (Tet3* tet : star) {
            const auto& others = INNER_FACET[tet->getIntraTetIndex(vertex)];
            for (int k = 0; k < 3; ++k) {
                cell.bBounded = cell.bBounded && MeshAccess::neighbour(tet, others[k]) != nullptr;
                Point3* const neighbour = MeshAccess::corner(tet, others[k]);
                if (!seen.insert(neighbour, nullptr)) continue;
                // A turn about the edge that is counter-clockwise as the neighbour sees it.
                addFacet(neighbour, tet, others[(k + 2) % 3], others[(k + 1) % 3], cell);
            }
        }
        // An overflow may have led to NaN.
        if (!cell.bBounded || !std::isfinite(cell.volume))
            cell.volume = std::numeric_limits<double>::infinity();
        return cell;
    }

  private:
    static constexpr std::size_t UNKNOWN = static_cast<std::size_t>(-1);

    /// Finds all tetrahedra at the vertex with this one's sphere. They triangulate the polytope of
    /// the vertices on the sphere, so they hang together around the vertex.
    void addSphere(const Tet3* first) {
        std::vector<const Tet3*> pending = {first};
        spheres[first] = centres.size();
        while (!pending.empty()) {
            const Tet3* const tet = pending.back();
            pending.pop_back();
            for (int i = 0; i < 4; ++i) {
                const Tet3* const next = MeshAccess::neighbour(tet, i);
                if (next == nullptr || MeshAccess::corner(tet, i) == vertex) continue;
                const Point3* beyond =
                    MeshAccess::corner(next, MeshAccess::indexOfNeighbour(next, tet));
                if (spheres[next] != UNKNOWN || !predicates.isOnSphere(tet, beyond)) continue;
                spheres[next] = centres.size();
                pending.push_back(next);
            }
        }
        const auto& others = INNER_FACET[first->getIntraTetIndex(vertex)];
        centres.push_back(circumcentreFrom(*vertex, *MeshAccess::corner(first, others[0]),
                                           *MeshAccess::corner(first, others[1]),
                                           *MeshAccess::corner(first, others[2])));
    }

    /// Adds the facet of an edge, named by a tetrahedron and the corners beside the edge.
    void addFacet(Point3* neighbour, Tet3* tet, int opp3, int opp2, VoronoiCell& cell) {
        HullEdge start{tet, opp2, opp3};
        bool bBounded = false;
        while (!bBounded && !start.isAtHull()) {
            start.crossFacet();
            bBounded = start.tet == tet;
        }
        if (!bBounded) {
            tet = start.tet;
            opp3 = start.opp2;
            opp2 = start.opp3;
        }
        HullEdge turn{tet, opp3, opp2};
        std::vector<std::size_t> passed;
        for (;;) {
            const std::size_t sphere = spheres[turn.tet];
            if (passed.empty() || sphere != passed.back()) passed.push_back(sphere);
            if (turn.isAtHull()) break;
            turn.crossFacet();
            if (turn.tet == tet) break;
        }
        if (bBounded && passed.size() > 1 && passed.front() == passed.back()) passed.pop_back();
        const bool bHasArea =
            bBounded ? passed.size() > 2 : passed.size() > 1 || !isFlat(tet, opp2, turn);
        if (!bHasArea) return;
        VoronoiFacet facet{neighbour, bBounded, {}};
        for (const std::size_t sphere : passed) facet.corners.push_back(*vertex + centres[sphere]);
        cell.facets.push_back(facet);
        cell.volume += volumeBelow(passed, *neighbour - *vertex);
    }

    /// Whether the hull facets at both ends of a turn lie in one plane; `corner` is the one beside
    /// the edge on the first.
    bool isFlat(const Tet3* tet, int corner, const HullEdge& turn) const {
        const auto [a, b] = turn.ends();
        return predicates.getOrientation3(a, b, MeshAccess::corner(tet, corner),
                                          MeshAccess::corner(turn.tet, turn.opp3)) ==
               ORIENTATION3_COPLANAR;
    }

    /// The volume of the pyramid from the vertex to a facet, which halves the vector to its
    /// neighbour.
    double volumeBelow(const std::vector<std::size_t>& corners, const Vector3& toNeighbour) const {
        const Vector3& first = centres[corners[0]];
        const auto seenFrom = [](const Vector3& u, const Vector3& v) {
            return Vector3(u.x - v.x, u.y - v.y, u.z - v.z);
        };
        double volume = 0.0;
        for (std::size_t i = 2; i < corners.size(); ++i)
            volume += dot(toNeighbour, cross(seenFrom(centres[corners[i - 1]], first),
                                             seenFrom(centres[corners[i]], first)));
        return volume / 12.0;
    }

    GeomTest3 predicates;
    Point3* vertex;
    std::vector<Tet3*> star;
    /// The spheres of these tetrahedra, by number, and their centres as the vertex sees them.
    std::unordered_map<const Tet3*, std::size_t> spheres;
    std::vector<Vector3> centres;
};

}  // namespace

VoronoiCell getVoronoiCell(const Varn_3D& mesh, const Point3* pVtx) {
    if (!mesh.engine().getStore().has(pVtx))
        engineFail("a Voronoi cell of what is no vertex of the mesh", checks::CELL_OF_OWN_VERTEX);
    engineCheck(pVtx->getOneTet() != nullptr, checks::CELL_OF_MESH_VERTEX);
    return guarded("getVoronoiCell()", [&] {
        // As a corner the vertex can be changed.
        const Tet3* tet = pVtx->getOneTet();
        return CellMaker(MeshAccess::corner(tet, tet->getIntraTetIndex(pVtx))).make();
    });
}

}  // namespace VARN3D
