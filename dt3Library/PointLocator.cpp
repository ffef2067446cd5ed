#include "dt3Library/PointLocator.h"

#include "dt3Library/Varn_3D.h"
#include "dt3Library/engine/MeshSearch.h"
#include "dt3Library/engine/hostCalls.h"

namespace VARN3D {

PointLocator::PointLocator(const Varn_3D& mesh)
    : search(guarded("PointLocator::PointLocator()",
                     [&] { return std::make_unique<MeshSearch>(mesh.engine()); })) {}

PointLocator::~PointLocator() = default;
PointLocator::PointLocator(PointLocator&& other) noexcept = default;
PointLocator& PointLocator::operator=(PointLocator&& other) noexcept = default;

Location PointLocator::locate(const Point3& point) {
    return guarded("PointLocator::locate()", [&] {
        requireFinite(point, 0, "PointLocator::locate()");
        return search->locate(point);
    });
}

Point3* PointLocator::nearestVertex(const Point3& point) {
    return guarded("PointLocator::nearestVertex()", [&] {
        requireFinite(point, 0, "PointLocator::nearestVertex()");
        return search->findNearest(point);
    });
}

void PointLocator::conflictRegion(const Point3& point, std::vector<Tet3*>& vTets) {
    guarded("PointLocator::conflictRegion()", [&] {
        requireFinite(point, 0, "PointLocator::conflictRegion()");
        search->listConflicts(point, vTets);
    });
}

}  // namespace VARN3D
