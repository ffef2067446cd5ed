#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <vector>

#include "dt3Library/geom_tools/SimplePool.h"

namespace VARN3D {

/// Numbers the slots of a pool from 0 in the order of their handing out, and finds them again:
/// pools have few blocks.
template <class T>
class PoolIndex {
  public:
    explicit PoolIndex(const SimplePool<T>& pool) {
        pool.forEachBlock([this](T* first, std::int32_t used) {
            const Block block{first, first + used, total};
            inOrder.push_back(block);
            if (used > largest.last - largest.first) largest = block;
            total += static_cast<std::size_t>(used);
        });
        byAddress = inOrder;
        std::sort(byAddress.begin(), byAddress.end(),
                  [](const Block& a, const Block& b) { return std::less<T*>()(a.first, b.first); });
    }

    std::size_t size() const { return total; }

    /// O(log of the number of blocks), here and below.
    std::size_t indexOf(const T* slot) const {
        const std::less<const T*> precedes;
        // Most slots lie in the largest block.
        if (!precedes(slot, largest.first) && precedes(slot, largest.last))
            return largest.start + static_cast<std::size_t>(slot - largest.first);
        const auto after = std::upper_bound(
            byAddress.begin(), byAddress.end(), slot,
            [](const T* p, const Block& block) { return std::less<const T*>()(p, block.first); });
        const Block& block = *(after - 1);
        return block.start + static_cast<std::size_t>(slot - block.first);
    }
    T* at(std::size_t index) const {
        const auto after =
            std::upper_bound(inOrder.begin(), inOrder.end(), index,
                             [](std::size_t i, const Block& block) { return i < block.start; });
        const Block& block = *(after - 1);
        return block.first + (index - block.start);
    }

  private:
    struct Block {
        T* first = nullptr;
        T* last = nullptr;
        std::size_t start = 0;
    };

    Block largest;
    std::vector<Block> inOrder;
    std::vector<Block> byAddress;
    std::size_t total = 0;
};

}  // namespace VARN3D
