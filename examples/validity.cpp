// Checking the mesh, and writing it for Geomview (geomview tetrahedra.list).
//
// Output:
//   numPoints=27
//   ** CheckValidity at [ the grid]: Number of tetrahedra: 48
//      with --checkvisited
//      with --checkSphereInc
//      vTets.size()=48
//   ** CheckValidity at (the grid) has been finished, seems OK
//   valid
//     Dt3::show(): vTets.size()=48
//   Visualizer, writing tetrahedra.list
//     Writing tetrahedra.list
//   the file begins with LIST

#include <dt3Library/Varn_3D.h>

#include <fstream>
#include <iostream>
#include <string>
#include <vector>

using namespace VARN3D;

int main() {
    // A grid: all its cells have eight corners on one sphere, and the library doesn't mind.
    std::vector<Point3> points;
    points.reserve(27);
    for (int i = 0; i < 27; ++i) points.emplace_back(i % 3, i / 3 % 3, i / 9);

    Varn_3D mesh;
    std::vector<Point3*> handles;
    mesh.insert(points, handles);

    // With true, it also checks that no neighbour's vertex lies inside a circumsphere.
    const bool valid = mesh.checkValidity("the grid", true);
    std::cout << (valid ? "valid" : "not valid") << "\n";

    mesh.show("tetrahedra.list", handles[13]);
    std::ifstream file("tetrahedra.list");
    std::string firstLine;
    std::getline(file, firstLine);
    std::cout << "the file begins with " << firstLine << "\n";
    return valid ? 0 : 1;
}
