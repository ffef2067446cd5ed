#include "dt3Library/engine/LiveTets.h"

namespace VARN3D {

LiveTets::LiveTets(const TetRecycler& recycler)
    : tets(recycler), records(recycler.getPool()), groups(records.size() / 64 + 1) {
    tets.forEachFree([this](const Tet3* tet) {
        const std::size_t place = records.indexOf(tet);
        groups[place / 64].free |= std::uint64_t{1} << place % 64;
    });
    std::size_t numFree = 0;
    for (Group& group : groups) {
        group.numFreeBefore = numFree;
        numFree += bitCount(group.free);
    }
}

}  // namespace VARN3D
