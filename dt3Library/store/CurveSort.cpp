#include "dt3Library/store/CurveSort.h"

#include <algorithm>
#include <cstddef>

#include "dt3Library/predicates/FloatingPoint.h"
#include "dt3Library/store/HilbertGrid.h"
#include "dt3Library/store/radixSort.h"

namespace VARN3D {

namespace {

constexpr unsigned LEVELS = 9;
/// So many in a cell are in order enough.
constexpr std::size_t FEW = 8;

/// A grid over the cube at the lowest corner of the vertices' box. Where the box is too large for
/// doubles, it separates less or nothing.
HilbertGrid gridAround(const CurveEntry* first, const CurveEntry* last) {
    double low[3];
    double high[3];
    std::copy(first->at, first->at + 3, low);
    std::copy(first->at, first->at + 3, high);
    for (const CurveEntry* entry = first; entry != last; ++entry) {
        for (int axis = 0; axis < 3; ++axis) {
            low[axis] = std::min(low[axis], entry->at[axis]);
            high[axis] = std::max(high[axis], entry->at[axis]);
        }
    }
    const double side = std::max({high[0] - low[0], high[1] - low[1], high[2] - low[2]});
    return HilbertGrid(low, {side, side, side}, LEVELS);
}

void sortRange(CurveEntry* first, CurveEntry* last, const OnCell& onCell) {
    constexpr unsigned POSITION_BITS = 32;
    const auto n = static_cast<std::size_t>(last - first);
    std::vector<std::uint64_t> keyed;
    gridAround(first, last)
        .keyedPositions(
            n, POSITION_BITS, [first](std::size_t i) { return first[i].at; }, keyed);
    sortByBits(keyed, POSITION_BITS, 3 * LEVELS);
    {
        const std::vector<CurveEntry> unsorted(first, last);
        for (std::size_t i = 0; i < n; ++i)
            first[i] = unsorted[static_cast<std::uint32_t>(keyed[i])];
    }
    for (std::size_t begin = 0; begin < n;) {
        std::size_t end = begin + 1;
        while (end < n && keyed[end] >> POSITION_BITS == keyed[begin] >> POSITION_BITS) ++end;
        // A grid that separates nothing is the last one.
        if (end - begin > FEW && end - begin < n)
            sortRange(first + begin, first + end, onCell);
        else if (onCell)
            onCell(first + begin, first + end);
        begin = end;
    }
}

}  // namespace

void sortAlongCurve(std::vector<CurveEntry>& entries, const OnCell& onCell) {
    if (!entries.empty()) sortRange(entries.data(), entries.data() + entries.size(), onCell);
}

}  // namespace VARN3D
