#include "dt3Library/engine/LiveTets.h"

#include <algorithm>

namespace VARN3D {

LiveTets::LiveTets(const TetRecycler& tets) {
    tets.getPool().forEachBlock([this](Tet3* first, std::int32_t used) {
        blocks.push_back({first, first + used, 0});
    });
    std::sort(blocks.begin(), blocks.end(), [](const Block& a, const Block& b) {
        return std::less<const Tet3*>()(a.first, b.first);
    });
    std::size_t numRecords = 0;
    for (Block& block : blocks) {
        block.start = numRecords;
        numRecords += static_cast<std::size_t>(block.last - block.first);
        if (block.last - block.first > largest.last - largest.first) largest = block;
    }
    groups.resize(numRecords / 64 + 1);
    tets.forEachFree([this](const Tet3* tet) {
        const std::size_t place = placeOf(tet);
        groups[place / 64].free |= std::uint64_t{1} << place % 64;
    });
    std::size_t numFree = 0;
    for (Group& group : groups) {
        group.numFreeBefore = numFree;
        numFree += bitCount(group.free);
    }
    numLive = numRecords - numFree;
}

const LiveTets::Block& LiveTets::blockOf(const Tet3* tet) const {
    const auto after = std::upper_bound(
        blocks.begin(), blocks.end(), tet,
        [](const Tet3* p, const Block& block) { return std::less<const Tet3*>()(p, block.first); });
    return *(after - 1);
}

}  // namespace VARN3D
