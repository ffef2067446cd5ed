#include "dt3Library/kernel/RecordWriter.h"

#include <cstring>

#include "dt3Library/MeshAccess.h"

namespace VARN3D {

Tet3* RecordWriter::writeTo(TetRecycler& tets) {
    CompactMesh& mesh = state.mesh;
    numSlots = static_cast<Slot>(mesh.numSlots());
    dead.reserve(1 + mesh.numFreeSlots() + state.numGhosts);
    hull.reserve(state.numGhosts);
    nextLabels.resize(vertices.size() - firstNewVertex);
    for (std::size_t i = 0; i < nextLabels.size(); ++i)
        nextLabels[i] = mesh.vertices()[firstNewVertex + i].firstLabel;
    SimplePool<Tet3> pool;
    pool.init();
    mesh.giveTo(pool);

    mesh.dropVertices();
    firstLabel = MeshAccess::reserveLabels(state.numMade);
    records = pool.getLastBlock();
    writeAll();
    for (const FacetCode facet : hull)
        MeshAccess::neighbour(records + slotOf(facet), static_cast<int>(facetOf(facet))) = nullptr;
    tets.replaceBy(pool, dead);
    return anyRecord;
}

/// Where records are larger than compact tetrahedra, from the last to the first, so that each is
/// written where only itself and later ones were; else from the first to the last.
void RecordWriter::writeAll() {
    // The tetrahedra begin up to three alignments of malloc after the records, so the first few may
    // be in the way of each other.
    constexpr Slot NUM_FIRST = 4;
    const CompactTet* const compact = state.mesh.tets();
    CompactTet first[NUM_FIRST];
    std::memcpy(first, compact, sizeof first);
    const auto writeSlot = [&](Slot slot) {
        CompactTet tet;
        std::memcpy(&tet, slot < NUM_FIRST ? first + slot : compact + slot, sizeof tet);
        write(slot, tet);
    };
    if constexpr (sizeof(Tet3) >= sizeof(CompactTet)) {
        for (Slot slot = numSlots; slot-- > 0;) writeSlot(slot);
    } else {
        for (Slot slot = 0; slot < numSlots; ++slot) writeSlot(slot);
    }
}

void RecordWriter::write(Slot slot, const CompactTet& tet) {
    if (tet.cornerAtInfinity() < 4) {
        writeDead(slot, tet);
        return;
    }
    Tet3* const record = MeshAccess::newRecord(records + slot);
    for (int i = 0; i < 4; ++i) {
        Point3* const corner = vertices[tet.vertex[i]];
        MeshAccess::corner(record, i) = corner;
        MeshAccess::neighbour(record, i) = records + slotOf(tet.link[i]);
        corner->setOneTet(record);
    }
    if (tet.vertex[0] >= firstNewVertex) {
        MeshAccess::label(record) =
            static_cast<std::int32_t>(firstLabel + nextLabels[tet.vertex[0] - firstNewVertex]++);
    } else {
        const Tet3* const old = loaded.at(slot - 1);
        MeshAccess::label(record) = MeshAccess::label(old);
        MeshAccess::customIndex(record) = old->getCustomIndex();
    }
    anyRecord = record;
}

/// Ghosts, the dummy and free slots become records to be used again.
void RecordWriter::writeDead(Slot slot, const CompactTet& tet) {
    if (!tet.isEmpty()) hull.push_back(tet.link[tet.cornerAtInfinity()]);
    Tet3* const record = MeshAccess::newRecord(records + slot);
    MeshAccess::visited(record) = true;
    dead.push_back(record);
}

}  // namespace VARN3D
