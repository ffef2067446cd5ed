#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "dt3Library/base/MeshAccess.h"
#include "dt3Library/geom_tools/SimplePool.h"

namespace VARN3D {

/// Storage of all tetrahedra: a pool, and the records that are free to be used again.
///
/// An insertion takes the records of its new tetrahedra before it releases those of the doomed
/// ones, so these are used again from the next insertion on. A record is an object from the time it
/// leaves the pool, whether it is in use or free.
class TetRecycler {
  public:
    TetRecycler() { pool.init(); }

    /// Makes sure that so many records can be taken, and so many be released afterwards, without an
    /// allocation. Where memory runs out nothing has changed but that more records may be free.
    void reserve(std::size_t numTaken, std::size_t numReleased) {
        const std::size_t needed = std::max(vFree.size(), numTaken) + numReleased;
        if (vFree.capacity() < needed) vFree.reserve(2 * needed);
        while (vFree.size() < numTaken) {
            vFree.push_back(MeshAccess::newRecord(pool.alloc()));
            ++numRecords;
        }
    }

    /// A record for a new tetrahedron, which the caller fills. There must be one free.
    Tet3* take() {
        Tet3* tet = vFree.back();
        vFree.pop_back();
        return tet;
    }

    void release(Tet3* tet) {
        MeshAccess::customIndex(tet) = -1;
        vFree.push_back(tet);
    }

    /// How many tetrahedra the mesh has.
    std::size_t getNumLive() const { return numRecords - vFree.size(); }

    const SimplePool<Tet3>& getPool() const { return pool; }

    /// Calls f(Tet3*) for each record that has been in use and is free.
    template <class F>
    void forEachFree(F f) const {
        for (Tet3* free : vFree) f(free);
    }

    /// Takes over the records of another mesh, of which these are free, in place of all its own.
    void replaceBy(SimplePool<Tet3>& newPool, std::vector<Tet3*>& vNewFree) noexcept {
        pool.swap(newPool);
        vFree.swap(vNewFree);
        countRecords();
    }

    /// Drops all records.
    void reset() {
        pool.reset();
        vFree.clear();
        numRecords = 0;
    }

  private:
    void countRecords() {
        numRecords = 0;
        pool.forEachBlock(
            [this](Tet3*, std::int32_t used) { numRecords += static_cast<std::size_t>(used); });
    }

    SimplePool<Tet3> pool;
    std::vector<Tet3*> vFree;
    /// In use or free.
    std::size_t numRecords = 0;
};

}  // namespace VARN3D
