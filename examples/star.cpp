// The star of a vertex: the tetrahedra around it, its neighbours, and the turn around each of its
// edges. The points are a piece of the body-centred cubic lattice.
//
// Output:
//   numPoints=15
//   24 tetrahedra, 14 neighbours
//   4 tetrahedra around the edge to (-2, 0, 0)
//   6 tetrahedra around the edge to (-1, -1, -1)
//   6 tetrahedra around the edge to (-1, -1, 1)
//   6 tetrahedra around the edge to (-1, 1, -1)
//   6 tetrahedra around the edge to (-1, 1, 1)
//   4 tetrahedra around the edge to (0, -2, 0)
//   4 tetrahedra around the edge to (0, 0, -2)
//   4 tetrahedra around the edge to (0, 0, 2)
//   4 tetrahedra around the edge to (0, 2, 0)
//   6 tetrahedra around the edge to (1, -1, -1)
//   6 tetrahedra around the edge to (1, -1, 1)
//   6 tetrahedra around the edge to (1, 1, -1)
//   6 tetrahedra around the edge to (1, 1, 1)
//   4 tetrahedra around the edge to (2, 0, 0)

#include <dt3Library/Varn_3D.h>

#include <iostream>
#include <map>
#include <vector>

using namespace VARN3D;

namespace {

// How many tetrahedra there are around an edge inside the mesh.
int countAround(const Edge3& edge) {
    const TetAroundEdgeIterator first(edge);
    TetAroundEdgeIterator it(edge);
    int count = 0;
    do {
        ++count;
        ++it;
    } while (it != first);
    return count;
}

}  // namespace

int main() {
    std::vector<Point3> points = {{0, 0, 0}};
    for (const double s : {-1.0, 1.0}) {
        for (const double t : {-1.0, 1.0})
            for (const double u : {-1.0, 1.0}) points.emplace_back(s, t, u);
        points.emplace_back(2 * s, 0, 0);
        points.emplace_back(0, 2 * s, 0);
        points.emplace_back(0, 0, 2 * s);
    }

    Varn_3D mesh;
    std::vector<Point3*> handles;
    mesh.insert(points, handles);
    Point3* const centre = handles[0];

    std::vector<Tet3*> star;
    mesh.getTetsAroundVertex(centre, star);

    // An edge of a tetrahedron is named by the two corners that are not on it.
    std::map<Point3, int> tetsAroundEdgeTo;
    for (Tet3* tet : star) {
        const int k = tet->getIntraTetIndex(centre);
        const int others[] = {(k + 1) % 4, (k + 2) % 4, (k + 3) % 4};
        for (int i = 0; i < 3; ++i) {
            const Edge3 edge = tet->getEdge(others[(i + 1) % 3], others[(i + 2) % 3]);
            tetsAroundEdgeTo[*tet->getCorner(others[i])] = countAround(edge);
        }
    }

    std::cout << star.size() << " tetrahedra, " << tetsAroundEdgeTo.size() << " neighbours\n";
    for (const auto& [neighbour, count] : tetsAroundEdgeTo)
        std::cout << count << " tetrahedra around the edge to (" << neighbour.x() << ", "
                  << neighbour.y() << ", " << neighbour.z() << ")\n";
}
