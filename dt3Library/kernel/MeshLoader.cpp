#include "dt3Library/kernel/MeshLoader.h"

#include <algorithm>

#include "dt3Library/base/MeshAccess.h"
#include "dt3Library/base/prefetch.h"

namespace VARN3D {

void MeshLoader::load(const KernelSteps& steps, BatchProgress& progress) {
    CompactMesh& mesh = state.mesh;
    const std::size_t numRecords = records.size();
    mesh.reserve(numRecords);
    std::vector<bool> isFree(numRecords, false);
    tets.forEachFree([&](const Tet3* free) { isFree[records.indexOf(free)] = true; });
    tets.getPool().forEachBlock([&](Tet3* first, std::int32_t used) {
        for (const Tet3* record = first; record != first + used; ++record) {
            // Neighbours lie anywhere in memory.
            constexpr std::ptrdiff_t AHEAD = 6;
            if (first + used - record > AHEAD)
                for (int i = 0; i < 4; ++i)
                    prefetchRecord(MeshAccess::neighbour(record + AHEAD, i));
            const Slot slot = mesh.take();
            if (slot % 64 == 0) progress.look(0);
            if (isFree[slot - 1])
                mesh.tets()[slot] = {};
            else
                loadRecord(record, slot);
        }
    });
    addGhosts();
    constexpr std::size_t SLOTS_A_STEP = 4096;
    for (std::size_t first = 1; first < mesh.numSlots(); first += SLOTS_A_STEP) {
        progress.look(0);
        steps.makeSpheres(state, static_cast<Slot>(first),
                          std::min(SLOTS_A_STEP, mesh.numSlots() - first));
    }
    for (std::size_t i = 0; i < numRecords; ++i)
        if (isFree[i]) mesh.release(static_cast<Slot>(i) + 1);
}

/// Links go both ways at once, when the later one of two neighbours is loaded.
void MeshLoader::loadRecord(const Tet3* record, Slot slot) {
    CompactTet* const compact = state.mesh.tets();
    CompactTet& tet = compact[slot];
    tet.mark = 0;
    // A neighbour that doesn't know this record leaves its link as it is.
    for (FacetCode& link : tet.link) link = facetCode(CompactMesh::DUMMY, 0);
    for (unsigned i = 0; i < 4; ++i) {
        const int corner = static_cast<int>(i);
        tet.vertex[i] = numberOfVertex[vertices.indexOf(MeshAccess::corner(record, corner))];
        const Tet3* neighbour = MeshAccess::neighbour(record, corner);
        const FacetCode here = facetCode(slot, i);
        if (neighbour == nullptr) {
            hull.push_back(here);
            continue;
        }
        const Slot there = slotOfRecord(neighbour);
        if (there > slot) continue;
        const auto facet = static_cast<unsigned>(MeshAccess::indexOfNeighbour(neighbour, record));
        tet.link[i] = facetCode(there, facet);
        compact[there].link[facet] = here;
    }
}

/// A ghost beyond each hull facet. Ghosts are to each other what the new tetrahedra of an insertion
/// are, with the vertex at infinity in place of the new one.
void MeshLoader::addGhosts() {
    CompactMesh& mesh = state.mesh;
    mesh.reserve(hull.size());
    std::vector<CavityFacet> facets(hull.size());
    std::vector<Slot> slots(hull.size());
    for (std::size_t i = 0; i < hull.size(); ++i) {
        const CompactTet& inside = mesh.tets()[slotOf(hull[i])];
        const Slot slot = mesh.take();
        CompactTet& ghost = mesh.tets()[slot];
        ghost.mark = 0;
        ghost.vertex[0] = AT_INFINITY;
        for (unsigned k = 0; k < 3; ++k) {
            facets[i].number[k] = inside.vertex[OUTER_FACET[facetOf(hull[i])][k]];
            ghost.vertex[k + 1] = facets[i].number[k];
        }
        ghost.link[0] = hull[i];
        mesh.tets()[slotOf(hull[i])].link[facetOf(hull[i])] = facetCode(slot, 0);
        slots[i] = slot;
    }
    BatchState::failOpenCavity(
        state.edges.linkByHashing(facets, hull.size(), slots.data(), mesh.tets()));
    state.numGhosts = static_cast<std::uint32_t>(hull.size());
}

}  // namespace VARN3D
