#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "dt3Library/Tet3.h"
#include "dt3Library/base/bits.h"
#include "dt3Library/engine/TetRecycler.h"
#include "dt3Library/geom_tools/PoolIndex.h"

namespace VARN3D {

/// The tetrahedra of the mesh, numbered from 0 in the order of their records in the pool: that of
/// their addresses would change from run to run. A record is one of them exactly when it isn't
/// free; the mesh's marks play no part. Means nothing after an insertion.
class LiveTets {
  public:
    /// O(n). Throws std::bad_alloc.
    explicit LiveTets(const TetRecycler& recycler);

    std::size_t size() const { return tets.getNumLive(); }

    /// The number of a tetrahedron, O(log of the number of blocks).
    std::size_t numberOf(const Tet3* tet) const {
        const std::size_t place = records.indexOf(tet);
        const Group& group = groups[place / 64];
        const std::uint64_t freeBelow = group.free & ((std::uint64_t{1} << place % 64) - 1);
        const std::size_t inNumbers = place - group.numFreeBefore;
        return freeBelow == 0 ? inNumbers : inNumbers - bitCount(freeBelow);
    }

    /// Calls f(Tet3*) for each.
    template <class F>
    void forEach(F f) const {
        std::size_t place = 0;
        tets.getPool().forEachBlock([&](Tet3* first, std::int32_t used) {
            for (Tet3* tet = first; tet != first + used; ++tet, ++place)
                if (!isFree(place)) f(tet);
        });
    }

  private:
    /// 64 places: which of them are free, and how many free ones come before.
    struct Group {
        std::uint64_t free = 0;
        std::size_t numFreeBefore = 0;
    };

    bool isFree(std::size_t place) const {
        return (groups[place / 64].free >> place % 64 & 1) != 0;
    }

    const TetRecycler& tets;
    const PoolIndex<Tet3> records;
    std::vector<Group> groups;
};

}  // namespace VARN3D
