#pragma once

#include <algorithm>
#include <functional>
#include <utility>
#include <vector>

#include "dt3Library/MeshAccess.h"
#include "dt3Library/geom_tools/SimplePool.h"

namespace VARN3D {

/// Storage of all tetrahedra: a pool, and the records to be used again.
///
/// A record released during one insertion is handed out from the next one on: until then the doomed
/// tetrahedra are still read while new ones are being made. Hence two lists, which change places at
/// the start of each insertion.
class TetRecycler {
  public:
    TetRecycler() {
        pool.init();
        vReleased.reserve(512);
        vReusable.reserve(512);
    }

    /// A record for a new tetrahedron; the caller fills it.
    Tet3* take() {
        if (vReusable.empty()) return pool.alloc();
        Tet3* tet = vReusable.back();
        vReusable.pop_back();
        return tet;
    }

    void release(Tet3* tet) {
        MeshAccess::customIndex(tet) = -1;
        vReleased.push_back(tet);
    }

    void swapLists() { vReleased.swap(vReusable); }

    /// Appends every tetrahedron of the mesh by ascending address. O(n), and the mesh's marks play
    /// no part: a record is dead exactly when it is in one of the two lists.
    void listLive(std::vector<Tet3*>& vTets) const {
        std::vector<Tet3*> dead(vReleased);
        dead.insert(dead.end(), vReusable.begin(), vReusable.end());
        std::sort(dead.begin(), dead.end(), std::less<Tet3*>());
        std::vector<std::pair<Tet3*, Tet3*>> blocks;
        std::size_t total = 0;
        pool.forEachBlock([&](Tet3* first, int used) {
            blocks.emplace_back(first, first + used);
            total += static_cast<std::size_t>(used);
        });
        std::sort(blocks.begin(), blocks.end(), [](const auto& a, const auto& b) {
            return std::less<Tet3*>()(a.first, b.first);
        });
        vTets.reserve(vTets.size() + total - dead.size());
        auto nextDead = dead.begin();
        for (const auto& [first, last] : blocks) {
            for (Tet3* tet = first; tet != last; ++tet) {
                if (nextDead != dead.end() && *nextDead == tet)
                    ++nextDead;
                else
                    vTets.push_back(tet);
            }
        }
    }

    const SimplePool<Tet3>& getPool() const { return pool; }

    /// Calls f(Tet3*) for each record that is in no mesh.
    template <class F>
    void forEachDead(F f) const {
        for (Tet3* dead : vReleased) f(dead);
        for (Tet3* dead : vReusable) f(dead);
    }

    /// Takes over the records of another mesh, of which these are dead, in place of all its own.
    void replaceBy(SimplePool<Tet3>& newPool, std::vector<Tet3*>& vDead) noexcept {
        pool.swap(newPool);
        vReleased.clear();
        vReusable.swap(vDead);
    }

    /// Drops all records.
    void reset() {
        pool.reset();
        vReleased.clear();
        vReusable.clear();
    }

  private:
    SimplePool<Tet3> pool;
    std::vector<Tet3*> vReleased;
    std::vector<Tet3*> vReusable;
};

}  // namespace VARN3D
