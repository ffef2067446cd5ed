#include "dt3Library/engine/indexMesh.h"

#include <cstdint>

#include "dt3Library/base/EngineCheck.h"
#include "dt3Library/base/MeshAccess.h"
#include "dt3Library/engine/LiveTets.h"

namespace VARN3D {

namespace {

void appendHullFacets(const Tet3* tet, const std::array<std::int32_t, 4>& corners,
                      std::vector<std::array<std::int32_t, 3>>& hull) {
    for (int i = 0; i < 4; ++i) {
        if (MeshAccess::neighbour(tet, i) != nullptr) continue;
        int facet[3];
        tet->getFacetIndices(i, facet[0], facet[1], facet[2]);
        const auto cornerAt = [&](int k) { return corners[static_cast<std::size_t>(facet[k])]; };
        hull.push_back({cornerAt(0), cornerAt(1), cornerAt(2)});
    }
}

}  // namespace

IndexedMesh indexMesh(const TetRecycler& tets, const PointNumbers& numbers) {
    const LiveTets live(tets);
    engineCheck(numbers.areComplete(), checks::POINTS_HAVE_NUMBERS);
    engineCheck(live.size() <= INT32_MAX, checks::TETRAHEDRA_HAVE_NUMBERS);
    IndexedMesh mesh;
    mesh.duplicates = numbers.getDuplicates();
    mesh.tetrahedra.reserve(live.size());
    mesh.neighbours.reserve(live.size());
    live.forEach([&](const Tet3* tet) {
        std::array<std::int32_t, 4> corners;
        std::array<std::int32_t, 4> neighbours;
        bool bOnHull = false;
        for (int i = 0; i < 4; ++i) {
            const auto k = static_cast<std::size_t>(i);
            const Tet3* const neighbour = MeshAccess::neighbour(tet, i);
            corners[k] = MeshAccess::number(MeshAccess::corner(tet, i));
            neighbours[k] =
                neighbour != nullptr ? static_cast<std::int32_t>(live.numberOf(neighbour)) : -1;
            bOnHull = bOnHull || neighbour == nullptr;
        }
        mesh.tetrahedra.push_back(corners);
        mesh.neighbours.push_back(neighbours);
        if (bOnHull) appendHullFacets(tet, corners, mesh.hull);
    });
    return mesh;
}

}  // namespace VARN3D
