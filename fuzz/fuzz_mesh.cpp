// Maps bytes to operations on an engine, with points on a small lattice so that degeneracy is the
// rule, and compares the mesh with the exact oracle after every insertion, and the answers to
// queries with a look at everything.

#include <algorithm>
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

bool isInConflict(const Tet3* tet, const Point3& p) {
    return support::exactInSphere(*tet->getCorner(0), *tet->getCorner(1), *tet->getCorner(2),
                                  *tet->getCorner(3), p) > 0;
}

/// Compares answers about a place with a look at everything. The locator has seen the mesh change.
void checkQueries(VARN3D::Varn_3D& mesh, VARN3D::PointLocator& locator,
                  const std::vector<Point3*>& handles, const Point3& p) {
    std::vector<Tet3*> tets;
    if (mesh.is3D()) mesh.getTetrahedra(tets);
    const Tet3* tet = mesh.locate(p);
    if (tet != nullptr && !holds(tet, p)) stop("located in the wrong tetrahedron");
    const VARN3D::Location place = locator.locate(p);
    const bool bOutside = place.kind == VARN3D::LocationKind::OUTSIDE;
    if (bOutside ? std::any_of(tets.begin(), tets.end(), [&](Tet3* t) { return holds(t, p); })
                 : !holds(place.tet, p))
        stop("a locator is in the wrong place");
    // The first of the nearest points has the lowest number.
    const auto nearest = std::min_element(handles.begin(), handles.end(), [&](auto* a, auto* b) {
        return support::exactDistanceOrder(*a, *b, p) < 0;
    });
    if (locator.nearestVertex(p) != (handles.empty() ? nullptr : *nearest))
        stop("another vertex is nearest");
    std::vector<Tet3*> region;
    locator.conflictRegion(p, region);
    if (place.kind == VARN3D::LocationKind::AT_VERTEX) tets.clear();
    const auto isSafe = [&](Tet3* t) { return !isInConflict(t, p); };
    tets.erase(std::remove_if(tets.begin(), tets.end(), isSafe), tets.end());
    std::sort(region.begin(), region.end());
    std::sort(tets.begin(), tets.end());
    if (region != tets) stop("another conflict region");
}

void run(Bytes bytes) {
    constexpr std::size_t MAX_POINTS = 60;
    VARN3D::Varn_3D mesh;
    VARN3D::PointLocator locator(mesh);
    std::vector<Point3> points;
    std::vector<Point3*> handles;
    bool bMayWait = false;
    const unsigned side = 2 + bytes.take() % 6;
    while (!bytes.isEmpty() && points.size() < MAX_POINTS) {
        const unsigned operation = bytes.take();
        if (operation % 4 == 0) {
            checkQueries(mesh, locator, handles, takePoint(bytes, side));
            continue;
        }
        if (operation % 32 == 1) {
            const std::size_t numWaiting = mesh.getNumWaiting();
            const std::size_t numTaken = mesh.insertWaiting();
            if (numTaken != (mesh.is3D() ? numWaiting : 0)) stop("others were taken in");
            bMayWait = false;
        } else if (operation % 4 == 1) {
            const bool bWas3D = mesh.is3D();
            points.push_back(takePoint(bytes, side));
            handles.push_back(mesh.insert(points.back()));
            bMayWait = bMayWait || (!bWas3D && mesh.is3D());
        } else {
            std::vector<Point3> batch;
            for (unsigned n = operation / 4 % 16; n > 0; --n)
                batch.push_back(takePoint(bytes, side));
            std::vector<Point3*> batchHandles;
            mesh.insert(batch, batchHandles);
            points.insert(points.end(), batch.begin(), batch.end());
            handles.insert(handles.end(), batchHandles.begin(), batchHandles.end());
        }
        // Waiting vertices leave holes that the oracle would take for faults.
        if (mesh.is3D() && mesh.getNumWaiting() > 0) {
            if (!bMayWait) stop("vertices wait");
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
