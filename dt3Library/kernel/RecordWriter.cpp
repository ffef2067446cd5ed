#include "dt3Library/kernel/RecordWriter.h"

#include <cstddef>
#include <cstring>

#include "dt3Library/base/MeshAccess.h"
#include "dt3Library/base/prefetch.h"

namespace VARN3D {

Tet3* RecordWriter::writeTo(TetRecycler& tets) {
    CompactMesh& mesh = state.mesh;
    numSlots = static_cast<Slot>(mesh.numSlots());
    freeRecords.reserve(1 + mesh.numFreeSlots() + state.numGhosts);
    hull.reserve(state.numGhosts);
    nextLabels.resize(vertices.size() - firstNewVertex);
    for (std::size_t i = 0; i < nextLabels.size(); ++i)
        nextLabels[i] = mesh.vertices()[firstNewVertex + i].firstLabel;
    SimplePool<Tet3> pool;
    pool.init();
    mesh.dropVertices();
    const std::vector<Tet3*> tetsBefore = listTetsOfVertices();
    mesh.giveTo(pool);

    firstLabel = MeshAccess::reserveLabels(state.numMade);
    records = pool.getLastBlock();
    try {
        writeAll();
    } catch (...) {
        // The old records are as they were, but vertices may have left them.
        for (std::size_t i = 1; i < vertices.size(); ++i)
            vertices[i]->setOneTet(i < firstNewVertex ? tetsBefore[i] : nullptr);
        throw;
    }
    for (const FacetCode facet : hull)
        MeshAccess::neighbour(records + slotOf(facet), static_cast<int>(facetOf(facet))) = nullptr;
    tets.replaceBy(pool, freeRecords);
    return anyRecord;
}

/// Of those that were in the mesh before.
std::vector<Tet3*> RecordWriter::listTetsOfVertices() const {
    std::vector<Tet3*> list(firstNewVertex);
    for (VertexNumber i = 1; i < firstNewVertex; ++i) list[i] = vertices[i]->getOneTet();
    return list;
}

/// Reads bytes, since the memory may hold records in the next moment.
inline RecordWriter::Topology::Topology(const CompactTet* tet) {
    const auto* const bytes = reinterpret_cast<const char*>(tet);
    std::memcpy(vertex, bytes + offsetof(CompactTet, vertex), sizeof vertex);
    std::memcpy(link, bytes + offsetof(CompactTet, link), sizeof link);
}

/// Where records are larger than compact tetrahedra, from the last to the first, so that each is
/// written where only itself and later ones were; else from the first to the last.
void RecordWriter::writeAll() {
    // The tetrahedra begin up to three alignments of malloc after the records, so the first few may
    // be in the way of each other.
    const CompactTet* const compact = state.mesh.tets();
    const Topology first[4] = {Topology(compact), Topology(compact + 1), Topology(compact + 2),
                               Topology(compact + 3)};
    constexpr Slot NUM_FIRST = 4;
    if constexpr (sizeof(Tet3) >= sizeof(CompactTet)) {
        for (Slot slot = numSlots; slot-- > NUM_FIRST;) {
            prefetchBefore(slot);
            writeNext(slot, Topology(compact + slot));
        }
        for (Slot slot = NUM_FIRST; slot-- > 0;) write(slot, first[slot]);
    } else {
        for (Slot slot = 0; slot < NUM_FIRST; ++slot) write(slot, first[slot]);
        for (Slot slot = NUM_FIRST; slot < numSlots; ++slot)
            writeNext(slot, Topology(compact + slot));
    }
}

/// Fetches the vertices of tetrahedra to be written soon: first where they are, then themselves.
inline void RecordWriter::prefetchBefore(Slot slot) const {
    constexpr Slot AHEAD = 12;
    if (slot < 2 * AHEAD) return;
    const CompactTet* const compact = state.mesh.tets();
    for (const VertexNumber v : Topology(compact + (slot - 2 * AHEAD)).vertex)
        prefetchLine(vertices.data() + v);
    for (const VertexNumber v : Topology(compact + (slot - AHEAD)).vertex)
        prefetchLine(vertices[v]);
}

/// One of very many. All vertices are in, so there is nothing left to stop but by an exception.
inline void RecordWriter::writeNext(Slot slot, const Topology& tet) {
    constexpr Slot SLOTS_A_STEP = 1024;
    if (slot % SLOTS_A_STEP == 0) progress.look(vertices.size() - firstNewVertex);
    write(slot, tet);
}

inline void RecordWriter::write(Slot slot, const Topology& tet) {
    const auto& v = tet.vertex;
    if (v[0] == AT_INFINITY || v[1] == AT_INFINITY || v[2] == AT_INFINITY || v[3] == AT_INFINITY) {
        writeFree(slot, tet);
        return;
    }
    Point3* const corners[4] = {vertices[v[0]], vertices[v[1]], vertices[v[2]], vertices[v[3]]};
    const bool bNew = v[0] >= firstNewVertex;
    const std::uint32_t newLabel = bNew ? firstLabel + nextLabels[v[0] - firstNewVertex]++ : 0;
    Tet3* const record = MeshAccess::newRecord(records + slot);
    MeshAccess::label(record) = static_cast<std::int32_t>(newLabel);
    for (int i = 0; i < 4; ++i) {
        MeshAccess::corner(record, i) = corners[i];
        MeshAccess::neighbour(record, i) = records + slotOf(tet.link[i]);
    }
    if (!bNew) {
        const Tet3* const old = loaded.at(slot - 1);
        MeshAccess::label(record) = MeshAccess::label(old);
        MeshAccess::customIndex(record) = old->getCustomIndex();
    }
    for (Point3* const corner : corners) corner->setOneTet(record);
    anyRecord = record;
}

/// Ghosts, the dummy and free slots become records to be used again.
void RecordWriter::writeFree(Slot slot, const Topology& tet) {
    for (int i = 0; i < 4; ++i)
        if (tet.vertex[i] == AT_INFINITY && tet.vertex[(i + 1) % 4] != AT_INFINITY)
            hull.push_back(tet.link[i]);
    Tet3* const record = MeshAccess::newRecord(records + slot);
    MeshAccess::visited(record) = true;
    freeRecords.push_back(record);
}

}  // namespace VARN3D
