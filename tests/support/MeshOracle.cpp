#include "tests/support/MeshOracle.h"

#include <algorithm>
#include <functional>
#include <map>
#include <set>

#include "dt3Library/base/MeshAccess.h"
#include "tests/support/CaptureOutput.h"
#include "tests/support/Exact.h"
#include "tests/support/MeshDigest.h"

namespace support {

using namespace VARN3D;

namespace {

using Vertices = std::vector<Point3*>;

class Oracle {
  public:
    Oracle(Varn_3D& theMesh, const std::vector<Point3>& thePoints, const Vertices& theHandles)
        : mesh(theMesh), points(thePoints), handles(theHandles) {}

    std::string findFault(std::size_t numPending) {
        const std::function<void()> checks[] = {
            [&] { checkHandles(); },    [&] { checkDimension(numPending); },
            [&] { checkTetrahedra(); }, [&] { checkNeighbours(); },
            [&] { checkHull(); },       [&] { checkSpheres(); },
            [&] { checkStars(); },      [&] { checkOwnCheck(); }};
        for (const auto& check : checks) {
            check();
            if (!fault.empty() || !mesh.is3D()) break;
        }
        if (fault.empty() && !mesh.is3D()) checkDimension(numPending);
        return fault;
    }

  private:
    void require(bool bHolds, const char* what) {
        if (!bHolds && fault.empty()) fault = what;
    }

    void checkHandles() {
        require(handles.size() == points.size(), "as many handles as points");
        std::map<Coordinates, Point3*> vertexAt;
        for (std::size_t i = 0; i < points.size() && fault.empty(); ++i) {
            require(*handles[i] == points[i], "a handle reads its point");
            const auto place = vertexAt.emplace(coordinatesOf(points[i]), handles[i]).first;
            require(place->second == handles[i], "equal points have one handle");
        }
        Vertices listed;
        mesh.getVertices(listed);
        const std::set<Point3*> stored(listed.begin(), listed.end());
        require(stored.size() == listed.size(), "each vertex is listed once");
        require(stored == std::set<Point3*>(handles.begin(), handles.end()),
                "the vertices are the handles");
        require(stored.size() == vertexAt.size(), "distinct points have distinct handles");
        for (Point3* v : listed)
            if (v->getOneTet() != nullptr) vertices.push_back(v);
        numWithoutTet = listed.size() - vertices.size();
    }

    void checkDimension(std::size_t numPending) {
        if (!mesh.is3D()) {
            require(vertices.empty() && areCoplanar(points), "no tetrahedron of coplanar points");
            outputOf([&] { mesh.getTetrahedra(tets); });
            require(tets.empty(), "no tetrahedra are listed");
            return;
        }
        require(numWithoutTet == numPending, "as many pending vertices as expected");
        mesh.getTetrahedra(tets);
        require(!tets.empty(), "tetrahedra are listed");
    }

    void checkTetrahedra() {
        std::sort(tets.begin(), tets.end(), std::less<>());
        require(std::adjacent_find(tets.begin(), tets.end()) == tets.end(),
                "tetrahedra are listed once");
        const std::set<Point3*> known(vertices.begin(), vertices.end());
        for (const Tet3* t : tets) {
            require(!MeshAccess::visited(t), "no marks are left");
            for (int i = 0; i < 4; ++i)
                require(known.count(t->getCorner(i)) == 1, "corners are vertices of the mesh");
            require(orientation(t, 3, t->getCorner(3)) > 0, "tetrahedra are positive");
        }
        for (const Point3* v : vertices)
            require(std::binary_search(tets.begin(), tets.end(), v->getOneTet(), std::less<>()) &&
                        v->getOneTet()->hasVertex(v),
                    "a vertex knows a tetrahedron of its own");
    }

    /// Positive if p lies on the inner side of facet i.
    static int orientation(const Tet3* t, int i, const Point3* p) {
        Point3 corners[4];
        for (int k = 0; k < 4; ++k) corners[k] = *t->getCorner(k);
        corners[i] = *p;
        return exactOrientation(corners[0], corners[1], corners[2], corners[3]);
    }

