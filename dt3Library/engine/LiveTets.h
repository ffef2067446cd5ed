#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <vector>

#include "dt3Library/Tet3.h"
#include "dt3Library/base/bits.h"
#include "dt3Library/engine/TetRecycler.h"

namespace VARN3D {

/// The tetrahedra of the mesh by ascending address, numbered from 0. A record is one of them
/// exactly when it isn't free; the mesh's marks play no part. Means nothing after an insertion.
class LiveTets {
  public:
    /// O(n). Throws std::bad_alloc.
    explicit LiveTets(const TetRecycler& tets);

    std::size_t size() const { return numLive; }

    /// The number of a tetrahedron, O(log of the number of blocks).
    std::size_t numberOf(const Tet3* tet) const {
        const std::size_t place = placeOf(tet);
        const Group& group = groups[place / 64];
        const std::uint64_t freeBelow = group.free & ((std::uint64_t{1} << place % 64) - 1);
        const std::size_t inNumbers = place - group.numFreeBefore;
        return freeBelow == 0 ? inNumbers : inNumbers - bitCount(freeBelow);
    }

    /// Calls f(Tet3*) for each.
    template <class F>
    void forEach(F f) const {
        for (const Block& block : blocks)
            for (Tet3* tet = block.first; tet != block.last; ++tet)
                if (!isFree(block.start + static_cast<std::size_t>(tet - block.first))) f(tet);
    }

  private:
    /// A block of the records; `start` counts those of the blocks below.
    struct Block {
        Tet3* first = nullptr;
        Tet3* last = nullptr;
        std::size_t start = 0;
    };
    /// 64 places: which of them are free, and how many free ones come before.
    struct Group {
        std::uint64_t free = 0;
        std::size_t numFreeBefore = 0;
    };

    bool isFree(std::size_t place) const {
        return (groups[place / 64].free >> place % 64 & 1) != 0;
    }
    std::size_t placeOf(const Tet3* tet) const {
        // Most records lie in the largest block.
        const std::less<const Tet3*> precedes;
        const bool bInLargest = !precedes(tet, largest.first) && precedes(tet, largest.last);
        const Block& block = bInLargest ? largest : blockOf(tet);
        return block.start + static_cast<std::size_t>(tet - block.first);
    }
    const Block& blockOf(const Tet3* tet) const;

    std::vector<Block> blocks;
    Block largest;
    std::vector<Group> groups;
    std::size_t numLive = 0;
};

}  // namespace VARN3D
