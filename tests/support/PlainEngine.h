#pragma once

#include <array>
#include <cstdint>
#include <map>
#include <set>
#include <utility>
#include <vector>

#include "MeshDigest.h"
#include "dt3Library/GeomTest3.h"

namespace support {

/// The Hilbert key (27 bits) of a point in a box, level by level from the curve's tables.
std::uint32_t plainHilbertKey(const VARN3D::Point3& p, const Coordinates& min,
                              const Coordinates& max);

/// The lexicographically first quadruple of positions that is not coplanar, by trying them all;
/// empty if there is none.
std::vector<int> firstSimplex(const std::vector<const VARN3D::Point3*>& points);

/// The engine again, as simple as it can be: a tree of keyed entries, records in a vector that are
/// never used twice, facets glued by a map, conflicts decided one by one by the predicates alone.
///
/// Given the same insertions in the same process, it yields the library's mesh with the same
/// labels, corner order and neighbour order, except where a walk that starts elsewhere ends
/// elsewhere: at a point on a facet or edge, and beyond the hull. There the mesh is still the same.
/// Vertices are numbers here, in the order of their storing; labels are the tetrahedra's positions.
class PlainEngine {
  public:
    /// Batch insertion. Returns the vertices of the points.
    std::vector<int> insert(const std::vector<VARN3D::Point3>& points);
    /// Single insertion.
    int insert(const VARN3D::Point3& point);

    bool is3D() const { return !tets.empty(); }
    bool isPending(int vertex) const { return at(oneTet, vertex) == NONE; }
    std::vector<LabelledTet> labelledMesh() const;

  private:
    static constexpr int NONE = -1;
    struct Tet {
        std::array<int, 4> corners;
        std::array<int, 4> neighbours;
        bool bDoomed;
    };
    /// A facet is a tetrahedron and the index of the corner opposite.
    using Facet = std::pair<int, int>;
    struct Location {
        int result;
        int tet;
    };

    template <class T>
    static const T& at(const std::vector<T>& v, int i) {
        return v[static_cast<std::size_t>(i)];
    }
    int corner(int tet, int i) const { return at(tets, tet).corners[static_cast<std::size_t>(i)]; }
    int neighbour(int tet, int i) const {
        return at(tets, tet).neighbours[static_cast<std::size_t>(i)];
    }
    int& neighbour(int tet, int i) {
        return tets[static_cast<std::size_t>(tet)].neighbours[static_cast<std::size_t>(i)];
    }
    bool isDoomed(int tet) const { return at(tets, tet).bDoomed; }
    int indexOf(int tet, int ofNeighbour) const;

    // Vertex store
    bool growBox(const VARN3D::Point3& p);
    void enlargeBox(double factor);
    std::uint32_t keyOf(const VARN3D::Point3& p) const;
    std::pair<int, bool> store(const VARN3D::Point3& p);
    int findStart(std::pair<std::uint32_t, int> entry) const;
    std::vector<int> listVertices() const;

    // Start-up and insertion
    int startUp();
    static void distribute(const std::vector<int>& list, std::size_t lo, std::size_t hi,
                           std::size_t level, std::vector<std::vector<int>>& buckets);
    void triangulate(const std::vector<int>& list, int start);
    int insertVertex(int p, int start);
    int insertInside(int p, int start);
    int insertOutside(int p, int hullTet, int facet);

    Location locate(int p, int start) const;
    bool analyse(int p, int tet, int facet, Location& location) const;
    std::vector<int> visibleHullTets(int p, int hullTet, int facet) const;

    VARN3D::Orientation3 side(int tet, int facet, int p) const;
    bool isInConflict(int tet, int p);
    int createTet(int a, int b, int c, int d);
    int createOn(const int (&order)[3], int p, int tet, int behind);
    void link(Facet from, Facet to);
    void doom(int tet) { tets[static_cast<std::size_t>(tet)].bDoomed = true; }

    VARN3D::GeomTest3 predicates;
    VARN3D::Tet3 scratch;
    Coordinates min{}, max{};
    bool bBoxValid = false;
    std::vector<VARN3D::Point3> points;
    std::vector<int> oneTet;
    std::map<Coordinates, int> vertexAt;
    std::set<std::pair<std::uint32_t, int>> cells;
    std::vector<Tet> tets;
    std::map<std::pair<int, int>, Facet> unglued;
};

}  // namespace support
