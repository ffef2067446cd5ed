// Coordinates in an array of the host's own, and the mesh as arrays of numbers. The library prints
// nothing; the host hears how far it is and stops it, asks in between, and lets it go on.
//
// Output:
//   refused: point 1 has a non-finite coordinate
//   stopped, and the mesh holds; then 60000 vertices in 403231 tetrahedra, and none waits
//   (2, 2, 2) lies outside, nearest to point 58634

#include <dt3Library/Varn_3D.h>

#include <cmath>
#include <cstddef>
#include <iostream>
#include <random>
#include <vector>

using namespace VARN3D;

int main() {
    Varn_3D::setMessageStream(nullptr);
    std::mt19937_64 random;
    std::vector<double> xyz(3 * 60000);
    for (double& coordinate : xyz)
        coordinate = std::ldexp(static_cast<double>(random() >> 11), -53);

    Varn_3D mesh;
    std::vector<Point3*> handles;
    try {
        const double bad[] = {0, 0, 0, 0, NAN, 0};
        mesh.insert(bad, 2, handles);
    } catch (const VarnException& exception) {
        std::cout << "refused: " << exception.getReason() << "\n";
    }

    mesh.setProgress([](std::size_t done, std::size_t total) { return done < total / 2; });
    mesh.insert(xyz.data(), xyz.size() / 3, handles);
    const bool bHolds = mesh.getNumWaiting() > 0 && mesh.checkValidity("stopped", true);
    mesh.setProgress({});
    mesh.insertWaiting();
    const IndexedMesh indexed = mesh.getIndexedMesh();
    std::cout << (bHolds ? "stopped, and the mesh holds" : "not stopped, or not valid") << "; then "
              << mesh.getNumVertices() << " vertices in " << indexed.tetrahedra.size()
              << " tetrahedra, and " << (mesh.getNumWaiting() == 0 ? "none waits" : "some wait")
              << "\n";

    PointLocator locator(mesh);
    const Point3 beyond(2, 2, 2);
    const bool bOutside = locator.locate(beyond).kind == LocationKind::OUTSIDE;
    std::cout << "(2, 2, 2) lies " << (bOutside ? "outside" : "inside") << ", nearest to point "
              << locator.nearestVertex(beyond)->getIndex() << "\n";
}