    void checkNeighbours() {
        std::map<std::set<Point3*>, std::vector<std::pair<Tet3*, int>>> facets;
        for (Tet3* t : tets)
            for (int i = 0; i < 4; ++i) {
                std::set<Point3*> corners;
                for (int k = 0; k < 4; ++k)
                    if (k != i) corners.insert(t->getCorner(k));
                facets[corners].emplace_back(t, i);
            }
        for (const auto& [corners, sides] : facets) {
            require(corners.size() == 3 && sides.size() <= 2, "a facet has at most two sides");
            const auto [t, i] = sides.front();
            const bool bHull = sides.size() == 1;
            require(t->getOppTet(i) == (bHull ? nullptr : sides.back().first) &&
                        (bHull || sides.back().first->getOppTet(sides.back().second) == t),
                    "neighbours are those across the facet");
            if (bHull) hullFacets.push_back(sides.front());
        }
    }

    /// With positive tetrahedra, paired facets and complete stars, this leaves no gap and no
    /// overlap.
    void checkHull() {
        for (const auto& [t, i] : hullFacets)
            for (const Point3* v : vertices)
                require(orientation(t, i, v) >= 0, "no vertex beyond the hull");
    }

    void checkSpheres() {
        for (const Tet3* t : tets)
            for (const Point3* v : vertices)
                require(exactInSphere(*t->getCorner(0), *t->getCorner(1), *t->getCorner(2),
                                      *t->getCorner(3), *v) <= 0,
                        "circumspheres are empty");
    }

    void checkStars() {
        std::map<const Point3*, std::size_t> sizes;
        for (const Tet3* t : tets)
            for (int i = 0; i < 4; ++i) ++sizes[t->getCorner(i)];
        for (Point3* v : vertices) {
            // A depth-first walk through the facets at the vertex gives the order.
            std::vector<Tet3*> expected = {v->getOneTet()};
            std::vector<Tet3*> stack = expected;
            while (!stack.empty()) {
                const Tet3* t = stack.back();
                stack.pop_back();
                for (int i = 0; i < 4; ++i) {
                    Tet3* next = t->getOppTet(i);
                    if (t->getCorner(i) == v || next == nullptr ||
                        std::find(expected.begin(), expected.end(), next) != expected.end())
                        continue;
                    expected.push_back(next);
                    stack.push_back(next);
                }
            }
            std::vector<Tet3*> star;
            mesh.getTetsAroundVertex(v, star);
            require(star == expected && star.size() == sizes[v], "stars are complete");
        }
    }

    void checkOwnCheck() {
        bool bValid = false;
        outputOf([&] { bValid = mesh.checkValidity("oracle", true); });
        require(bValid, "the library's check passes");
    }

    Varn_3D& mesh;
    const std::vector<Point3>& points;
    const Vertices& handles;
    /// In the mesh, not pending.
    Vertices vertices;
    std::size_t numWithoutTet = 0;
    std::vector<Tet3*> tets;
    std::vector<std::pair<Tet3*, int>> hullFacets;
    std::string fault;
};

}  // namespace

std::string findMeshFault(Varn_3D& mesh, const std::vector<Point3>& points,
                          const std::vector<Point3*>& handles, std::size_t numPending) {
    return Oracle(mesh, points, handles).findFault(numPending);
}

bool areCoplanar(const std::vector<Point3>& points) {
    const auto second = std::find_if(points.begin(), points.end(),
                                     [&](const Point3& p) { return !(p == points.front()); });
    if (second == points.end()) return true;
    // Any two distinct points of a set that spans space belong to four that do.
    for (const Point3& c : points)
        for (const Point3& d : points)
            if (exactOrientation(points.front(), *second, c, d) != 0) return false;
    return true;
}

}  // namespace support
