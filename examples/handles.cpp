// Handles and duplicates: every input point gets the handle of its vertex, and points with exactly
// equal coordinates get the same one. Handles stay valid as long as the mesh.
//
// Output:
//   numPoints=7
//   point 0 is a vertex of its own
//   point 1 is a vertex of its own
//   point 2 is a vertex of its own
//   point 3 is the same as point 1
//   point 4 is a vertex of its own
//   point 5 is the same as point 2
//   point 6 is a vertex of its own
//   inserted again: the same vertex
//   5 vertices

#include <dt3Library/Varn_3D.h>

#include <iostream>
#include <vector>

using namespace VARN3D;

int main() {
    // Points 3 and 5 repeat others; 0.1 + 0.2 is not 0.3, and 0.0 equals -0.0.
    const std::vector<Point3> points = {{0, 0, 0},   {1, 0, 0}, {0, 1, 0},        {1, 0, -0.0},
                                        {0, 0, 0.3}, {0, 1, 0}, {0, 0, 0.1 + 0.2}};

    Varn_3D mesh;
    std::vector<Point3*> handles;
    mesh.insert(points, handles);

    // A vertex has the number of the first point with its coordinates.
    for (int i = 0; i < static_cast<int>(handles.size()); ++i) {
        const int first = handles[static_cast<std::size_t>(i)]->getIndex();
        if (first == i)
            std::cout << "point " << i << " is a vertex of its own\n";
        else
            std::cout << "point " << i << " is the same as point " << first << "\n";
    }

    // Later insertions leave handles alone.
    const bool isSame = mesh.insert(Point3(1, 0, 0)) == handles[1];
    std::cout << "inserted again: " << (isSame ? "the same vertex" : "another") << "\n";
    std::cout << mesh.getNumVertices() << " vertices\n";
}
