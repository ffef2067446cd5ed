// Maps bytes to operations on an engine, with points on a small lattice so that degeneracy is the
// rule, and compares the mesh with the exact oracle after every insertion.

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <iostream>
#include <vector>

#include "dt3Library/Varn_3D.h"
#include "tests/support/CaptureOutput.h"
#include "tests/support/Exact.h"
#include "tests/support/MeshOracle.h"

namespace {

using VARN3D::Point3;
using VARN3D::Tet3;

/// The bytes, then zeros.
class Bytes {
  public:
    Bytes(const std::uint8_t* first, std::size_t size) : next(first), end(first + size) {}
    bool isEmpty() const { return next == end; }
    unsigned take() { return isEmpty() ? 0 : *next++; }

  private:
    const std::uint8_t* next;
    const std::uint8_t* end;
};

Point3 takePoint(Bytes& bytes, unsigned side) {
    const unsigned cell = bytes.take() * 256 + bytes.take();
    return Point3(cell % side, cell / side % side, cell / side / side % side);
}

bool holds(const Tet3* tet, const Point3& p) {
    for (int i = 0; i < 4; ++i) {
        int a, b, c;
        tet->getFacetIndices(i, a, b, c);
        if (support::exactOrientation(*tet->getCorner(a), *tet->getCorner(b), *tet->getCorner(c),
                                      p) > 0)
            return false;  // the facets run counter-clockwise seen from outside
    }
    return true;
}

[[noreturn]] void stop(const std::string& fault) {
    std::cerr << fault << std::endl;
    std::abort();
}

void run(Bytes bytes) {
    constexpr std::size_t MAX_POINTS = 60;
    VARN3D::Varn_3D mesh;
    std::vector<Point3> points;
    std::vector<Point3*> handles;
    std::size_t numPending = 0;
    const unsigned side = 2 + bytes.take() % 6;
    while (!bytes.isEmpty() && points.size() < MAX_POINTS) {
        const unsigned operation = bytes.take();
        if (operation % 4 == 0) {
            const Point3 query = takePoint(bytes, side);
            const Tet3* tet = mesh.locate(query);
            if (tet != nullptr && !holds(tet, query)) stop("located in the wrong tetrahedron");
            continue;
        }
        if (operation % 4 == 1) {
            const bool bWas3D = mesh.is3D();
            Point3 p = takePoint(bytes, side);
            points.push_back(p);
            handles.push_back(mesh.insert(p));
            if (!bWas3D && mesh.is3D()) {
                std::vector<Point3*> vertices;
                mesh.getVertices(vertices);
                numPending = vertices.size() - 4;
            }
        } else {
            std::vector<Point3> batch;
            for (unsigned n = operation / 4 % 16; n > 0; --n)
                batch.push_back(takePoint(bytes, side));
            std::vector<Point3*> batchHandles;
            mesh.insert(batch, batchHandles);
            points.insert(points.end(), batch.begin(), batch.end());
            handles.insert(handles.end(), batchHandles.begin(), batchHandles.end());
        }
        // Waiting vertices leave holes that the oracle would take for faults, unless it is a
        // matter of counting them; a point inserted anew does not wait any longer.
        if (numPending > 0) {
            if (!mesh.checkValidity("fuzz", true)) stop("invalid mesh");
            continue;
        }
        const std::string fault = support::findMeshFault(mesh, points, handles);
        if (!fault.empty()) stop(fault);
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    support::outputOf([=] { run(Bytes(data, size)); });
    return 0;
}
